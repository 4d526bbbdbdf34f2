// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/file_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "qvxcs/status.h"

#include "os/ipc_file.h"
#include "paths/layout.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/processes.h"

namespace {

using qvx::test::CountSleeps;
using qvx::test::InChild;
using qvx::test::LockHolder;

constexpr s32 kTimedOut = SM_STATUS_TIMEOUT;

// Whether another process could take the lock now.
bool FreeForOthers() {
  return InChild([] {
           struct flock whole = {};
           whole.l_type = F_WRLCK;
           whole.l_whence = SEEK_SET;
           const int file = open(qvx::kIPCFilePath, O_RDWR | O_CLOEXEC);
           return fcntl(file, F_SETLK, &whole) == 0 ? 1 : 0;
         }) == 1;
}

class FileLockTest : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    qvx::hGFileLock = qvx::CreateGlobalMutex(130000);
    ASSERT_EQ(qvx::hGFileLock, 130000U);
  }
};

TEST_F(FileLockTest, TheFileIsMadeCloseOnExecWithItsMode) {
  EXPECT_EQ(qvx::test::ModeOf(qvx::kIPCFilePath), 0644U);  // 0664 less the umask 022
  EXPECT_EQ(fcntl(qvx::IPCFileDescriptor(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  EXPECT_EQ(qvx::OpenIPCFile(), 0);
}

TEST_F(FileLockTest, ANameOfZeroIsNoMutex) {
  EXPECT_EQ(qvx::CreateGlobalMutex(0), 0U);
  EXPECT_EQ(qvx::OpenGlobalMutex(0), 0U);
  EXPECT_EQ(qvx::OpenGlobalMutex(5), 5U);
}

TEST_F(FileLockTest, AHandleOfZeroIsRefusedWithoutTouchingTheFile) {
  EXPECT_EQ(qvx::WaitForGlobalMutex(0, -1), -1);
  EXPECT_TRUE(FreeForOthers());
  EXPECT_EQ(qvx::FileLock(0), 1U);
  EXPECT_EQ(qvx::ReleaseGlobalMutex(0), -1);
  EXPECT_FALSE(FreeForOthers());
}

TEST_F(FileLockTest, ATimeOutOfZeroMakesOneAttempt) {
  const LockHolder other(qvx::kIPCFilePath);
  const CountSleeps sleeps;
  EXPECT_EQ(qvx::WaitForGlobalMutex(qvx::hGFileLock, 0), kTimedOut);
  EXPECT_EQ(qvx::FileLock(0), 0U);
  EXPECT_EQ(qvx::FileLock(2), 0U);
  EXPECT_EQ(qvx::FileLock(0x101), 0U);
  EXPECT_EQ(CountSleeps::Count(), 0U);
}

TEST_F(FileLockTest, WaitingMakesSixtyThousandAttemptsAMillisecondApart) {
  const LockHolder other(qvx::kIPCFilePath);
  const CountSleeps sleeps;
  EXPECT_EQ(qvx::FileLock(1), 0U);
  EXPECT_EQ(CountSleeps::Count(), 60000U);
  EXPECT_EQ(CountSleeps::Microseconds(), 60000000U);
}

TEST_F(FileLockTest, ExcludesOtherProcessesUntilReleased) {
  EXPECT_EQ(qvx::FileLock(1), 1U);
  EXPECT_FALSE(FreeForOthers());
  EXPECT_EQ(qvx::FileUnlock(), 0);
  EXPECT_TRUE(FreeForOthers());
}

TEST_F(FileLockTest, TheInnerReleaseOfANestedHoldEndsTheOuterOne) {
  EXPECT_EQ(qvx::FileLock(1), 1U);
  EXPECT_EQ(qvx::FileLock(1), 1U);
  EXPECT_EQ(qvx::FileUnlock(), 0);
  EXPECT_TRUE(FreeForOthers());
  EXPECT_EQ(qvx::FileUnlock(), 0);
}

TEST_F(FileLockTest, AKilledHolderFreesTheLock) {
  LockHolder other(qvx::kIPCFilePath);
  EXPECT_EQ(qvx::FileLock(0), 0U);
  other.Kill();
  EXPECT_EQ(qvx::FileLock(0), 1U);
}

TEST_F(FileLockTest, AWaitWithoutLimitEndsWhenTheHolderDoes) {
  auto* const other = new LockHolder(qvx::kIPCFilePath);
  EXPECT_EQ(InChild([] { return qvx::LockIPCFileRecord(0, 3) == kTimedOut ? 0 : 1; }), 0);
  delete other;
  EXPECT_EQ(qvx::WaitForGlobalMutex(qvx::hGFileLock, -1), 0);
  EXPECT_FALSE(FreeForOthers());
}

TEST_F(FileLockTest, GuardsReleaseWhatTheyTook) {
  {
    const qvx::FileLockGuard guard(1);
    EXPECT_TRUE(guard);
    EXPECT_FALSE(FreeForOthers());
  }
  EXPECT_TRUE(FreeForOthers());
  const LockHolder other(qvx::kIPCFilePath);
  const qvx::FileLockGuard guard(0);
  EXPECT_FALSE(guard);
}

TEST_F(FileLockTest, ClosingTheFileFreesTheLockAndIsAlwaysGood) {
  EXPECT_EQ(qvx::FileLock(0), 1U);
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_TRUE(FreeForOthers());
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_EQ(qvx::FileLock(0), 0U);
  EXPECT_EQ(qvx::FileUnlock(), -1);
}

TEST_F(FileLockTest, AWaiterWithoutWriteAccessSharesTheLock) {
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_EQ(InChild([] {
              if (setgid(1000) != 0 || setuid(1000) != 0 || qvx::OpenIPCFile() != 0) {
                return 1;
              }
              if (qvx::LockIPCFileRecord(0, 0) != kTimedOut) {
                return 2;
              }
              if (qvx::LockIPCFileRecord(0, 1) != 0 || qvx::LockIPCFileRecord(0, -1) != 0) {
                return 3;
              }
              return FreeForOthers() ? 4 : 0;
            }),
            0);
}

}  // namespace
