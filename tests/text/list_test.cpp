// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/list.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "qvxcs/status.h"

#include "base/context_lock.h"
#include "support/alloc_fault.h"
#include "support/heap_use.h"
#include "support/threads.h"
#include "tests/text/list_kinds.h"

// What doubly and singly linked lists promise alike. What only one kind does is in its own file.
namespace {

using qvx::LockContext;
using qvx::UnLockContext;
using qvx::test::CompareKeys;
using qvx::test::HeapInUse;
using qvx::test::Keys;
using qvx::test::ListOf;

constexpr u32 kLargePayload = 4096;

template <typename Kind>
class List : public testing::Test {};

using Kinds = testing::Types<qvx::test::Doubly, qvx::test::Singly, qvx::test::ExportedDoubly,
                             qvx::test::ExportedSingly>;
TYPED_TEST_SUITE(List, Kinds);

TYPED_TEST(List, ANewListIsEmptyAndHasALock) {
  ListOf<TypeParam> list;
  ASSERT_NE(list.get(), nullptr);
  EXPECT_NE(list->lock, 0u);
  EXPECT_EQ(list->head, nullptr);
  EXPECT_EQ(list->tail, nullptr);
  EXPECT_EQ(list->count, 0u);
}

TYPED_TEST(List, AllocatingAHeaderFailsWithAnyOfItsAllocations) {
  using Header = typename TypeParam::Header;
  Header* made = nullptr;
  const u32 met = qvx::test::FailEachAllocation([&] { return made = TypeParam::kAlloc(); },
                                                [](Header* list) { EXPECT_EQ(list, nullptr); });
  EXPECT_GE(met, 2u);  // the header and its lock
  ASSERT_NE(made, nullptr);
  TypeParam::kFree(made);
}

TYPED_TEST(List, FreeingGivesTheLockBack) {
  typename TypeParam::Header* list = TypeParam::kAlloc();
  const u32 lock = list->lock;
  TypeParam::kFree(list);
  const u32 next = qvx::AllocContextLock();  // the slot given back last is taken first
  EXPECT_EQ(next, lock);
  qvx::FreeContextLock(next);
}

TYPED_TEST(List, FreeingLeavesTheEntriesAlone) {
  typename TypeParam::Header* list = TypeParam::kAlloc();
  typename TypeParam::Entry* entry = TypeParam::kEntryAlloc(sizeof(s32));
  *static_cast<s32*>(entry->data) = 7;
  TypeParam::kInsertAtTail(list, entry);
  TypeParam::kFree(list);
  EXPECT_EQ(qvx::test::KeyOf(entry), 7);
  TypeParam::kEntryFree(entry);
}

TYPED_TEST(List, ThePayloadStandsRightBehindTheLinks) {
  for (const u32 size : {0u, 1u, 100u}) {
    typename TypeParam::Entry* entry = TypeParam::kEntryAlloc(size);
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(entry->data, entry + 1);
    memset(entry->data, 0x5A, size);
    TypeParam::kEntryFree(entry);
  }
}

TYPED_TEST(List, AnEntryWithoutMemoryIsNull) {
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(TypeParam::kEntryAlloc(8), nullptr);
}

TYPED_TEST(List, ThePayloadMayReach32BitsInAll) {
  void* probe = malloc(SIZE_MAX / 2 < UINT32_MAX ? SIZE_MAX / 2 : size_t{UINT32_MAX});
  typename TypeParam::Entry* entry = TypeParam::kEntryAlloc(UINT32_MAX);
  if (sizeof(size_t) > 4 && probe != nullptr) {
    ASSERT_NE(entry, nullptr);
    static_cast<u8*>(entry->data)[UINT32_MAX - 1] = 1;  // beyond a sum cut to 32 bits
  } else {
    EXPECT_EQ(entry, nullptr);
  }
  free(probe);
  TypeParam::kEntryFree(entry);
}

TYPED_TEST(List, FreeingAnEntryGivesItsBlockBackAndANullEntryNone) {
  const size_t before = HeapInUse();
  typename TypeParam::Entry* entry = TypeParam::kEntryAlloc(kLargePayload);
  ASSERT_NE(entry, nullptr);
  EXPECT_GE(HeapInUse(), before + kLargePayload);
  TypeParam::kEntryFree(nullptr);
  EXPECT_GE(HeapInUse(), before + kLargePayload);
  TypeParam::kEntryFree(entry);
  EXPECT_EQ(HeapInUse(), before);
}

// Whether a delete of a null entry is over while another operation has the list.
template <typename Kind>
bool NullDeleteWaits(typename Kind::Header* list) {
  LockContext(list->lock);
  return qvx::test::WaitsFor([list] { Kind::kDelete(list, nullptr); },
                             [list] { UnLockContext(list->lock); });
}

TYPED_TEST(List, DeletingANullEntryTakesTheListsLock) {
  ListOf<TypeParam> list;
  EXPECT_TRUE(NullDeleteWaits<TypeParam>(list.get()));  // an empty list
  list.Append(1);
  EXPECT_TRUE(NullDeleteWaits<TypeParam>(list.get()));
  EXPECT_EQ(list.Walk(), (Keys{1}));
}

TYPED_TEST(List, EntriesGoFirstAtTheHead) {
  ListOf<TypeParam> list;
  for (const s32 key : {1, 2, 3})
    TypeParam::kInsertAtHead(list.get(), list.Make(key));
  EXPECT_EQ(list.Walk(), (Keys{3, 2, 1}));
}

TYPED_TEST(List, EntriesGoLastAtTheTail) {
  ListOf<TypeParam> list;
  for (const s32 key : {1, 2, 3})
    TypeParam::kInsertAtTail(list.get(), list.Make(key));
  EXPECT_EQ(list.Walk(), (Keys{1, 2, 3}));
}

TYPED_TEST(List, TheHeadIsTakenFirst) {
  ListOf<TypeParam> list;
  for (const s32 key : {1, 2})
    list.Append(key);
  EXPECT_EQ(TypeParam::kRemoveAtHead(list.get()), list.made(0));
  EXPECT_EQ(list.Walk(), Keys{2});
  EXPECT_EQ(TypeParam::kRemoveAtHead(list.get()), list.made(1));
  EXPECT_EQ(list.Walk(), Keys{});
}

TYPED_TEST(List, TheTailIsTakenFirst) {
  ListOf<TypeParam> list;
  for (const s32 key : {1, 2, 3})
    list.Append(key);
  EXPECT_EQ(TypeParam::kRemoveAtTail(list.get()), list.made(2));
  EXPECT_EQ(list.Walk(), (Keys{1, 2}));
  EXPECT_EQ(TypeParam::kRemoveAtTail(list.get()), list.made(1));
  EXPECT_EQ(list.Walk(), Keys{1});
}

TYPED_TEST(List, TakingTheTailOfOneEntryLeavesHeadAndTailNull) {
  ListOf<TypeParam> list;
  list.Append(1);
  EXPECT_EQ(TypeParam::kRemoveAtTail(list.get()), list.made(0));
  EXPECT_EQ(list->head, nullptr);
  EXPECT_EQ(list->tail, nullptr);
  EXPECT_EQ(list->count, 0u);
}

TYPED_TEST(List, TakingFromAnEmptyListGivesNullAndLeavesItEmpty) {
  ListOf<TypeParam> list;
  EXPECT_EQ(TypeParam::kRemoveAtHead(list.get()), nullptr);
  EXPECT_EQ(TypeParam::kRemoveAtTail(list.get()), nullptr);
  EXPECT_EQ(list->head, nullptr);
  EXPECT_EQ(list->tail, nullptr);
  EXPECT_EQ(list->count, 0u);
}

TYPED_TEST(List, EntriesAreDeletedAtTheHeadInTheMiddleAndAtTheTail) {
  ListOf<TypeParam> list;
  for (const s32 key : {1, 2, 3, 4})
    list.Append(key);
  TypeParam::kDelete(list.get(), list.made(1));
  EXPECT_EQ(list.Walk(), (Keys{1, 3, 4}));
  TypeParam::kDelete(list.get(), list.made(0));
  EXPECT_EQ(list.Walk(), (Keys{3, 4}));
  TypeParam::kDelete(list.get(), list.made(3));
  EXPECT_EQ(list.Walk(), Keys{3});
  TypeParam::kDelete(list.get(), list.made(2));
  EXPECT_EQ(list.Walk(), Keys{});
}

TYPED_TEST(List, DeletingANullEntryDoesNothing) {
  ListOf<TypeParam> list;
  TypeParam::kDelete(list.get(), nullptr);
  EXPECT_EQ(list.Walk(), Keys{});
  list.Append(1);
  TypeParam::kDelete(list.get(), nullptr);
  EXPECT_EQ(list.Walk(), Keys{1});
}

TYPED_TEST(List, ARemovedEntryKeepsItsLinkToTheNext) {
  ListOf<TypeParam> list;
  for (const s32 key : {1, 2, 3})
    list.Append(key);
  TypeParam::kDelete(list.get(), list.made(1));
  EXPECT_EQ(list.made(1)->next, list.made(2));
  EXPECT_EQ(TypeParam::kRemoveAtHead(list.get()), list.made(0));
  EXPECT_EQ(list.made(0)->next, list.made(2));
}

TYPED_TEST(List, KeyedInsertionSortsAndRefusesEqualKeys) {
  ListOf<TypeParam> list;
  for (const s32 key : {3, 1, 2})
    EXPECT_EQ(list.AddKeyed(key), SM_STATUS_SUCCESS);
  EXPECT_EQ(list.Walk(), (Keys{1, 2, 3}));
  for (const s32 key : {2, 1, 3})
    EXPECT_EQ(list.AddKeyed(key), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(list.Walk(), (Keys{1, 2, 3}));
  EXPECT_EQ(list.AddKeyed(4), SM_STATUS_SUCCESS);  // the lock is free again
  EXPECT_EQ(list.Walk(), (Keys{1, 2, 3, 4}));
}

TYPED_TEST(List, KeyedInsertionStopsAtTheFirstGreaterEntry) {
  ListOf<TypeParam> list;
  for (const s32 key : {5, 2})
    list.Append(key);  // not in order: the 2 is never reached
  EXPECT_EQ(list.AddKeyed(2), SM_STATUS_SUCCESS);
  EXPECT_EQ(list.Walk(), (Keys{2, 5, 2}));
}

TYPED_TEST(List, OrderedInsertionSortsAndRefusesNothing) {
  ListOf<TypeParam> list;
  for (const s32 key : {2, 3, 1, 2, 3, 1})
    EXPECT_EQ(list.AddOrdered(key), SM_STATUS_SUCCESS);
  EXPECT_EQ(list.Walk(), (Keys{1, 1, 2, 2, 3, 3}));
}

TYPED_TEST(List, OrderedInsertionStopsAtTheFirstGreaterEntry) {
  ListOf<TypeParam> list;
  for (const s32 key : {5, 1})
    list.Append(key);  // not in order: the 1 is never reached
  EXPECT_EQ(list.AddOrdered(2), SM_STATUS_SUCCESS);
  EXPECT_EQ(list.Walk(), (Keys{2, 5, 1}));
}

// A compare that remembers what it was given and sends every new entry to the end.
template <typename Entry>
struct Given {
  static inline Entry* newEntry = nullptr;
  static inline Entry* listEntry = nullptr;
  static s32 Remember(Entry* first, Entry* second) {
    newEntry = first;
    listEntry = second;
    return 5;  // any positive value goes on
  }
};

TYPED_TEST(List, CompareIsGivenTheNewEntryAndOneOfTheList) {
  using Entry = typename TypeParam::Entry;
  ListOf<TypeParam> list;
  Entry* there = list.Append(1);
  Entry* fresh = list.Make(2);
  EXPECT_EQ(TypeParam::kInsertKeyed(list.get(), fresh, Given<Entry>::Remember), 0u);
  EXPECT_EQ(Given<Entry>::newEntry, fresh);
  EXPECT_EQ(Given<Entry>::listEntry, there);
  EXPECT_EQ(list->tail, fresh);
  Entry* last = list.Make(0);
  EXPECT_EQ(TypeParam::kInsertOrdered(list.get(), last, Given<Entry>::Remember), 0u);
  EXPECT_EQ(Given<Entry>::newEntry, last);
  EXPECT_EQ(Given<Entry>::listEntry, fresh);
  EXPECT_EQ(list->tail, last);
}

u32 comparedLock = 0;
std::atomic<bool> otherGotIn = false;
bool otherGotInDuringCompare = false;
std::thread other;
std::atomic<pid_t> otherId = 0;

// Calls the keys equal, after another thread has taken the list's lock or waits for it.
template <typename Entry>
s32 LetAnotherThreadTry(Entry*, Entry*) {
  other = std::thread([] {
    otherId = gettid();
    qvx::LockContext(comparedLock);
    otherGotIn = true;
    qvx::UnLockContext(comparedLock);
  });
  while (otherId == 0 || (!otherGotIn && !qvx::test::IsAsleep(otherId))) {
    std::this_thread::yield();
  }
  otherGotInDuringCompare = otherGotIn;
  return 0;
}

// Inserts with a compare under which another thread wants the lock.
template <typename Kind, typename Insert>
void ExpectCompareUnderTheLock(Insert insert, u32 status) {
  ListOf<Kind> list;
  list.Append(1);
  comparedLock = list->lock;
  otherGotIn = false;
  otherId = 0;
  EXPECT_EQ(insert(list.get(), list.Make(1), LetAnotherThreadTry<typename Kind::Entry>), status);
  other.join();
  EXPECT_FALSE(otherGotInDuringCompare);
  EXPECT_TRUE(otherGotIn);
}

TYPED_TEST(List, CompareRunsUnderTheListsLock) {
  ExpectCompareUnderTheLock<TypeParam>(TypeParam::kInsertKeyed, SM_STATUS_BAD_ARGUMENT);
  ExpectCompareUnderTheLock<TypeParam>(TypeParam::kInsertOrdered, SM_STATUS_SUCCESS);
}

// A count seen to change before the lock is let go would be an operation that did not wait for it.
TYPED_TEST(List, EveryOperationWaitsForTheListsLock) {
  using Header = typename TypeParam::Header;
  using Entry = typename TypeParam::Entry;
  using Operation = void (*)(Header*, Entry*);
  const Operation operations[] = {
      [](Header* list, Entry* entry) { TypeParam::kInsertAtHead(list, entry); },
      [](Header* list, Entry* entry) { TypeParam::kInsertAtTail(list, entry); },
      [](Header* list, Entry* entry) { TypeParam::kInsertKeyed(list, entry, CompareKeys<Entry>); },
      [](Header* list, Entry* entry) {
        TypeParam::kInsertOrdered(list, entry, CompareKeys<Entry>);
      },
      [](Header* list, Entry*) { TypeParam::kRemoveAtHead(list); },
      [](Header* list, Entry*) { TypeParam::kRemoveAtTail(list); },
      [](Header* list, Entry*) { TypeParam::kDelete(list, list->head); },
  };
  ListOf<TypeParam> list;
  s32 key = 0;
  for (const Operation operation : operations) {
    Entry* fresh = list.Make(++key);
    const u32 before = list->count;
    qvx::LockContext(list->lock);
    EXPECT_TRUE(qvx::test::WaitsFor([&] { operation(list.get(), fresh); },
                                    [&] {
                                      EXPECT_EQ(list->count, before) << key;
                                      qvx::UnLockContext(list->lock);
                                    }))
        << key;
    EXPECT_NE(list->count, before) << key;
  }
}

TYPED_TEST(List, FreeingWaitsForAnOperationUnderWay) {
  typename TypeParam::Header* list = TypeParam::kAlloc();
  qvx::LockContext(list->lock);
  EXPECT_TRUE(qvx::test::WaitsFor([list] { TypeParam::kFree(list); },
                                  [lock = list->lock] { qvx::UnLockContext(lock); }));
}

TYPED_TEST(List, SeveralThreadsMayUseOneList) {
  constexpr u32 kThreads = 4;
  constexpr u32 kEach = 500;
  ListOf<TypeParam> list;
  for (u32 at = 0; at < kThreads * kEach; ++at)
    list.Make(static_cast<s32>(at));
  std::vector<std::thread> threads;
  for (u32 thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([&list, thread] {
      for (u32 at = thread * kEach; at < (thread + 1) * kEach; ++at) {
        if (at % 2 == 0) {
          TypeParam::kInsertAtHead(list.get(), list.made(at));
        } else {
          TypeParam::kInsertAtTail(list.get(), list.made(at));
        }
        if (at % 5 == 0) (void)TypeParam::kRemoveAtHead(list.get());
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(list.Walk().size(), kThreads * kEach * 4 / 5);
}

}  // namespace
