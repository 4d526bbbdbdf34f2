// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_LIST_GUARD_H
#define QVX_TEXT_LIST_GUARD_H

#include <cstdlib>

#include "qvxcs/types.h"

#include "base/context_lock.h"
#include "base/heap.h"

namespace qvx {

// Holds a list's own lock for the length of one operation, whichever way it ends.
class ListGuard {
 public:
  explicit ListGuard(u32 lock) : lock_(lock) { LockContext(lock_); }
  ~ListGuard() { UnLockContext(lock_); }
  ListGuard(const ListGuard&) = delete;
  ListGuard& operator=(const ListGuard&) = delete;

 private:
  const u32 lock_;
};

// A header with its lock and no entries; null when either cannot be made.
template <typename List>
List* AllocList() {
  HeapArray<List> list = AllocArray<List>(1);
  if (!list) return nullptr;
  list[0] = List{AllocContextLock(), nullptr, nullptr, 0};
  return list[0].lock == 0 ? nullptr : list.release();
}

// Waits for the operation under way, if any; entries still in the list are left alone.
template <typename List>
void FreeList(List* list) {
  { const ListGuard guard(list->lock); }
  FreeContextLock(list->lock);
  free(list);
}

// An entry with its payload right after the links, which stay as malloc leaves them.
template <typename Entry>
Entry* AllocEntry(u32 size) {
  const u64 bytes = sizeof(Entry) + u64{size};
  if (bytes > SIZE_MAX) return nullptr;
  Entry* entry = static_cast<Entry*>(malloc(static_cast<size_t>(bytes)));
  if (entry != nullptr) entry->data = entry + 1;
  return entry;
}

}  // namespace qvx

#endif
