// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <random>
#include <type_traits>
#include <vector>

#include "tests/text/list_kinds.h"

namespace {

using qvx::test::CompareKeys;
using qvx::test::Doubly;
using qvx::test::KeyOf;
using qvx::test::Singly;

constexpr u32 kOperations = 5000;
constexpr s32 kKeys = 12;

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
        return Remove(Kind::kRemoveAtHead(list_), 0);
      case 3:
        return Remove(Kind::kRemoveAtTail(list_), model_.size() - 1);
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
    Kind::kInsertAtHead(list_, entry);
    model_.insert(model_.begin(), entry);
  }
  void AddAtTail(Entry* entry) {
    Kind::kInsertAtTail(list_, entry);
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
    ASSERT_EQ(Kind::kInsertOrdered(list_, entry, CompareKeys<Entry>), 0u);
    model_.insert(model_.begin() + static_cast<std::ptrdiff_t>(at), entry);
  }
  void AddKeyed(Entry* entry) {
    const size_t at = PlaceOf(entry);
    if (at < model_.size() && KeyOf(model_[at]) == KeyOf(entry)) {
      ASSERT_EQ(Kind::kInsertKeyed(list_, entry, CompareKeys<Entry>), 2u);
      Kind::kEntryFree(entry);
      return;
    }
    ASSERT_EQ(Kind::kInsertKeyed(list_, entry, CompareKeys<Entry>), 0u);
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
