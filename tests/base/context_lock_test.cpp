// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/context_lock.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

#include "qvxcs/context_lock.h"

#include "support/alloc_fault.h"

namespace {

TEST(ContextLock, AZeroHandleDoesNothing) {
  PXTLockContext(0);
  PXTLockContext(0);
  PXTUnLockContext(0);
  PXTFreeContextLock(0);
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
  u32 sum = 0;
  std::vector<std::thread> threads;
  for (int at = 0; at < 8; ++at) {
    threads.emplace_back([&sum, handle] {
      for (int round = 0; round < 1000; ++round) {
        PXTLockContext(handle);
        ++sum;
        PXTUnLockContext(handle);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(sum, 8000U);
  PXTFreeContextLock(handle);
}

TEST(ContextLock, ThreadsMakeAndFreeLocksAtOnce) {
  std::vector<std::thread> threads;
  for (int at = 0; at < 8; ++at) {
    threads.emplace_back([] {
      for (int round = 0; round < 500; ++round) {
        const u32 handle = PXTAllocContextLock();
        PXTLockContext(handle);
        PXTUnLockContext(handle);
        PXTFreeContextLock(handle);
      }
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

// A process may end, and the library go, while a thread still makes locks.
TEST(ContextLock, TheSlotsGoOnlyWhileNoThreadMakesOrHasALock) {
  std::atomic<int> running = 4;
  std::atomic<int> releases = 0;
  std::vector<std::thread> threads;
  for (int at = running; at > 0; --at) {
    threads.emplace_back([&running, &releases] {
      for (int round = 0; round < 2000 || releases < 50000; ++round) {
        const u32 handle = PXTAllocContextLock();
        PXTLockContext(handle);
        PXTUnLockContext(handle);
        PXTFreeContextLock(handle);
      }
      --running;
    });
  }
  while (running != 0) {
    qvx::ReleaseContextLockSlots();
    ++releases;
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  const u32 first = PXTAllocContextLock();
  const u32 second = PXTAllocContextLock();
  EXPECT_NE(first, 0U);
  EXPECT_NE(second, 0U);
  EXPECT_NE(first, second);
  PXTFreeContextLock(first);
  PXTFreeContextLock(second);
}

TEST(ContextLock, ALockInUseKeepsTheSlots) {
  const u32 handle = PXTAllocContextLock();
  PXTLockContext(handle);
  qvx::ReleaseContextLockSlots();
  std::atomic<bool> taken = false;
  std::thread other([&taken, handle] {
    PXTLockContext(handle);
    taken = true;
    PXTUnLockContext(handle);
  });
  usleep(20000);
  EXPECT_FALSE(taken);
  PXTUnLockContext(handle);
  other.join();
  EXPECT_TRUE(taken);
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
