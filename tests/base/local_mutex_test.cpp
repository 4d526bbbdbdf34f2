// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/local_mutex.h"

#include <gtest/gtest.h>

#include "qvxcs/status.h"

#include "support/alloc_fault.h"
#include "support/threads.h"

namespace {

TEST(LocalMutex, ANullHandleIsRefused) {
  EXPECT_EQ(qvx::WaitForLocalMutex(nullptr, -1), -1);
  EXPECT_EQ(qvx::WaitForLocalMutex(nullptr, 0), -1);
  EXPECT_EQ(qvx::ReleaseLocalMutex(nullptr), -1);
  qvx::DestroyLocalMutex(nullptr);
}

TEST(LocalMutex, IsNotRecursiveAndATimeOutOfZeroIsOneAttempt) {
  const qvx::LocalMutex mutex = qvx::CreateLocalMutex();
  EXPECT_EQ(qvx::WaitForLocalMutex(mutex, -1), 0);
  {
    const qvx::test::CountSleeps sleeps;
    EXPECT_EQ(qvx::WaitForLocalMutex(mutex, 0), static_cast<s32>(SM_STATUS_TIMEOUT));
    EXPECT_EQ(qvx::WaitForLocalMutex(mutex, -2), static_cast<s32>(SM_STATUS_TIMEOUT));
    EXPECT_EQ(qvx::test::CountSleeps::Count(), 0U);
  }
  EXPECT_EQ(qvx::ReleaseLocalMutex(mutex), 0);
  EXPECT_EQ(qvx::WaitForLocalMutex(mutex, 0), 0);
  EXPECT_EQ(qvx::ReleaseLocalMutex(mutex), 0);
  qvx::DestroyLocalMutex(mutex);
}

TEST(LocalMutex, ATimeOutCountsSleepsOfAMillisecond) {
  const qvx::LocalMutex mutex = qvx::CreateLocalMutex();
  EXPECT_EQ(qvx::WaitForLocalMutex(mutex, 5), 0);
  const qvx::test::CountSleeps sleeps;
  EXPECT_EQ(qvx::WaitForLocalMutex(mutex, 5), static_cast<s32>(SM_STATUS_TIMEOUT));
  EXPECT_EQ(qvx::test::CountSleeps::Count(), 5U);
  EXPECT_EQ(qvx::test::CountSleeps::Microseconds(), 5000U);
  EXPECT_EQ(qvx::ReleaseLocalMutex(mutex), 0);
  qvx::DestroyLocalMutex(mutex);
}

TEST(LocalMutex, AWaitWithoutLimitEndsWhenTheHolderReleases) {
  const qvx::LocalMutex mutex = qvx::CreateLocalMutex();
  EXPECT_EQ(qvx::WaitForLocalMutex(mutex, -1), 0);
  EXPECT_TRUE(qvx::test::WaitsFor(
      [mutex] {
        EXPECT_EQ(qvx::WaitForLocalMutex(mutex, -1), 0);
        EXPECT_EQ(qvx::ReleaseLocalMutex(mutex), 0);
      },
      [mutex] { EXPECT_EQ(qvx::ReleaseLocalMutex(mutex), 0); }));
  qvx::DestroyLocalMutex(mutex);
}

TEST(LocalMutex, APolledWaitTakesTheMutexAtALaterAttempt) {
  const qvx::LocalMutex mutex = qvx::CreateLocalMutex();
  EXPECT_EQ(qvx::WaitForLocalMutex(mutex, -1), 0);
  EXPECT_TRUE(qvx::test::WaitsFor(
      [mutex] {
        EXPECT_EQ(qvx::WaitForLocalMutex(mutex, 60000), 0);
        EXPECT_EQ(qvx::ReleaseLocalMutex(mutex), 0);
      },
      [mutex] { EXPECT_EQ(qvx::ReleaseLocalMutex(mutex), 0); }));
  qvx::DestroyLocalMutex(mutex);
}

TEST(LocalMutex, ExhaustedMemoryGivesNull) {
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(qvx::CreateLocalMutex(), nullptr);
}

}  // namespace
