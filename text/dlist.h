// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_DLIST_H
#define QVX_TEXT_DLIST_H

#include "qvxcs/list.h"
#include "qvxcs/types.h"

namespace qvx {

PXTDLList* DLListAlloc();
void DLListFree(PXTDLList* list);
PXTDLListEntry* DLListEntryAlloc(u32 size);
void DLListEntryFree(PXTDLListEntry* entry);
void DLListInsertEntryAtHead(PXTDLList* list, PXTDLListEntry* entry);
void DLListInsertEntryAtTail(PXTDLList* list, PXTDLListEntry* entry);
PXTDLListEntry* DLListRemoveEntryAtHead(PXTDLList* list);
PXTDLListEntry* DLListRemoveEntryAtTail(PXTDLList* list);
void DLListDeleteEntry(PXTDLList* list, PXTDLListEntry* entry);
u32 DLListInsertKeyed(PXTDLList* list, PXTDLListEntry* entry, PXTDLListCompare compare);
u32 DLListInsertOrdered(PXTDLList* list, PXTDLListEntry* entry, PXTDLListCompare compare);

}  // namespace qvx

#endif
