// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TEXT_LIST_KINDS_H
#define QVX_TESTS_TEXT_LIST_KINDS_H

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

#include "qvxcs/list.h"

#include "text/dlist.h"
#include "text/slist.h"

// Both kinds of list under one set of names, so that what they share is tested in one place: by the
// library's own names, and by the exported ones.
namespace qvx::test {

struct Doubly {
  using Header = PXTDLList;
  using Entry = PXTDLListEntry;
  static constexpr auto kAlloc = DLListAlloc;
  static constexpr auto kFree = DLListFree;
  static constexpr auto kEntryAlloc = DLListEntryAlloc;
  static constexpr auto kEntryFree = DLListEntryFree;
  static constexpr auto kInsertAtHead = DLListInsertEntryAtHead;
  static constexpr auto kInsertAtTail = DLListInsertEntryAtTail;
  static constexpr auto kRemoveAtHead = DLListRemoveEntryAtHead;
  static constexpr auto kRemoveAtTail = DLListRemoveEntryAtTail;
  static constexpr auto kDelete = DLListDeleteEntry;
  static constexpr auto kInsertKeyed = DLListInsertKeyed;
  static constexpr auto kInsertOrdered = DLListInsertOrdered;
};

struct Singly {
  using Header = PXTSLList;
  using Entry = PXTSLListEntry;
  static constexpr auto kAlloc = SLListAlloc;
  static constexpr auto kFree = SLListFree;
  static constexpr auto kEntryAlloc = SLListEntryAlloc;
  static constexpr auto kEntryFree = SLListEntryFree;
  static constexpr auto kInsertAtHead = SLListInsertEntryAtHead;
  static constexpr auto kInsertAtTail = SLListInsertEntryAtTail;
  static constexpr auto kRemoveAtHead = SLListRemoveEntryAtHead;
  static constexpr auto kRemoveAtTail = SLListRemoveEntryAtTail;
  static constexpr auto kDelete = SLListDeleteEntry;
  static constexpr auto kInsertKeyed = SLListInsertKeyed;
  static constexpr auto kInsertOrdered = SLListInsertOrdered;
};

struct ExportedDoubly {
  using Header = PXTDLList;
  using Entry = PXTDLListEntry;
  static constexpr auto kAlloc = PXTDLListAlloc;
  static constexpr auto kFree = PXTDLListFree;
  static constexpr auto kEntryAlloc = PXTDLListEntryAlloc;
  static constexpr auto kEntryFree = PXTDLListEntryFree;
  static constexpr auto kInsertAtHead = PXTDLListInsertEntryAtHead;
  static constexpr auto kInsertAtTail = PXTDLListInsertEntryAtTail;
  static constexpr auto kRemoveAtHead = PXTDLListRemoveEntryAtHead;
  static constexpr auto kRemoveAtTail = PXTDLListRemoveEntryAtTail;
  static constexpr auto kDelete = PXTDLListDeleteEntry;
  static constexpr auto kInsertKeyed = PXTDLListInsertKeyed;
  static constexpr auto kInsertOrdered = PXTDLListInsertOrdered;
};

struct ExportedSingly {
  using Header = PXTSLList;
  using Entry = PXTSLListEntry;
  static constexpr auto kAlloc = PXTSLListAlloc;
  static constexpr auto kFree = PXTSLListFree;
  static constexpr auto kEntryAlloc = PXTSLListEntryAlloc;
  static constexpr auto kEntryFree = PXTSLListEntryFree;
  static constexpr auto kInsertAtHead = PXTSLListInsertEntryAtHead;
  static constexpr auto kInsertAtTail = PXTSLListInsertEntryAtTail;
  static constexpr auto kRemoveAtHead = PXTSLListRemoveEntryAtHead;
  static constexpr auto kRemoveAtTail = PXTSLListRemoveEntryAtTail;
  static constexpr auto kDelete = PXTSLListDeleteEntry;
  static constexpr auto kInsertKeyed = PXTSLListInsertKeyed;
  static constexpr auto kInsertOrdered = PXTSLListInsertOrdered;
};

using Keys = std::vector<s32>;

// An entry's payload is its key.
template <typename Entry>
s32 KeyOf(const Entry* entry) {
  return *static_cast<const s32*>(entry->data);
}

// Not only -1 and 1: any negative and any positive value has its meaning.
template <typename Entry>
s32 CompareKeys(Entry* newEntry, Entry* listEntry) {
  return (KeyOf(newEntry) - KeyOf(listEntry)) * 7;
}

// A list and the entries made for it, which it frees.
template <typename Kind>
class ListOf {
 public:
  using Header = typename Kind::Header;
  using Entry = typename Kind::Entry;

  ListOf() = default;
  ListOf(const ListOf&) = delete;
  ListOf& operator=(const ListOf&) = delete;
  ~ListOf() {
    Kind::kFree(header_);
    for (Entry* entry : made_)
      Kind::kEntryFree(entry);
  }
  Entry* Make(s32 key) {
    Entry* entry = Kind::kEntryAlloc(sizeof(key));
    *static_cast<s32*>(entry->data) = key;
    made_.push_back(entry);
    return entry;
  }
  Entry* Append(s32 key) {
    Entry* entry = Make(key);
    Kind::kInsertAtTail(header_, entry);
    return entry;
  }
  u32 AddKeyed(s32 key) { return Kind::kInsertKeyed(header_, Make(key), CompareKeys<Entry>); }
  u32 AddOrdered(s32 key) { return Kind::kInsertOrdered(header_, Make(key), CompareKeys<Entry>); }

  Header* operator->() { return header_; }
  Header* get() { return header_; }
  // The entries in the order in which they were made.
  Entry* made(size_t at) { return made_[at]; }

  // The keys from head to tail; checks that every link, both ends and the count agree.
  Keys Walk() {
    Keys keys;
    Entry* last = nullptr;
    for (Entry* at = header_->head; at != nullptr; last = at, at = at->next) {
      if constexpr (std::is_same_v<Entry, PXTDLListEntry>) {
        EXPECT_EQ(at->previous, last);
      }
      keys.push_back(KeyOf(at));
    }
    EXPECT_EQ(header_->tail, last);
    EXPECT_EQ(header_->count, keys.size());
    return keys;
  }

 private:
  Header* header_ = Kind::kAlloc();
  std::vector<Entry*> made_;
};

}  // namespace qvx::test

#endif
