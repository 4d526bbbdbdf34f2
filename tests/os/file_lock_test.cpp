// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/file_lock.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "qvxcs/status.h"

#include "base/layout.h"
#include "os/ipc_file.h"
#include "support/alarms.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/manual_sample.h"
#include "support/processes.h"
#include "support/threads.h"

namespace {

QVX_BUILT_IN(PackagedFolders, "packaging/qvxcs.tmpfiles")

using qvx::test::AlarmsEndTheHold;
using qvx::test::CountSleeps;
using qvx::test::InChild;
using qvx::test::LockHolder;

constexpr s32 kTimedOut = SM_STATUS_TIMEOUT;

// One request of this process: a lock of `type` from `start` on, length 0 up to any end.
int Request(int file, int command, short type, off_t start, off_t length) {
  struct flock part = {};
  part.l_type = type;
  part.l_whence = SEEK_SET;
  part.l_start = start;
  part.l_len = length;
  return fcntl(file, command, &part);
}

// Whether another process could take such a lock now.
bool OthersMayTake(short type, off_t start = 0, off_t length = 0) {
  return InChild([=] {
           const int file = open(qvx::kIPCFilePath, O_RDWR | O_CLOEXEC);
           return Request(file, F_SETLK, type, start, length) == 0 ? 1 : 0;
         }) == 1;
}

bool FreeForOthers() { return OthersMayTake(F_WRLCK); }

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

TEST_F(FileLockTest, TheGroupMayWriteTheFileWhereTheUmaskAllowsIt) {
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  ASSERT_EQ(unlink(qvx::kIPCFilePath), 0);
  (void)umask(0);
  EXPECT_EQ(qvx::OpenIPCFile(), 0);
  EXPECT_EQ(qvx::test::ModeOf(qvx::kIPCFilePath), 0664U);
}

TEST_F(FileLockTest, OnlyDeniedAccessOpensTheFileReadOnly) {
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  const char folder[] = "/etc/cim/zarn/plinthos/var/lib/vexilon";
  ASSERT_EQ(mount(folder, folder, nullptr, MS_BIND, nullptr), 0);
  ASSERT_EQ(mount(nullptr, folder, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
  EXPECT_EQ(qvx::OpenIPCFile(), -1);
  EXPECT_EQ(qvx::IPCFileDescriptor(), -1);
  EXPECT_EQ(qvx::CreateGlobalMutex(130000), 0U);
  ASSERT_EQ(umount(folder), 0);
  EXPECT_EQ(qvx::OpenIPCFile(), 0);
}

TEST_F(FileLockTest, ANameOfZeroIsNoMutex) {
  EXPECT_EQ(qvx::CreateGlobalMutex(0), 0U);
  EXPECT_EQ(qvx::OpenGlobalMutex(0), 0U);
  EXPECT_EQ(qvx::OpenGlobalMutex(5), 5U);
}

TEST_F(FileLockTest, ANameOfZeroDoesNotOpenTheFile) {
  ASSERT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_EQ(qvx::CreateGlobalMutex(0), 0U);
  EXPECT_LT(qvx::IPCFileDescriptor(), 0);
}

TEST_F(FileLockTest, AHandleOfZeroIsRefusedWithoutTouchingTheFile) {
  EXPECT_EQ(qvx::WaitForGlobalMutex(0, -1), -1);
  EXPECT_TRUE(FreeForOthers());
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_TRY), 1U);
  EXPECT_EQ(qvx::ReleaseGlobalMutex(0), -1);
  EXPECT_FALSE(FreeForOthers());
}

TEST_F(FileLockTest, ATimeOutOfZeroMakesOneAttempt) {
  const LockHolder other(qvx::kIPCFilePath);
  const CountSleeps sleeps;
  EXPECT_EQ(qvx::WaitForGlobalMutex(qvx::hGFileLock, 0), kTimedOut);
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_TRY), 0U);
  EXPECT_EQ(qvx::FileLock(2), 0U);
  EXPECT_EQ(qvx::FileLock(0x101), 0U);
  EXPECT_EQ(CountSleeps::Count(), 0U);
}

TEST_F(FileLockTest, NegativeTimeOutsOtherThanMinusOneMakeOneAttempt) {
  const CountSleeps sleeps;
  {
    const LockHolder other(qvx::kIPCFilePath);
    EXPECT_EQ(qvx::LockIPCFileRecord(0, -2), kTimedOut);
    EXPECT_EQ(qvx::LockIPCFileRecord(0, INT32_MIN), kTimedOut);
  }
  EXPECT_EQ(qvx::LockIPCFileRecord(0, -2), 0);
  EXPECT_EQ(CountSleeps::Count(), 0U);
}

TEST_F(FileLockTest, WaitingMakesSixtyThousandAttemptsAMillisecondApart) {
  const LockHolder other(qvx::kIPCFilePath);
  const CountSleeps sleeps;
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_WAIT), 0U);
  EXPECT_EQ(CountSleeps::Count(), 60000U);
  EXPECT_EQ(CountSleeps::Microseconds(), 60000000U);
}

TEST_F(FileLockTest, ExcludesOtherProcessesUntilReleased) {
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_WAIT), 1U);
  EXPECT_FALSE(FreeForOthers());
  EXPECT_EQ(qvx::FileUnlock(), 0);
  EXPECT_TRUE(FreeForOthers());
}

TEST_F(FileLockTest, KeepsReadersAndEveryByteFromOthers) {
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_WAIT), 1U);
  EXPECT_FALSE(OthersMayTake(F_RDLCK));
  EXPECT_FALSE(OthersMayTake(F_RDLCK, 0, 1));
  EXPECT_FALSE(OthersMayTake(F_RDLCK, 1000000, 1));
  EXPECT_EQ(qvx::FileUnlock(), 0);
  EXPECT_TRUE(OthersMayTake(F_WRLCK, 0, 1));
  EXPECT_TRUE(OthersMayTake(F_WRLCK, 1000000, 1));
}

TEST_F(FileLockTest, TheInnerReleaseOfANestedHoldEndsTheOuterOne) {
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_WAIT), 1U);
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_WAIT), 1U);
  EXPECT_EQ(qvx::FileUnlock(), 0);
  EXPECT_TRUE(FreeForOthers());
  EXPECT_EQ(qvx::FileUnlock(), 0);
}

TEST_F(FileLockTest, AKilledHolderFreesTheLock) {
  LockHolder other(qvx::kIPCFilePath);
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_TRY), 0U);
  other.Kill();
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_TRY), 1U);
}

TEST_F(FileLockTest, AWaitWithoutLimitEndsWhenTheHolderDoes) {
  auto* const other = new LockHolder(qvx::kIPCFilePath);
  EXPECT_EQ(InChild([] { return qvx::LockIPCFileRecord(0, 3) == kTimedOut ? 0 : 1; }), 0);
  delete other;
  EXPECT_EQ(qvx::WaitForGlobalMutex(qvx::hGFileLock, -1), 0);
  EXPECT_FALSE(FreeForOthers());
}

TEST_F(FileLockTest, AnInterruptedWaitWithoutLimitGoesOn) {
  LockHolder other(qvx::kIPCFilePath);
  const AlarmsEndTheHold alarms(&other);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, -1), 0);
  EXPECT_GE(AlarmsEndTheHold::Count(), 3);
  EXPECT_FALSE(FreeForOthers());
}

TEST_F(FileLockTest, APolledWaitTakesTheLockAtALaterAttempt) {
  LockHolder other(qvx::kIPCFilePath);
  const AlarmsEndTheHold alarms(&other);
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_WAIT), 1U);
  EXPECT_GE(AlarmsEndTheHold::Count(), 3);
  EXPECT_FALSE(FreeForOthers());
}

TEST_F(FileLockTest, AWaitWithoutLimitThatCouldNeverEndIsAnError) {
  const int own = open("/tmp/own", O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(Request(own, F_SETLK, F_WRLCK, 0, 0), 0);
  int ready[2];
  ASSERT_EQ(pipe2(ready, O_CLOEXEC), 0);
  const pid_t other = fork();
  if (other == 0) {
    const int file = open(qvx::kIPCFilePath, O_RDWR | O_CLOEXEC);
    if (Request(file, F_SETLK, F_WRLCK, 0, 0) != 0 || write(ready[1], "r", 1) != 1) {
      _exit(1);
    }
    _exit(Request(own, F_SETLKW, F_WRLCK, 0, 0));
  }
  char byte = 0;
  ASSERT_EQ(read(ready[0], &byte, 1), 1);
  while (!qvx::test::IsAsleep(other)) {
  }
  EXPECT_EQ(qvx::LockIPCFileRecord(0, -1), -1);
  EXPECT_EQ(close(own), 0);
  EXPECT_EQ(waitpid(other, nullptr, 0), other);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, -1), 0);
}

TEST_F(FileLockTest, GuardsReleaseWhatTheyTook) {
  {
    const qvx::FileLockGuard guard(QVX_LOCK_WAIT);
    EXPECT_TRUE(guard);
    EXPECT_FALSE(FreeForOthers());
  }
  EXPECT_TRUE(FreeForOthers());
  const LockHolder other(qvx::kIPCFilePath);
  const qvx::FileLockGuard guard(QVX_LOCK_TRY);
  EXPECT_FALSE(guard);
}

TEST_F(FileLockTest, ClosingTheFileFreesTheLockAndIsAlwaysGood) {
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_TRY), 1U);
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_TRUE(FreeForOthers());
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_TRY), 0U);
  EXPECT_EQ(qvx::FileUnlock(), -1);
}

TEST_F(FileLockTest, AClosedFileIsAnErrorOnceItsSharedLockIsRefusedToo) {
  EXPECT_EQ(qvx::CloseIPCFile(), 0);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, -1), -1);
  EXPECT_EQ(qvx::UnlockIPCFileRecord(), -1);
  const struct {
    s32 timeout;
    s32 result;
    u32 sleeps;
  } cases[] = {{0, kTimedOut, 0}, {1, kTimedOut, 1}, {2, -1, 1}, {60000, -1, 1}};
  for (const auto& one : cases) {
    const CountSleeps sleeps;
    EXPECT_EQ(qvx::LockIPCFileRecord(0, one.timeout), one.result) << one.timeout;
    EXPECT_EQ(CountSleeps::Count(), one.sleeps) << one.timeout;
  }
}

// The lock file, which root owns, as an operator opens it; what follows is root's again.
void OpenWithoutWriteAccess() {
  ASSERT_EQ(qvx::CloseIPCFile(), 0);
  ASSERT_EQ(chmod(qvx::kIPCFilePath, 0644), 0);
  ASSERT_EQ(setegid(1000), 0);
  ASSERT_EQ(seteuid(1000), 0);
  EXPECT_EQ(qvx::OpenIPCFile(), 0);
  ASSERT_EQ(seteuid(0), 0);
  ASSERT_EQ(setegid(0), 0);
}

TEST_F(FileLockTest, AWaiterWithoutWriteAccessSharesTheLock) {
  OpenWithoutWriteAccess();
  for (const s32 timeout : {1, -1}) {
    EXPECT_EQ(qvx::LockIPCFileRecord(0, timeout), 0);
    EXPECT_TRUE(OthersMayTake(F_RDLCK));
    EXPECT_FALSE(OthersMayTake(F_WRLCK));
    EXPECT_EQ(qvx::UnlockIPCFileRecord(), 0);
    EXPECT_TRUE(OthersMayTake(F_WRLCK));
  }
}

TEST_F(FileLockTest, ASingleAttemptWithoutWriteAccessFails) {
  OpenWithoutWriteAccess();
  const CountSleeps sleeps;
  EXPECT_EQ(qvx::LockIPCFileRecord(0, 0), kTimedOut);
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_TRY), 0U);
  EXPECT_EQ(CountSleeps::Count(), 0U);
  EXPECT_EQ(qvx::FileLock(QVX_LOCK_WAIT), 1U);
  EXPECT_EQ(CountSleeps::Count(), 1U);
}

TEST_F(FileLockTest, AWaiterWithoutWriteAccessWaitsForAnExclusiveHolder) {
  OpenWithoutWriteAccess();
  LockHolder other(qvx::kIPCFilePath);
  {
    const CountSleeps sleeps;
    EXPECT_EQ(qvx::LockIPCFileRecord(0, 5), kTimedOut);
    EXPECT_EQ(CountSleeps::Count(), 5U);
  }
  const AlarmsEndTheHold alarms(&other);
  EXPECT_EQ(qvx::LockIPCFileRecord(0, -1), 0);
  EXPECT_GE(AlarmsEndTheHold::Count(), 3);
}

constexpr gid_t kOperators = 1000;

// The mode that the packages give the lock file.
mode_t ModeOfThePackages() {
  const std::string lines = PackagedFolders();
  const std::string path = "/.qvxipc ";
  const size_t at = lines.find(path);
  return at == std::string::npos
             ? 0
             : static_cast<mode_t>(strtoul(lines.c_str() + at + path.size(), nullptr, 8));
}

// Gives the lock file, which is root's and the operators', a mode.
void GiveMode(mode_t mode) {
  ASSERT_EQ(chown(qvx::kIPCFilePath, 0, kOperators), 0);
  ASSERT_EQ(chmod(qvx::kIPCFilePath, mode), 0);
}

// Another user, of this one group: whether it can take a shared lock.
bool SharesAs(uid_t user, gid_t group) {
  if (setgroups(0, nullptr) != 0 || setgid(group) != 0 || setuid(user) != 0) abort();
  const int file = open(qvx::kIPCFilePath, O_RDONLY | O_CLOEXEC);
  return file >= 0 && Request(file, F_SETLK, F_RDLCK, 0, 0) == 0;
}

// Whether root gets the lock while a user of this group keeps what it could take of it.
bool RootGetsTheLockBeside(uid_t user, gid_t group) {
  return InChild([=] {
           int ready[2];
           if (pipe2(ready, O_CLOEXEC) != 0) abort();
           const pid_t root = fork();
           if (root == 0) {
             char byte = 0;
             _exit(read(ready[0], &byte, 1) == 1 && qvx::FileLock(QVX_LOCK_TRY) == 1 ? 1 : 0);
           }
           (void)SharesAs(user, group);
           int status = 0;
           if (write(ready[1], "r", 1) != 1 || waitpid(root, &status, 0) != root) abort();
           return WEXITSTATUS(status);
         }) == 1;
}

TEST_F(FileLockTest, AStrangersSharedLockHoldsUpNobodyWithTheModeOfThePackages) {
  constexpr uid_t kStranger = 65534;
  GiveMode(ModeOfThePackages());
  EXPECT_TRUE(RootGetsTheLockBeside(kStranger, kStranger));
  EXPECT_EQ(InChild([] { return SharesAs(kStranger, kStranger) ? 1 : 0; }), 0);
  EXPECT_EQ(InChild([] { return SharesAs(kStranger, kOperators) ? 1 : 0; }), 1);
  GiveMode(0644);
  EXPECT_FALSE(RootGetsTheLockBeside(kStranger, kStranger));
}

}  // namespace
