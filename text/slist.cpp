// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/slist.h"

#include <cstdlib>

#include "qvxcs/status.h"

#include "text/list_guard.h"

namespace qvx {
namespace {

// Links the entry after its predecessor, or first when it has none. The caller holds the lock.
void LinkBehind(PXTSLList* list, PXTSLListEntry* entry, PXTSLListEntry* previous) {
  PXTSLListEntry** link = previous == nullptr ? &list->head : &previous->next;
  entry->next = *link;
  *link = entry;
  if (entry->next == nullptr) list->tail = entry;
  ++list->count;
}

// Removes the entry after `previous`, or the first one when there is none; the entry's own link is
// unchanged. The caller holds the lock.
void UnlinkBehind(PXTSLList* list, PXTSLListEntry* entry, PXTSLListEntry* previous) {
  PXTSLListEntry** link = previous == nullptr ? &list->head : &previous->next;
  *link = entry->next;
  if (list->tail == entry) list->tail = previous;
  --list->count;
}

PXTSLListEntry* ReadTail(PXTSLList* list) {
  const ListGuard guard(list->lock);
  return list->tail;
}

}  // namespace

PXTSLList* SLListAlloc() { return AllocList<PXTSLList>(); }

void SLListFree(PXTSLList* list) { FreeList(list); }

PXTSLListEntry* SLListEntryAlloc(u32 size) { return AllocEntry<PXTSLListEntry>(size); }

void SLListEntryFree(PXTSLListEntry* entry) { free(entry); }

void SLListInsertEntryAtHead(PXTSLList* list, PXTSLListEntry* entry) {
  const ListGuard guard(list->lock);
  LinkBehind(list, entry, nullptr);
}

void SLListInsertEntryAtTail(PXTSLList* list, PXTSLListEntry* entry) {
  const ListGuard guard(list->lock);
  LinkBehind(list, entry, list->tail);
}

PXTSLListEntry* SLListRemoveEntryAtHead(PXTSLList* list) {
  const ListGuard guard(list->lock);
  PXTSLListEntry* entry = list->head;
  if (entry != nullptr) UnlinkBehind(list, entry, nullptr);
  return entry;
}

PXTSLListEntry* SLListRemoveEntryAtTail(PXTSLList* list) {
  // Deliberate: the lock is released between reading the tail and removing it. The tail read first
  // is returned, though another thread may have removed it meanwhile. Held by
  // SList.TailRemovalReturnsTheTailItReadThoughTheListNoLongerHoldsIt.
  PXTSLListEntry* entry = ReadTail(list);
  SLListDeleteEntry(list, entry);
  return entry;
}

void SLListDeleteEntry(PXTSLList* list, PXTSLListEntry* entry) {
  const ListGuard guard(list->lock);
  if (entry == nullptr) return;
  PXTSLListEntry* previous = nullptr;
  PXTSLListEntry* at = list->head;
  for (; at != nullptr && at != entry; at = at->next) {
    previous = at;
  }
  if (at != nullptr) UnlinkBehind(list, entry, previous);
}

u32 SLListInsertKeyed(PXTSLList* list, PXTSLListEntry* entry, PXTSLListCompare compare) {
  const ListGuard guard(list->lock);
  PXTSLListEntry* previous = nullptr;
  for (PXTSLListEntry* at = list->head; at != nullptr; previous = at, at = at->next) {
    const s32 order = compare(entry, at);
    if (order == 0) return SM_STATUS_BAD_ARGUMENT;
    if (order < 0) break;
  }
  LinkBehind(list, entry, previous);
  return SM_STATUS_SUCCESS;
}

u32 SLListInsertOrdered(PXTSLList* list, PXTSLListEntry* entry, PXTSLListCompare compare) {
  const ListGuard guard(list->lock);
  PXTSLListEntry* previous = nullptr;
  // Deliberate: the walk ends at an equal key, so of equal keys the newest comes first. Held by
  // SList.OrderedInsertionPutsTheNewestOfEqualKeysFirst.
  for (PXTSLListEntry* at = list->head; at != nullptr && compare(entry, at) > 0; at = at->next) {
    previous = at;
  }
  LinkBehind(list, entry, previous);
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
