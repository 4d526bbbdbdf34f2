// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/context_lock.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <set>
#include <thread>

#include "qvxcs/context_lock.h"

#include "support/alloc_fault.h"
#include "support/threads.h"

namespace {

// Whether another thread waits for the lock, which this one has and then releases.
bool KeepsAnotherOut(u32 handle) {
  return qvx::test::WaitsFor(
      [handle] {
        PXTLockContext(handle);
        PXTUnLockContext(handle);
      },
      [handle] { PXTUnLockContext(handle); });
}

TEST(ContextLock, AZeroHandleDoesNothing) {
  const u32 handle = PXTAllocContextLock();
  PXTLockContext(0);
  PXTLockContext(0);
  PXTLockContext(handle);
  PXTUnLockContext(0);
  PXTFreeContextLock(0);
  EXPECT_TRUE(KeepsAnotherOut(handle));
  PXTFreeContextLock(handle);
}

TEST(ContextLock, HandlesNotInUseDoNothing) {
  const u32 handle = PXTAllocContextLock();
  ASSERT_NE(handle, 0U);
  PXTFreeContextLock(handle);
  for (const u32 stale : {handle, handle + 1, 100000U, 0x7FFFFFFFU, 0xFFFFFFC0U, 0xFFFFFFFFU}) {
    PXTLockContext(stale);
    PXTLockContext(stale);
    PXTUnLockContext(stale);
    PXTFreeContextLock(stale);
  }
}

TEST(ContextLock, HandlesInUseDifferAndFreedOnesComeBack) {
  std::set<u32> handles;
  for (int at = 0; at < 1000; ++at) {
    const u32 handle = PXTAllocContextLock();
    ASSERT_NE(handle, 0U);
    EXPECT_TRUE(handles.insert(handle).second);
  }
  for (const u32 handle : handles) {
    PXTLockContext(handle);
    PXTUnLockContext(handle);
    PXTFreeContextLock(handle);
  }
  const u32 again = PXTAllocContextLock();
  EXPECT_EQ(handles.count(again), 1U);
  PXTFreeContextLock(again);
  qvx::ReleaseContextLockSlots();
}

TEST(ContextLock, ExcludesTheOtherThreads) {
  const u32 handle = PXTAllocContextLock();
  PXTLockContext(handle);
  EXPECT_TRUE(KeepsAnotherOut(handle));
  std::atomic<u32> within = 0;
  std::atomic<u32> meetings = 0;
  qvx::test::InThreads(4, [&](u32) {
    for (int round = 0; round < 200; ++round) {
      PXTLockContext(handle);
      meetings += within.exchange(1);
      std::this_thread::yield();
      within = 0;
      PXTUnLockContext(handle);
    }
  });
  EXPECT_EQ(meetings, 0U);
  PXTFreeContextLock(handle);
}

// Which handles are in use, to find one that was given to two owners.
constexpr size_t kMarks = 4096;
std::array<std::atomic<u32>, kMarks> marks;

// Creates, takes and frees a lock; returns whether only this thread had it.
bool UseALock() {
  const u32 handle = PXTAllocContextLock();
  if (handle == 0 || handle >= kMarks || marks.at(handle).exchange(1) != 0) return false;
  PXTLockContext(handle);
  PXTUnLockContext(handle);
  marks.at(handle) = 0;
  PXTFreeContextLock(handle);
  return true;
}

// Whether `call` waits while this thread has the table of locks.
template <typename Call>
bool WaitsForTheTable(Call call) {
  qvx::HoldContextLocksForFork();
  return qvx::test::WaitsFor(call, qvx::EndContextLocksHold);
}

TEST(ContextLock, ThreadsMakeAndFreeLocksAtOnce) {
  u32 handle = 0;
  EXPECT_TRUE(WaitsForTheTable([&handle] { handle = PXTAllocContextLock(); }));
  EXPECT_TRUE(WaitsForTheTable([handle] { PXTFreeContextLock(handle); }));
  std::atomic<u32> faults = 0;
  qvx::test::InThreads(8, [&faults](u32) {
    for (int round = 0; round < 2000; ++round) {
      faults += UseALock() ? 0 : 1;
    }
  });
  EXPECT_EQ(faults, 0U);
}

// A process may end, and the library be unloaded, while a thread still creates locks.
TEST(ContextLock, TheSlotsGoOnlyWhileNoThreadMakesOrHasALock) {
  const u32 first = PXTAllocContextLock();
  const u32 second = PXTAllocContextLock();
  PXTFreeContextLock(first);
  PXTFreeContextLock(second);
  qvx::HoldContextLocksForFork();
  qvx::ReleaseContextLockSlots();
  qvx::EndContextLocksHold();
  EXPECT_EQ(PXTAllocContextLock(), second) << "the table is as it was";
  PXTFreeContextLock(second);
  std::atomic<u32> running = 4;
  std::atomic<u32> faults = 0;
  std::atomic<u32> releases = 0;
  qvx::test::InThreads(5, [&](u32 thread) {
    if (thread == 4) {
      for (; running != 0; ++releases) {
        qvx::ReleaseContextLockSlots();
      }
      return;
    }
    for (int round = 0; round < 2000 || releases < 20000; ++round) {
      faults += UseALock() ? 0 : 1;
    }
    --running;
  });
  EXPECT_EQ(faults, 0U);
  // The table starts empty again.
  qvx::ReleaseContextLockSlots();
  const u32 again = PXTAllocContextLock();
  EXPECT_EQ(again, 1U);
  PXTFreeContextLock(again);
}

TEST(ContextLock, ALockInUseKeepsTheSlots) {
  const u32 handle = PXTAllocContextLock();
  PXTLockContext(handle);
  qvx::ReleaseContextLockSlots();
  EXPECT_TRUE(KeepsAnotherOut(handle));
  PXTFreeContextLock(handle);
}

TEST(ContextLock, ExhaustedMemoryGivesZeroAndLeaksNothing) {
  const u32 met = qvx::test::FailEachAllocation(
      [] {
        const u32 handle = PXTAllocContextLock();
        PXTFreeContextLock(handle);
        return handle;
      },
      [](u32 handle) { EXPECT_EQ(handle, 0U); });
  EXPECT_GE(met, 1U);
}

}  // namespace
