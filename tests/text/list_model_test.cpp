// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <random>
#include <type_traits>
#include <vector>

#include "text/dlist.h"
#include "text/slist.h"

namespace {

constexpr u32 kOperations = 5000;
constexpr s32 kKeys = 12;

template <typename Entry>
s32 KeyOf(const Entry* entry) {
  return *static_cast<const s32*>(entry->data);
}

template <typename Entry>
s32 Compare(Entry* newEntry, Entry* listEntry) {
  return (KeyOf(newEntry) - KeyOf(listEntry)) * 7;
}

struct Doubly {
  using Entry = PXTDLListEntry;
  static constexpr auto kAlloc = qvx::DLListAlloc;
  static constexpr auto kFree = qvx::DLListFree;
  static constexpr auto kEntryAlloc = qvx::DLListEntryAlloc;
  static constexpr auto kEntryFree = qvx::DLListEntryFree;
  static constexpr auto kAtHead = qvx::DLListInsertEntryAtHead;
  static constexpr auto kAtTail = qvx::DLListInsertEntryAtTail;
  static constexpr auto kRemoveHead = qvx::DLListRemoveEntryAtHead;
  static constexpr auto kRemoveTail = qvx::DLListRemoveEntryAtTail;
  static constexpr auto kDelete = qvx::DLListDeleteEntry;
  static constexpr auto kKeyed = qvx::DLListInsertKeyed;
  static constexpr auto kOrdered = qvx::DLListInsertOrdered;
};

struct Singly {
  using Entry = PXTSLListEntry;
  static constexpr auto kAlloc = qvx::SLListAlloc;
  static constexpr auto kFree = qvx::SLListFree;
  static constexpr auto kEntryAlloc = qvx::SLListEntryAlloc;
  static constexpr auto kEntryFree = qvx::SLListEntryFree;
  static constexpr auto kAtHead = qvx::SLListInsertEntryAtHead;
  static constexpr auto kAtTail = qvx::SLListInsertEntryAtTail;
  static constexpr auto kRemoveHead = qvx::SLListRemoveEntryAtHead;
  static constexpr auto kRemoveTail = qvx::SLListRemoveEntryAtTail;
  static constexpr auto kDelete = qvx::SLListDeleteEntry;
  static constexpr auto kKeyed = qvx::SLListInsertKeyed;
  static constexpr auto kOrdered = qvx::SLListInsertOrdered;
};

// A list beside a vector of the entries that it should hold, in order.
template <typename Kind>
class Pair {
  using Entry = typename Kind::Entry;
  using Entries = std::vector<Entry*>;

 public:
  ~Pair() {
    for (Entry* entry : model_)
      Kind::kEntryFree(entry);
    Kind::kFree(list_);
  }
  void Step() {
    switch (Below(8)) {
      case 0:
        return AddAtHead(Make());
      case 1:
        return AddAtTail(Make());
      case 2:
        return Remove(Kind::kRemoveHead(list_), 0);
      case 3:
        return Remove(Kind::kRemoveTail(list_), model_.size() - 1);
      case 4:
        return DeleteOne();
      case 5:
        return AddOrdered(Make());
      default:
        return AddKeyed(Make());
    }
  }
  void ExpectSame() {
    Entry* last = nullptr;
    Entry* at = list_->head;
    for (Entry* expected : model_) {
      ASSERT_EQ(at, expected);
      if constexpr (std::is_same_v<Kind, Doubly>) {
        ASSERT_EQ(at->previous, last);
      }
      last = at;
      at = at->next;
    }
    ASSERT_EQ(at, nullptr);
    ASSERT_EQ(list_->tail, last);
    ASSERT_EQ(list_->count, model_.size());
  }

 private:
  u32 Below(size_t limit) { return static_cast<u32>(next_() % limit); }
  Entry* Make() {
    Entry* entry = Kind::kEntryAlloc(sizeof(s32));
    *static_cast<s32*>(entry->data) = static_cast<s32>(Below(kKeys));
    return entry;
  }
  void AddAtHead(Entry* entry) {
    Kind::kAtHead(list_, entry);
    model_.insert(model_.begin(), entry);
  }
  void AddAtTail(Entry* entry) {
    Kind::kAtTail(list_, entry);
    model_.push_back(entry);
  }
  void Remove(Entry* removed, size_t at) {
    if (model_.empty()) {
      ASSERT_EQ(removed, nullptr);
      return;
    }
    ASSERT_EQ(removed, model_[at]);
    Kind::kEntryFree(removed);
    model_.erase(model_.begin() + static_cast<std::ptrdiff_t>(at));
  }
  void DeleteOne() {
    if (model_.empty()) return;
    const size_t at = Below(model_.size());
    Kind::kDelete(list_, model_[at]);
    Kind::kEntryFree(model_[at]);
    model_.erase(model_.begin() + static_cast<std::ptrdiff_t>(at));
  }
  // Before the first entry whose key is not below the new one's.
  size_t PlaceOf(const Entry* entry) {
    size_t at = 0;
    while (at < model_.size() && KeyOf(model_[at]) < KeyOf(entry))
      ++at;
    return at;
  }
  void AddOrdered(Entry* entry) {
    const size_t at = PlaceOf(entry);
    ASSERT_EQ(Kind::kOrdered(list_, entry, Compare<Entry>), 0u);
    model_.insert(model_.begin() + static_cast<std::ptrdiff_t>(at), entry);
  }
  void AddKeyed(Entry* entry) {
    const size_t at = PlaceOf(entry);
    if (at < model_.size() && KeyOf(model_[at]) == KeyOf(entry)) {
      ASSERT_EQ(Kind::kKeyed(list_, entry, Compare<Entry>), 2u);
      Kind::kEntryFree(entry);
      return;
    }
    ASSERT_EQ(Kind::kKeyed(list_, entry, Compare<Entry>), 0u);
    model_.insert(model_.begin() + static_cast<std::ptrdiff_t>(at), entry);
  }
  std::mt19937 next_{21};
  decltype(Kind::kAlloc()) list_ = Kind::kAlloc();
  Entries model_;
};

template <typename Kind>
void ExpectAgreement() {
  Pair<Kind> pair;
  for (u32 operation = 0; operation < kOperations; ++operation) {
    ASSERT_NO_FATAL_FAILURE(pair.Step()) << operation;
    ASSERT_NO_FATAL_FAILURE(pair.ExpectSame()) << operation;
  }
}

TEST(ListModel, ADoublyLinkedListAgreesWithAVector) { ExpectAgreement<Doubly>(); }

TEST(ListModel, ASinglyLinkedListAgreesWithAVector) { ExpectAgreement<Singly>(); }

}  // namespace
