// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/threads_turn.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <semaphore>
#include <thread>
#include <utility>

#include "os/file_lock.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/passing_time.h"
#include "support/processes.h"
#include "support/threads.h"
#include "support/turn_holder.h"

namespace {

using qvx::FileLockGuard;
using qvx::FreeThreadsTurnInChild;
using qvx::GiveThreadsTurn;
using qvx::TakeThreadsTurn;
using qvx::test::CountSleeps;
using qvx::test::InChild;
using qvx::test::LockHolder;
using qvx::test::LockIsFree;
using qvx::test::OnSleep;
using qvx::test::SteppedClock;
using qvx::test::WhileAnotherHasTheTurn;

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

// Another thread that wants the turn while this one has it. Between two of its attempts it sleeps
// until Try() lets it make the next one, so that no test depends on the machine's load.
class Waiter {
 public:
  Waiter() : thread_([this] { Run(); }) { stopped_.acquire(); }
  ~Waiter() {
    while (!ended_) {
      (void)Try();
    }
    thread_.join();
  }
  Waiter(const Waiter&) = delete;
  Waiter& operator=(const Waiter&) = delete;

  // Lets it make one more attempt. Returns whether it got the turn, which it has then given back.
  bool Try() {
    go_.release();
    stopped_.acquire();
    return ended_;
  }
  // The sleeps that it took.
  [[nodiscard]] s32 Sleeps() const { return sleeps_; }
  // What the other threads do when they sleep.
  void OnPause(OnSleep::Action action) { onPause_ = std::move(action); }

 private:
  void Run() {
    isWaiter = true;
    sleeps_ = TakeThreadsTurn(60000);
    if (sleeps_ >= 0) GiveThreadsTurn();
    ended_ = true;
    stopped_.release();
  }
  void Sleep(u32 microseconds) {
    if (!isWaiter) return onPause_(microseconds);
    stopped_.release();
    go_.acquire();
  }

  static inline thread_local bool isWaiter = false;
  OnSleep::Action onPause_ = [](u32) {};
  s32 sleeps_ = -1;
  std::atomic<bool> ended_ = false;
  std::binary_semaphore stopped_{0};
  std::binary_semaphore go_{0};
  OnSleep onSleep_{[this](u32 microseconds) { Sleep(microseconds); }};
  std::thread thread_;
};

// A poll sleeps this long between two attempts: a shorter pause could fall between them.
constexpr u32 kPollSleep = 1000;

TEST(ThreadsTurn, TellsHowManySleepsItTook) {
  EXPECT_EQ(TakeThreadsTurn(0), 0);
  Waiter other;
  EXPECT_FALSE(other.Try());
  EXPECT_FALSE(other.Try());
  GiveThreadsTurn();
  EXPECT_TRUE(other.Try());
  EXPECT_EQ(other.Sleeps(), 3);
}

// Works that long with the turn. Nobody has it before.
void Work(u32 milliseconds) {
  ASSERT_EQ(TakeThreadsTurn(0), 0);
  SteppedClock::Advance(milliseconds);
  GiveThreadsTurn();
}

TEST(ThreadsTurn, AThreadThatTakesItWithoutAPauseLetsTheOthersInAfter10Milliseconds) {
  const SteppedClock clock;
  Work(0);
  ASSERT_EQ(TakeThreadsTurn(0), 0);
  Waiter other;
  bool cameIn = false;
  other.OnPause([&](u32 microseconds) {
    EXPECT_GT(microseconds, kPollSleep);
    cameIn = other.Try();
  });
  GiveThreadsTurn();
  Work(9);
  EXPECT_FALSE(cameIn);
  Work(1);
  EXPECT_TRUE(cameIn);
}

TEST(ThreadsTurn, AThreadAloneNeverPauses) {
  const SteppedClock clock;
  const CountSleeps sleeps;
  for (int round = 0; round < 20; ++round) {
    Work(50);
  }
  EXPECT_EQ(CountSleeps::Count(), 0U);
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
  const FileLockGuard outer(QVX_LOCK_WAIT);
  ASSERT_TRUE(outer);
  std::thread([] {
    const FileLockGuard inner(QVX_LOCK_TRY);
    EXPECT_FALSE(inner);
  }).join();
  EXPECT_FALSE(LockIsFree());
}

TEST_F(FileLockTurn, AThreadThatWaitsForTheTurnGivesUpInTheLocksOwnTime) {
  WhileAnotherHasTheTurn([] {
    const CountSleeps sleeps;
    const FileLockGuard guard(QVX_LOCK_WAIT);
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
  const FileLockGuard guard(QVX_LOCK_WAIT);
  EXPECT_FALSE(guard);
  EXPECT_EQ(CountSleeps::Count(), 60000U);
  other.join();
  EXPECT_TRUE(TurnIsFree());
}

// Two threads relieve each other, so that neither has the turn long enough to leave it to another
// thread. The turn is still taken while the process leaves the lock to other processes.
TEST_F(FileLockTurn, AfterAHundredMillisecondsTheProcessLeavesTheLockToOtherProcesses) {
  const SteppedClock clock;
  Work(0);
  ASSERT_EQ(TakeThreadsTurn(0), 0);
  Waiter third;
  u32 pauses = 0;
  third.OnPause([&pauses](u32 microseconds) {
    ++pauses;
    EXPECT_GT(microseconds, kPollSleep);
    EXPECT_TRUE(LockIsFree());
    EXPECT_FALSE(TurnIsFree());
  });
  GiveThreadsTurn();
  const auto work = [] {
    const FileLockGuard guard(0);
    EXPECT_TRUE(guard);
    SteppedClock::Advance(9);
  };
  // The 12th work ends after 108 ms; then the time is counted anew, from the 13th on.
  for (u32 count = 1; count <= 25; ++count) {
    if (count % 2 == 0) {
      work();
    } else {
      std::thread(work).join();
    }
    EXPECT_EQ(pauses, count < 12 ? 0U : count < 25 ? 1U : 2U) << count;
  }
}

TEST_F(FileLockTurn, ANestedGuardTakesTheTurnWithItAndGivesItBackOnce) {
  {
    const FileLockGuard outer(QVX_LOCK_TRY);
    {
      const FileLockGuard inner(QVX_LOCK_TRY);
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
  const FileLockGuard guard(QVX_LOCK_TRY);
  EXPECT_FALSE(guard);
  EXPECT_TRUE(TurnIsFree());
}

TEST_F(FileLockTurn, AChildStartsWithTheTurnFreeWhoeverHadIt) {
  WhileAnotherHasTheTurn([] {
    EXPECT_EQ(InChild([] {
                FreeThreadsTurnInChild();
                const FileLockGuard guard(QVX_LOCK_TRY);
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
