// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/semaphore.h"

#include <gtest/gtest.h>
#include <sys/ipc.h>
#include <sys/sem.h>
#include <sys/time.h>

#include <csignal>

#include "qvxcs/status.h"

#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/processes.h"

namespace {

using qvx::test::CountSleeps;
using qvx::test::InChild;

constexpr s32 kKey = 0x51565801;
constexpr s32 kTimedOut = SM_STATUS_TIMEOUT;
constexpr s32 kMaximum = 32767;

int SetsInUse() {
  seminfo info = {};
  return semctl(0, 0, SEM_INFO, &info) < 0 ? -1 : info.semusz;
}

int ValueOf(s32 handle) { return semctl(handle, 0, GETVAL); }

// Every case starts in an IPC namespace without sets, where the system gives out identifier 0 next.
class Semaphore : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    ASSERT_EQ(SetsInUse(), 0);
  }
};

TEST_F(Semaphore, AHandleIsNeverTheIdentifierZero) {
  const s32 handle = qvx::CreateSemaphore(kKey, 3);
  EXPECT_GT(handle, 0);
  EXPECT_EQ(ValueOf(handle), 3);
  EXPECT_EQ(qvx::OpenSemaphore(kKey), handle);
  EXPECT_EQ(SetsInUse(), 1) << "the placeholder was left behind";
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
  EXPECT_EQ(SetsInUse(), 0);
}

TEST_F(Semaphore, TheNamespaceBeginsWithIdentifierZero) {
  EXPECT_EQ(semget(kKey, 1, IPC_CREAT | IPC_EXCL | 0666), 0);
  EXPECT_EQ(qvx::OpenSemaphore(kKey), 0);
  EXPECT_EQ(qvx::CreateSemaphore(kKey, 5), 0);
  EXPECT_EQ(ValueOf(0), 0);
  EXPECT_EQ(semctl(0, 0, IPC_RMID), 0);
}

TEST_F(Semaphore, AnExistingSetIsUsedAsItIs) {
  const s32 handle = qvx::CreateSemaphore(kKey, 2);
  ASSERT_GT(handle, 0);
  EXPECT_EQ(qvx::CreateSemaphore(kKey, 9), handle);
  EXPECT_EQ(ValueOf(handle), 2);
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
}

TEST_F(Semaphore, EverybodyMayUseASet) {
  const s32 handle = qvx::CreateSemaphore(kKey, 0);
  ASSERT_GT(handle, 0);
  semid_ds set = {};
  ASSERT_EQ(semctl(handle, 0, IPC_STAT, &set), 0);
  EXPECT_EQ(set.sem_perm.mode & 0777, 0666);
  EXPECT_EQ(set.sem_nsems, 1U);
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
}

TEST_F(Semaphore, AMissingSetIsNotOpenedAndNotMade) {
  EXPECT_EQ(qvx::OpenSemaphore(kKey), 0);
  EXPECT_EQ(qvx::OpenSemaphore(IPC_PRIVATE), 0);
  EXPECT_EQ(SetsInUse(), 0);
}

TEST_F(Semaphore, ASystemWithoutSetsToGiveIsAFailure) {
  qvx::test::WriteFile("/proc/sys/kernel/sem", "250 32000 32 0\n");
  EXPECT_EQ(qvx::CreateSemaphore(kKey, 1), 0);
  EXPECT_EQ(SetsInUse(), 0);
}

// The placeholder takes the one set that there is to have.
TEST_F(Semaphore, WhereThereIsOneSetOnlyIdentifierZeroIsNotHandedOut) {
  qvx::test::WriteFile("/proc/sys/kernel/sem", "250 32000 32 1\n");
  EXPECT_EQ(qvx::CreateSemaphore(kKey, 1), 0);
  EXPECT_EQ(SetsInUse(), 0);
}

TEST_F(Semaphore, AValueThatTheSystemRefusesLeavesANewSetAtZero) {
  for (const u32 initial : {u32{kMaximum} + 1, 0x80000000U, 0xFFFFFFFFU}) {
    const s32 handle = qvx::CreateSemaphore(kKey, initial);
    EXPECT_GT(handle, 0) << initial;
    EXPECT_EQ(ValueOf(handle), 0) << initial;
    EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
  }
}

TEST_F(Semaphore, ASetOutlivesTheProcessThatMadeIt) {
  EXPECT_EQ(InChild([] { return qvx::CreateSemaphore(kKey, 7) > 0 ? 0 : 1; }), 0);
  const s32 handle = qvx::OpenSemaphore(kKey);
  EXPECT_GT(handle, 0);
  EXPECT_EQ(ValueOf(handle), 7);
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
}

TEST_F(Semaphore, AWaitTakesAndAReleaseGivesBack) {
  const s32 handle = qvx::CreateSemaphore(kKey, 2);
  EXPECT_EQ(qvx::WaitForSemaphore(handle, 0), 0);
  EXPECT_EQ(qvx::WaitForSemaphore(handle, -1), 0);
  EXPECT_EQ(ValueOf(handle), 0);
  EXPECT_EQ(qvx::ReleaseSemaphore(handle), 0);
  EXPECT_EQ(ValueOf(handle), 1);
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
}

TEST_F(Semaphore, ATimeOutCountsAttemptsAMillisecondApart) {
  const s32 handle = qvx::CreateSemaphore(kKey, 0);
  const struct {
    s32 timeout;
    u32 sleeps;
  } cases[] = {{0, 0}, {-2, 0}, {1, 1}, {5, 5}};
  for (const auto& one : cases) {
    const CountSleeps sleeps;
    EXPECT_EQ(qvx::WaitForSemaphore(handle, one.timeout), kTimedOut);
    EXPECT_EQ(CountSleeps::Count(), one.sleeps);
    EXPECT_EQ(CountSleeps::Microseconds(), u64{one.sleeps} * 1000);
  }
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
}

TEST_F(Semaphore, APolledWaitTakesEveryFailureForBusy) {
  const s32 handle = qvx::CreateSemaphore(kKey, 1);
  ASSERT_EQ(qvx::DestroySemaphore(handle), 0);
  const CountSleeps sleeps;
  EXPECT_EQ(qvx::WaitForSemaphore(handle, 3), kTimedOut);
  EXPECT_EQ(CountSleeps::Count(), 3U);
}

TEST_F(Semaphore, AWaitWithoutLimitEndsWithTheSet) {
  const s32 handle = qvx::CreateSemaphore(kKey, 1);
  ASSERT_EQ(qvx::DestroySemaphore(handle), 0);
  EXPECT_EQ(qvx::WaitForSemaphore(handle, -1), -1);
  EXPECT_EQ(qvx::ReleaseSemaphore(handle), -1);
}

s32 signalled = 0;
volatile sig_atomic_t signals = 0;

TEST_F(Semaphore, AnInterruptedWaitWithoutLimitGoesOn) {
  signalled = qvx::CreateSemaphore(kKey, 0);
  ASSERT_GT(signalled, 0);
  struct sigaction action = {};
  action.sa_handler = [](int) {
    signals = signals + 1;
    if (signals == 3) (void)qvx::ReleaseSemaphore(signalled);
  };
  ASSERT_EQ(sigaction(SIGALRM, &action, nullptr), 0);
  const itimerval every = {{0, 20000}, {0, 20000}};
  ASSERT_EQ(setitimer(ITIMER_REAL, &every, nullptr), 0);
  EXPECT_EQ(qvx::WaitForSemaphore(signalled, -1), 0);
  const itimerval never = {};
  ASSERT_EQ(setitimer(ITIMER_REAL, &never, nullptr), 0);
  EXPECT_GE(signals, 3);
  EXPECT_EQ(qvx::DestroySemaphore(signalled), 0);
}

TEST_F(Semaphore, AnotherProcessIsLetIn) {
  const s32 handle = qvx::CreateSemaphore(kKey, 0);
  EXPECT_EQ(InChild([] { return qvx::ReleaseSemaphore(qvx::OpenSemaphore(kKey)); }), 0);
  EXPECT_EQ(qvx::WaitForSemaphore(handle, 0), 0);
  EXPECT_EQ(InChild([handle] { return qvx::WaitForSemaphore(handle, 0); }), kTimedOut);
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
}

TEST_F(Semaphore, AReleaseBeyondTheSystemsMaximumFails) {
  const s32 handle = qvx::CreateSemaphore(kKey, kMaximum);
  EXPECT_EQ(ValueOf(handle), kMaximum);
  EXPECT_EQ(qvx::ReleaseSemaphore(handle), -1);
  EXPECT_EQ(ValueOf(handle), kMaximum);
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
}

TEST_F(Semaphore, AResetSetsZeroAndItsResultIsIgnored) {
  const s32 handle = qvx::CreateSemaphore(kKey, 5);
  EXPECT_EQ(qvx::ResetSemaphore(handle), 0);
  EXPECT_EQ(ValueOf(handle), 0);
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
  EXPECT_EQ(qvx::ResetSemaphore(handle), 0);
}

TEST_F(Semaphore, DestroyingTwiceFails) {
  const s32 handle = qvx::CreateSemaphore(kKey, 0);
  EXPECT_EQ(qvx::DestroySemaphore(handle), 0);
  EXPECT_EQ(qvx::DestroySemaphore(handle), -1);
}

TEST_F(Semaphore, HandleZeroIsInvalid) {
  EXPECT_EQ(qvx::WaitForSemaphore(0, -1), -1);
  EXPECT_EQ(qvx::WaitForSemaphore(0, 0), -1);
  EXPECT_EQ(qvx::ReleaseSemaphore(0), -1);
  EXPECT_EQ(qvx::ResetSemaphore(0), -1);
  EXPECT_EQ(qvx::DestroySemaphore(0), 0);
}

}  // namespace
