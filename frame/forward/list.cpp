// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/list.h"

#include "base/cancel_hold.h"
#include "text/dlist.h"
#include "text/slist.h"

PXTDLList* PXTDLListAlloc() { return qvx::DLListAlloc(); }
void PXTDLListFree(PXTDLList* list) { qvx::DLListFree(list); }
PXTDLListEntry* PXTDLListEntryAlloc(u32 size) { return qvx::DLListEntryAlloc(size); }
void PXTDLListEntryFree(PXTDLListEntry* entry) { qvx::DLListEntryFree(entry); }
void PXTDLListInsertEntryAtHead(PXTDLList* list, PXTDLListEntry* entry) {
  qvx::DLListInsertEntryAtHead(list, entry);
}
void PXTDLListInsertEntryAtTail(PXTDLList* list, PXTDLListEntry* entry) {
  qvx::DLListInsertEntryAtTail(list, entry);
}
PXTDLListEntry* PXTDLListRemoveEntryAtHead(PXTDLList* list) {
  return qvx::DLListRemoveEntryAtHead(list);
}
PXTDLListEntry* PXTDLListRemoveEntryAtTail(PXTDLList* list) {
  return qvx::DLListRemoveEntryAtTail(list);
}
void PXTDLListDeleteEntry(PXTDLList* list, PXTDLListEntry* entry) {
  qvx::DLListDeleteEntry(list, entry);
}
u32 PXTDLListInsertKeyed(PXTDLList* list, PXTDLListEntry* entry, PXTDLListCompare compare) {
  const qvx::CancelHold hold;
  return qvx::DLListInsertKeyed(list, entry, compare);
}
u32 PXTDLListInsertOrdered(PXTDLList* list, PXTDLListEntry* entry, PXTDLListCompare compare) {
  const qvx::CancelHold hold;
  return qvx::DLListInsertOrdered(list, entry, compare);
}
PXTSLList* PXTSLListAlloc() { return qvx::SLListAlloc(); }
void PXTSLListFree(PXTSLList* list) { qvx::SLListFree(list); }
PXTSLListEntry* PXTSLListEntryAlloc(u32 size) { return qvx::SLListEntryAlloc(size); }
void PXTSLListEntryFree(PXTSLListEntry* entry) { qvx::SLListEntryFree(entry); }
void PXTSLListInsertEntryAtHead(PXTSLList* list, PXTSLListEntry* entry) {
  qvx::SLListInsertEntryAtHead(list, entry);
}
void PXTSLListInsertEntryAtTail(PXTSLList* list, PXTSLListEntry* entry) {
  qvx::SLListInsertEntryAtTail(list, entry);
}
PXTSLListEntry* PXTSLListRemoveEntryAtHead(PXTSLList* list) {
  return qvx::SLListRemoveEntryAtHead(list);
}
PXTSLListEntry* PXTSLListRemoveEntryAtTail(PXTSLList* list) {
  return qvx::SLListRemoveEntryAtTail(list);
}
void PXTSLListDeleteEntry(PXTSLList* list, PXTSLListEntry* entry) {
  qvx::SLListDeleteEntry(list, entry);
}
u32 PXTSLListInsertKeyed(PXTSLList* list, PXTSLListEntry* entry, PXTSLListCompare compare) {
  const qvx::CancelHold hold;
  return qvx::SLListInsertKeyed(list, entry, compare);
}
u32 PXTSLListInsertOrdered(PXTSLList* list, PXTSLListEntry* entry, PXTSLListCompare compare) {
  const qvx::CancelHold hold;
  return qvx::SLListInsertOrdered(list, entry, compare);
}
