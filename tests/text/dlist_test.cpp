// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/dlist.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

#include "qvxcs/list.h"
#include "qvxcs/status.h"

#include "frame/context_lock.h"
#include "support/alloc_fault.h"

namespace {

using Header = PXTDLList;
using Entry = PXTDLListEntry;
using Keys = std::vector<s32>;

// An entry's payload: its key, and a mark that tells equal keys apart.
struct Payload {
  s32 key;
  s32 mark;
};

Payload* PayloadOf(Entry* entry) { return static_cast<Payload*>(entry->data); }

s32 CompareKeys(Entry* newEntry, Entry* listEntry) {
  const s32 first = PayloadOf(newEntry)->key;
  const s32 second = PayloadOf(listEntry)->key;
  return first < second ? -1 : (first > second ? 1 : 0);
}

// A list and the entries made for it, which it gives back.
class DList : public testing::Test {
 protected:
  DList() : list_(qvx::DLListAlloc()) {}
  ~DList() override {
    qvx::DLListFree(list_);
    for (Entry* entry : made_)
      qvx::DLListEntryFree(entry);
  }
  Entry* Make(s32 key, s32 mark = 0) {
    Entry* entry = qvx::DLListEntryAlloc(sizeof(Payload));
    *PayloadOf(entry) = {key, mark};
    made_.push_back(entry);
    return entry;
  }
  Entry* Append(s32 key) {
    Entry* entry = Make(key);
    qvx::DLListInsertEntryAtTail(list_, entry);
    return entry;
  }
  // The keys from head to tail; checks that every link, both ends and the count agree.
  Keys Walk() {
    Keys keys;
    Entry* last = nullptr;
    for (Entry* at = list_->head; at != nullptr; last = at, at = at->next) {
      EXPECT_EQ(at->previous, last);
      keys.push_back(PayloadOf(at)->key);
    }
    EXPECT_EQ(list_->tail, last);
    EXPECT_EQ(list_->count, keys.size());
    return keys;
  }
  Header* list_;
  std::vector<Entry*> made_;
};

TEST_F(DList, ANewListIsEmptyAndHasALock) {
  ASSERT_NE(list_, nullptr);
  EXPECT_NE(list_->lock, 0u);
  EXPECT_EQ(list_->head, nullptr);
  EXPECT_EQ(list_->tail, nullptr);
  EXPECT_EQ(list_->count, 0u);
}

TEST_F(DList, AllocatingAHeaderFailsWithAnyOfItsAllocations) {
  Header* made = nullptr;
  const u32 met = qvx::test::FailEachAllocation([&] { return made = qvx::DLListAlloc(); },
                                                [](Header* list) { EXPECT_EQ(list, nullptr); });
  EXPECT_GE(met, 2u);  // the header and its lock
  ASSERT_NE(made, nullptr);
  qvx::DLListFree(made);
}

TEST_F(DList, ThePayloadStandsRightBehindTheLinks) {
  for (const u32 size : {0u, 1u, 100u}) {
    Entry* entry = qvx::DLListEntryAlloc(size);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->data, entry + 1);
    memset(entry->data, 0x5A, size);
    qvx::DLListEntryFree(entry);
  }
}

TEST_F(DList, AnEntryWithoutMemoryIsNull) {
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(qvx::DLListEntryAlloc(8), nullptr);
}

TEST_F(DList, ThePayloadMayReach32BitsInAll) {
  void* probe = malloc(SIZE_MAX / 2 < UINT32_MAX ? SIZE_MAX / 2 : size_t{UINT32_MAX});
  Entry* entry = qvx::DLListEntryAlloc(UINT32_MAX);
  if (sizeof(size_t) > 4 && probe != nullptr) {
    ASSERT_NE(entry, nullptr);
    static_cast<u8*>(entry->data)[UINT32_MAX - 1] = 1;  // beyond a sum cut to 32 bits
  } else {
    EXPECT_EQ(entry, nullptr);
  }
  free(probe);
  qvx::DLListEntryFree(entry);
}

TEST_F(DList, FreeingANullEntryDoesNothing) { qvx::DLListEntryFree(nullptr); }

TEST_F(DList, EntriesGoFirstAtTheHead) {
  for (const s32 key : {1, 2, 3})
    qvx::DLListInsertEntryAtHead(list_, Make(key));
  EXPECT_EQ(Walk(), (Keys{3, 2, 1}));
}

TEST_F(DList, EntriesGoLastAtTheTail) {
  for (const s32 key : {1, 2, 3})
    Append(key);
  EXPECT_EQ(Walk(), (Keys{1, 2, 3}));
}

TEST_F(DList, TheHeadIsTakenFirst) {
  for (const s32 key : {1, 2})
    Append(key);
  EXPECT_EQ(qvx::DLListRemoveEntryAtHead(list_), made_[0]);
  EXPECT_EQ(Walk(), Keys{2});
  EXPECT_EQ(qvx::DLListRemoveEntryAtHead(list_), made_[1]);
  EXPECT_EQ(Walk(), Keys{});
}

TEST_F(DList, TheTailIsTakenFirst) {
  for (const s32 key : {1, 2, 3})
    Append(key);
  EXPECT_EQ(qvx::DLListRemoveEntryAtTail(list_), made_[2]);
  EXPECT_EQ(Walk(), (Keys{1, 2}));
  EXPECT_EQ(qvx::DLListRemoveEntryAtTail(list_), made_[1]);
  EXPECT_EQ(Walk(), Keys{1});
}

TEST_F(DList, TakingTheTailOfOneEntryLeavesHeadAndTailNull) {
  Entry* only = Append(1);
  EXPECT_EQ(qvx::DLListRemoveEntryAtTail(list_), only);
  EXPECT_EQ(list_->head, nullptr);
  EXPECT_EQ(list_->tail, nullptr);
  EXPECT_EQ(list_->count, 0u);
}

TEST_F(DList, TakingFromAnEmptyListGivesNullAndLeavesItEmpty) {
  EXPECT_EQ(qvx::DLListRemoveEntryAtHead(list_), nullptr);
  EXPECT_EQ(qvx::DLListRemoveEntryAtTail(list_), nullptr);
  EXPECT_EQ(list_->head, nullptr);
  EXPECT_EQ(list_->tail, nullptr);
  EXPECT_EQ(list_->count, 0u);
}

TEST_F(DList, EntriesAreDeletedAtTheHeadInTheMiddleAndAtTheTail) {
  for (const s32 key : {1, 2, 3, 4})
    Append(key);
  qvx::DLListDeleteEntry(list_, made_[1]);
  EXPECT_EQ(Walk(), (Keys{1, 3, 4}));
  qvx::DLListDeleteEntry(list_, made_[0]);
  EXPECT_EQ(Walk(), (Keys{3, 4}));
  qvx::DLListDeleteEntry(list_, made_[3]);
  EXPECT_EQ(Walk(), Keys{3});
  qvx::DLListDeleteEntry(list_, made_[2]);
  EXPECT_EQ(Walk(), Keys{});
}

TEST_F(DList, DeletingANullEntryDoesNothing) {
  qvx::DLListDeleteEntry(list_, nullptr);
  EXPECT_EQ(Walk(), Keys{});
  Append(1);
  qvx::DLListDeleteEntry(list_, nullptr);
  EXPECT_EQ(Walk(), Keys{1});
}

TEST_F(DList, ARemovedEntryKeepsItsOwnLinks) {
  for (const s32 key : {1, 2, 3})
    Append(key);
  qvx::DLListDeleteEntry(list_, made_[1]);
  EXPECT_EQ(made_[1]->previous, made_[0]);
  EXPECT_EQ(made_[1]->next, made_[2]);
}

TEST_F(DList, MembershipIsNotChecked) {
  Append(1);
  Header* second = qvx::DLListAlloc();
  Entry* stranger = Make(9);
  qvx::DLListInsertEntryAtTail(second, stranger);
  qvx::DLListDeleteEntry(list_, stranger);
  EXPECT_EQ(list_->count, 0u);
  EXPECT_EQ(list_->head, made_[0]);
  EXPECT_EQ(second->head, stranger);
  EXPECT_EQ(second->count, 1u);
  qvx::DLListFree(second);
}

TEST_F(DList, KeyedInsertionSortsAndRefusesEqualKeys) {
  for (const s32 key : {3, 1, 2}) {
    EXPECT_EQ(qvx::DLListInsertKeyed(list_, Make(key), CompareKeys), SM_STATUS_SUCCESS);
  }
  EXPECT_EQ(Walk(), (Keys{1, 2, 3}));
  EXPECT_EQ(qvx::DLListInsertKeyed(list_, Make(2), CompareKeys), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(Walk(), (Keys{1, 2, 3}));
  for (const s32 key : {1, 3}) {
    EXPECT_EQ(qvx::DLListInsertKeyed(list_, Make(key), CompareKeys), 2u);
  }
  EXPECT_EQ(qvx::DLListInsertKeyed(list_, Make(4), CompareKeys), 0u);  // the lock is free again
  EXPECT_EQ(Walk(), (Keys{1, 2, 3, 4}));
}

TEST_F(DList, KeyedInsertionStopsAtTheFirstGreaterEntry) {
  for (const s32 key : {5, 2})
    Append(key);  // not in order: the 2 is never reached
  EXPECT_EQ(qvx::DLListInsertKeyed(list_, Make(2), CompareKeys), 0u);
  EXPECT_EQ(Walk(), (Keys{2, 5, 2}));
}

TEST_F(DList, OrderedInsertionPutsTheNewestOfEqualKeysFirst) {
  Entry* older = Make(2, 1);
  Entry* newer = Make(2, 2);
  EXPECT_EQ(qvx::DLListInsertOrdered(list_, older, CompareKeys), 0u);
  EXPECT_EQ(qvx::DLListInsertOrdered(list_, newer, CompareKeys), 0u);
  EXPECT_EQ(list_->head, newer);
  EXPECT_EQ(list_->tail, older);
  for (const s32 key : {3, 1, 2}) {
    EXPECT_EQ(qvx::DLListInsertOrdered(list_, Make(key), CompareKeys), 0u);
  }
  EXPECT_EQ(Walk(), (Keys{1, 2, 2, 2, 3}));
}

Entry* givenNew = nullptr;
Entry* givenOld = nullptr;

s32 RememberArguments(Entry* newEntry, Entry* listEntry) {
  givenNew = newEntry;
  givenOld = listEntry;
  return 5;  // any positive value goes on
}

TEST_F(DList, CompareIsGivenTheNewEntryAndOneOfTheList) {
  Entry* there = Append(1);
  Entry* fresh = Make(2);
  EXPECT_EQ(qvx::DLListInsertKeyed(list_, fresh, RememberArguments), 0u);
  EXPECT_EQ(givenNew, fresh);
  EXPECT_EQ(givenOld, there);
  EXPECT_EQ(list_->tail, fresh);
  Entry* last = Make(0);
  EXPECT_EQ(qvx::DLListInsertOrdered(list_, last, RememberArguments), 0u);
  EXPECT_EQ(givenNew, last);
  EXPECT_EQ(givenOld, fresh);
  EXPECT_EQ(list_->tail, last);
}

Header* comparedList = nullptr;
std::atomic<bool> otherGotIn = false;
bool otherGotInDuringCompare = false;
std::thread other;

s32 LetAnotherThreadTry(Entry*, Entry*) {
  other = std::thread([] {
    qvx::LockContext(comparedList->lock);
    otherGotIn = true;
    qvx::UnLockContext(comparedList->lock);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  otherGotInDuringCompare = otherGotIn;
  return 0;
}

TEST_F(DList, CompareRunsUnderTheListsLock) {
  Append(1);
  comparedList = list_;
  EXPECT_EQ(qvx::DLListInsertKeyed(list_, Make(1), LetAnotherThreadTry), 2u);
  other.join();
  EXPECT_FALSE(otherGotInDuringCompare);
  EXPECT_TRUE(otherGotIn);
}

// A count seen to change before the lock is let go would be an operation that did not wait for it.
TEST_F(DList, EveryOperationWaitsForTheListsLock) {
  using Operation = void (*)(Header*, Entry*);
  const Operation operations[] = {
      [](Header* list, Entry* entry) { qvx::DLListInsertEntryAtHead(list, entry); },
      [](Header* list, Entry* entry) { qvx::DLListInsertEntryAtTail(list, entry); },
      [](Header* list, Entry* entry) { (void)qvx::DLListInsertKeyed(list, entry, CompareKeys); },
      [](Header* list, Entry* entry) { (void)qvx::DLListInsertOrdered(list, entry, CompareKeys); },
      [](Header* list, Entry*) { (void)qvx::DLListRemoveEntryAtHead(list); },
      [](Header* list, Entry*) { (void)qvx::DLListRemoveEntryAtTail(list); },
      [](Header* list, Entry*) { qvx::DLListDeleteEntry(list, list->head); },
  };
  s32 key = 0;
  for (const Operation operation : operations) {
    Entry* fresh = Make(++key);
    const u32 before = list_->count;
    qvx::LockContext(list_->lock);
    std::thread waiting([&] { operation(list_, fresh); });
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(list_->count, before) << key;
    qvx::UnLockContext(list_->lock);
    waiting.join();
    EXPECT_NE(list_->count, before) << key;
  }
}

TEST_F(DList, FreeingWaitsForAnOperationUnderWay) {
  Header* list = qvx::DLListAlloc();
  std::atomic<bool> freed = false;
  qvx::LockContext(list->lock);
  const u32 lock = list->lock;
  std::thread freeing([&] {
    qvx::DLListFree(list);
    freed = true;
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_FALSE(freed);
  qvx::UnLockContext(lock);
  freeing.join();
  EXPECT_TRUE(freed);
}

TEST_F(DList, SeveralThreadsMayUseOneList) {
  constexpr u32 kThreads = 4;
  constexpr u32 kEach = 500;
  for (u32 at = 0; at < kThreads * kEach; ++at)
    Make(static_cast<s32>(at));
  std::vector<std::thread> threads;
  for (u32 thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([this, thread] {
      for (u32 at = thread * kEach; at < (thread + 1) * kEach; ++at) {
        if (at % 2 == 0) {
          qvx::DLListInsertEntryAtHead(list_, made_[at]);
        } else {
          qvx::DLListInsertEntryAtTail(list_, made_[at]);
        }
        if (at % 5 == 0) (void)qvx::DLListRemoveEntryAtHead(list_);
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(Walk().size(), kThreads * kEach * 4 / 5);
}

TEST_F(DList, ExportedFunctionsGiveTheSameAnswers) {
  Header* list = PXTDLListAlloc();
  ASSERT_NE(list, nullptr);
  Entry* entries[4];
  for (s32 key = 0; key < 4; ++key) {
    entries[key] = PXTDLListEntryAlloc(sizeof(Payload));
    *PayloadOf(entries[key]) = {key, 0};
  }
  PXTDLListInsertEntryAtHead(list, entries[1]);
  PXTDLListInsertEntryAtTail(list, entries[3]);
  EXPECT_EQ(PXTDLListInsertKeyed(list, entries[2], CompareKeys), 0u);
  EXPECT_EQ(PXTDLListInsertKeyed(list, entries[2], CompareKeys), 2u);
  EXPECT_EQ(PXTDLListInsertOrdered(list, entries[0], CompareKeys), 0u);
  EXPECT_EQ(list->count, 4u);
  EXPECT_EQ(PXTDLListRemoveEntryAtHead(list), entries[0]);
  EXPECT_EQ(PXTDLListRemoveEntryAtTail(list), entries[3]);
  PXTDLListDeleteEntry(list, entries[1]);
  EXPECT_EQ(list->head, entries[2]);
  PXTDLListDeleteEntry(list, entries[2]);
  EXPECT_EQ(list->count, 0u);
  for (Entry* entry : entries)
    PXTDLListEntryFree(entry);
  PXTDLListFree(list);
}

}  // namespace
