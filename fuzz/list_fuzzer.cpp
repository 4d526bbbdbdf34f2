// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: a byte for each operation on a list with two links, one with one link and an ID table; the
// following byte is its value. A deque and a set are the models.
#include <deque>
#include <set>

#include "qvxcs/hash_id.h"
#include "qvxcs/list.h"

#include "fuzz/fuzz_support.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Require;

constexpr u32 kIdentifiers = 100;
constexpr u32 kNoIdentifier = 0;

template <typename Entry>
u8 ValueOf(const Entry* entry) {
  return *static_cast<const u8*>(entry->data);
}

// A list and what should be in it, by the functions of its family.
template <typename List, typename Entry, List* (*kAlloc)(), void (*kFree)(List*),
          Entry* (*kEntryAlloc)(u32), void (*kEntryFree)(Entry*), void (*kAtHead)(List*, Entry*),
          void (*kAtTail)(List*, Entry*), Entry* (*kHead)(List*), Entry* (*kTail)(List*)>
class Checked {
 public:
  Checked() : list_(kAlloc()) {}
  ~Checked() {
    while (!model_.empty()) {
      Remove(true);
    }
    kFree(list_);
  }
  Checked(const Checked&) = delete;
  Checked& operator=(const Checked&) = delete;

  void Insert(bool head, u8 value) {
    Entry* const entry = kEntryAlloc(1);
    *static_cast<u8*>(entry->data) = value;
    (head ? kAtHead : kAtTail)(list_, entry);
    if (head) {
      model_.push_front(value);
    } else {
      model_.push_back(value);
    }
    Check();
  }
  void Remove(bool head) {
    Entry* const entry = (head ? kHead : kTail)(list_);
    Require((entry == nullptr) == model_.empty(), "an entry comes exactly where there is one");
    if (entry == nullptr) return;
    Require(ValueOf(entry) == (head ? model_.front() : model_.back()),
            "it is the entry of that end");
    if (head) {
      model_.pop_front();
    } else {
      model_.pop_back();
    }
    kEntryFree(entry);
    Check();
  }

 private:
  void Check() {
    Require(list_->count == model_.size(), "the count is right");
    const Entry* entry = list_->head;
    for (const u8 value : model_) {
      Require(entry != nullptr && ValueOf(entry) == value, "the entries are in their order");
      entry = entry->next;
    }
  }

  List* list_;
  std::deque<u8> model_;
};

using DoubleList =
    Checked<PXTDLList, PXTDLListEntry, PXTDLListAlloc, PXTDLListFree, PXTDLListEntryAlloc,
            PXTDLListEntryFree, PXTDLListInsertEntryAtHead, PXTDLListInsertEntryAtTail,
            PXTDLListRemoveEntryAtHead, PXTDLListRemoveEntryAtTail>;
using SingleList =
    Checked<PXTSLList, PXTSLListEntry, PXTSLListAlloc, PXTSLListFree, PXTSLListEntryAlloc,
            PXTSLListEntryFree, PXTSLListInsertEntryAtHead, PXTSLListInsertEntryAtTail,
            PXTSLListRemoveEntryAtHead, PXTSLListRemoveEntryAtTail>;

// A table of identifiers and those in use.
class Table {
 public:
  Table() : size_(PXTHashTableBytesNeeded(kIdentifiers)), bytes_(size_) {
    (void)PXTClearHashTable(bytes_.data(), size_);
  }
  void Acquire() {
    const u32 id = PXTAcquireHashID(bytes_.data(), size_);
    if (id == kNoIdentifier) return;
    Require(used_.insert(id).second, "an identifier is acquired once");
  }
  void Release(u32 id) {
    (void)PXTReleaseHashID(bytes_.data(), size_, id);
    used_.erase(id);
  }
  void Verify(u32 id) {
    const bool used = PXTVerifyHashID(bytes_.data(), size_, id) == 0;
    Require(used == (used_.count(id) != 0), "an identifier is in use where it was acquired");
  }

 private:
  u32 size_;
  Block<u8> bytes_;
  std::set<u32> used_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  DoubleList doubled;
  SingleList single;
  Table table;
  for (size_t at = 0; at + 1 < size; at += 2) {
    const u8 value = data[at + 1];
    const bool head = value % 2 == 0;
    switch (data[at] % 7) {
      case 0:
        doubled.Insert(head, value);
        break;
      case 1:
        doubled.Remove(head);
        break;
      case 2:
        single.Insert(head, value);
        break;
      case 3:
        single.Remove(head);
        break;
      case 4:
        table.Acquire();
        break;
      case 5:
        table.Release(value);
        break;
      default:
        table.Verify(value);
    }
  }
  return 0;
}
