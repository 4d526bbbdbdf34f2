// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/threads_turn.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "os/file_lock.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/processes.h"
#include "support/threads.h"

namespace {

using qvx::FileLockGuard;
using qvx::FreeThreadsTurnInChild;
using qvx::GiveThreadsTurn;
using qvx::TakeThreadsTurn;
using qvx::test::CountSleeps;
using qvx::test::InChild;
using qvx::test::LockHolder;
using qvx::test::LockIsFree;

// Runs `body` while another thread has the turn.
template <typename Body>
void WhileAnotherHasTheTurn(Body body) {
  std::atomic<bool> taken = false;
  std::atomic<bool> done = false;
  std::thread other([&taken, &done] {
    EXPECT_EQ(TakeThreadsTurn(0), 0);
    taken = true;
    while (!done) {
      std::this_thread::yield();
    }
    GiveThreadsTurn();
  });
  while (!taken) {
    std::this_thread::yield();
  }
  body();
  done = true;
  other.join();
}

bool TurnIsFree() {
  bool isFree = false;
  std::thread([&isFree] {
    isFree = TakeThreadsTurn(0) == 0;
    if (isFree) GiveThreadsTurn();
  }).join();
  return isFree;
}

TEST(ThreadsTurn, IsOneThreadsAtATime) {
  u32 sum = 0;
  std::atomic<u32> within = 0;
  std::atomic<u32> meetings = 0;
  qvx::test::InThreads(8, [&](u32) {
    for (int round = 0; round < 200; ++round) {
      ASSERT_GE(TakeThreadsTurn(60000), 0);
      meetings += within.exchange(1);
      std::this_thread::yield();
      ++sum;
      within = 0;
      GiveThreadsTurn();
    }
  });
  EXPECT_EQ(meetings, 0U);
  EXPECT_EQ(sum, 1600U);
}

TEST(ThreadsTurn, AThreadTakesItAgainAndItsLastGiveEndsIt) {
  EXPECT_EQ(TakeThreadsTurn(0), 0);
  EXPECT_EQ(TakeThreadsTurn(0), 0);
  GiveThreadsTurn();
  EXPECT_FALSE(TurnIsFree());
  GiveThreadsTurn();
  EXPECT_TRUE(TurnIsFree());
}

TEST(ThreadsTurn, ATimeOutOfZeroIsOneAttempt) {
  WhileAnotherHasTheTurn([] {
    const CountSleeps sleeps;
    EXPECT_EQ(TakeThreadsTurn(0), -1);
    EXPECT_EQ(CountSleeps::Count(), 0U);
  });
}

TEST(ThreadsTurn, WaitingSleepsAMillisecondBetweenTwoAttempts) {
  WhileAnotherHasTheTurn([] {
    const CountSleeps sleeps;
    EXPECT_EQ(TakeThreadsTurn(5), -1);
    EXPECT_EQ(CountSleeps::Count(), 5U);
    EXPECT_EQ(CountSleeps::Microseconds(), 5000U);
  });
}

TEST(ThreadsTurn, TellsHowManySleepsItTook) {
  std::atomic<bool> taken = false;
  std::thread other([&taken] {
    EXPECT_EQ(TakeThreadsTurn(0), 0);
    taken = true;
    usleep(30000);
    GiveThreadsTurn();
  });
  while (!taken) {
    std::this_thread::yield();
  }
  const s32 sleeps = TakeThreadsTurn(60000);
  EXPECT_GE(sleeps, 1);
  EXPECT_LE(sleeps, 40);
  GiveThreadsTurn();
  other.join();
}

// The holder comes back at once whenever it has given the turn; it works for 5 ms each time.
TEST(ThreadsTurn, AThreadThatTakesItWithoutAPauseLetsTheOthersIn) {
  std::atomic<bool> running = true;
  std::atomic<bool> begun = false;
  std::thread greedy([&] {
    while (running) {
      ASSERT_GE(TakeThreadsTurn(60000), 0);
      begun = true;
      usleep(5000);
      GiveThreadsTurn();
    }
  });
  while (!begun) {
    std::this_thread::yield();
  }
  for (int round = 0; round < 20; ++round) {
    EXPECT_GE(TakeThreadsTurn(300), 0) << "round " << round;
    GiveThreadsTurn();
  }
  running = false;
  greedy.join();
}

class FileLockTurn : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::RequireSandbox();
    qvx::hGFileLock = qvx::CreateGlobalMutex(130000);
    ASSERT_EQ(qvx::hGFileLock, 130000U);
  }
};

TEST_F(FileLockTurn, AGuardOfAnotherThreadKeepsThisOneOut) {
  const FileLockGuard outer(1);
  ASSERT_TRUE(outer);
  std::thread([] {
    const FileLockGuard inner(0);
    EXPECT_FALSE(inner);
  }).join();
  EXPECT_FALSE(LockIsFree());
}

TEST_F(FileLockTurn, AThreadThatWaitsForTheTurnGivesUpInTheLocksOwnTime) {
  WhileAnotherHasTheTurn([] {
    const CountSleeps sleeps;
    const FileLockGuard guard(1);
    EXPECT_FALSE(guard);
    EXPECT_EQ(CountSleeps::Count(), 60000U);
    EXPECT_EQ(CountSleeps::Microseconds(), 60000000U);
  });
}

// The turn took some of the sleeps; only the others are left for the lock.
TEST_F(FileLockTurn, TheTurnsAttemptsAreTakenOffTheLocks) {
  const LockHolder otherProcess;
  const CountSleeps sleeps;
  std::atomic<bool> taken = false;
  std::thread other([&taken] {
    EXPECT_EQ(TakeThreadsTurn(0), 0);
    taken = true;
    while (CountSleeps::Count() < 20000) {
      std::this_thread::yield();
    }
    GiveThreadsTurn();
  });
  while (!taken) {
    std::this_thread::yield();
  }
  const FileLockGuard guard(1);
  EXPECT_FALSE(guard);
  EXPECT_EQ(CountSleeps::Count(), 60000U);
  other.join();
  EXPECT_TRUE(TurnIsFree());
}

TEST_F(FileLockTurn, ANestedGuardTakesTheTurnWithItAndGivesItBackOnce) {
  {
    const FileLockGuard outer(0);
    {
      const FileLockGuard inner(0);
      EXPECT_TRUE(inner);
    }
    // The record lock is the process's and ended with the inner guard; the turn did not.
    EXPECT_TRUE(LockIsFree());
    EXPECT_FALSE(TurnIsFree());
  }
  EXPECT_TRUE(TurnIsFree());
}

TEST_F(FileLockTurn, AGuardWithoutTheLockGivesTheTurnBack) {
  const LockHolder other;
  const FileLockGuard guard(0);
  EXPECT_FALSE(guard);
  EXPECT_TRUE(TurnIsFree());
}

TEST_F(FileLockTurn, AChildStartsWithTheTurnFreeWhoeverHadIt) {
  WhileAnotherHasTheTurn([] {
    EXPECT_EQ(InChild([] {
                FreeThreadsTurnInChild();
                const FileLockGuard guard(0);
                return guard ? 0 : 1;
              }),
              0);
  });
}

// A signal handler may fork within a call.
TEST_F(FileLockTurn, AChildOfTheThreadThatHasTheTurnHasItToo) {
  EXPECT_EQ(TakeThreadsTurn(0), 0);
  EXPECT_EQ(InChild([] {
              FreeThreadsTurnInChild();
              if (TurnIsFree()) return 1;
              GiveThreadsTurn();
              return TurnIsFree() ? 0 : 2;
            }),
            0);
  GiveThreadsTurn();
}

}  // namespace
