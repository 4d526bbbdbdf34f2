// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/dlist.h"

#include <cstdlib>

#include "qvxcs/status.h"

#include "text/list_guard.h"

namespace qvx {
namespace {

// Links the entry between neighbours, null where the list ends. The caller holds the lock.
void Link(PXTDLList* list, PXTDLListEntry* entry, PXTDLListEntry* previous, PXTDLListEntry* next) {
  entry->previous = previous;
  entry->next = next;
  if (previous == nullptr) {
    list->head = entry;
  } else {
    previous->next = entry;
  }
  if (next == nullptr) {
    list->tail = entry;
  } else {
    next->previous = entry;
  }
  ++list->count;
}

// The entry's own links stay as they are. The caller holds the lock.
void Unlink(PXTDLList* list, PXTDLListEntry* entry) {
  if (entry->previous != nullptr) entry->previous->next = entry->next;
  if (entry->next != nullptr) entry->next->previous = entry->previous;
  if (list->head == entry) list->head = entry->next;
  if (list->tail == entry) list->tail = entry->previous;
  --list->count;
}

}  // namespace

PXTDLList* DLListAlloc() { return AllocList<PXTDLList>(); }

void DLListFree(PXTDLList* list) { FreeList(list); }

PXTDLListEntry* DLListEntryAlloc(u32 size) { return AllocEntry<PXTDLListEntry>(size); }

void DLListEntryFree(PXTDLListEntry* entry) { free(entry); }

void DLListInsertEntryAtHead(PXTDLList* list, PXTDLListEntry* entry) {
  const ListGuard guard(list->lock);
  Link(list, entry, nullptr, list->head);
}

void DLListInsertEntryAtTail(PXTDLList* list, PXTDLListEntry* entry) {
  const ListGuard guard(list->lock);
  Link(list, entry, list->tail, nullptr);
}

PXTDLListEntry* DLListRemoveEntryAtHead(PXTDLList* list) {
  const ListGuard guard(list->lock);
  PXTDLListEntry* entry = list->head;
  if (entry != nullptr) Unlink(list, entry);
  return entry;
}

PXTDLListEntry* DLListRemoveEntryAtTail(PXTDLList* list) {
  const ListGuard guard(list->lock);
  PXTDLListEntry* entry = list->tail;
  if (entry != nullptr) Unlink(list, entry);
  return entry;
}

void DLListDeleteEntry(PXTDLList* list, PXTDLListEntry* entry) {
  const ListGuard guard(list->lock);
  if (entry != nullptr) Unlink(list, entry);
}

u32 DLListInsertKeyed(PXTDLList* list, PXTDLListEntry* entry, PXTDLListCompare compare) {
  const ListGuard guard(list->lock);
  PXTDLListEntry* previous = nullptr;
  PXTDLListEntry* at = list->head;
  for (; at != nullptr; previous = at, at = at->next) {
    const s32 order = compare(entry, at);
    if (order == 0) return SM_STATUS_BAD_ARGUMENT;
    if (order < 0) break;
  }
  Link(list, entry, previous, at);
  return SM_STATUS_SUCCESS;
}

u32 DLListInsertOrdered(PXTDLList* list, PXTDLListEntry* entry, PXTDLListCompare compare) {
  const ListGuard guard(list->lock);
  PXTDLListEntry* previous = nullptr;
  PXTDLListEntry* at = list->head;
  // Deliberate: the walk ends at an equal key, so of equal keys the newest comes first. Held by
  // DList.OrderedInsertionPutsTheNewestOfEqualKeysFirst.
  for (; at != nullptr && compare(entry, at) > 0; at = at->next) {
    previous = at;
  }
  Link(list, entry, previous, at);
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
