// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "frame/forks.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>

#include "qvxcs/context_lock.h"
#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/memory.h"
#include "qvxcs/paths.h"
#include "qvxcs/status.h"

#include "base/context_lock.h"
#include "frame/module.h"
#include "os/threads_turn.h"
#include "support/alone.h"
#include "support/files.h"
#include "support/processes.h"

namespace {

using qvx::test::InChild;

// A child that waits for a thread of its parent never ends by itself.
void EndWhereItHangs() { (void)alarm(60); }

std::atomic<bool> forking = false;

// Has `forking` set by the next fork, before the library's own work for it. To be called after
// WatchForks(), because the last one that was registered is called first.
void NoteForks() {
  forking = false;
  ASSERT_EQ(pthread_atfork([] { forking = true; }, nullptr, nullptr), 0);
}

// Another thread, between `take` and `give` when the test forks, and for a while within the fork.
template <typename Take, typename Give>
class AnotherThread {
 public:
  AnotherThread(Take take, Give give)
      : thread_([this, take, give] {
          take();
          taken_ = true;
          while (!forking) {
            std::this_thread::yield();
          }
          usleep(50000);
          give();
          // A child that begins after its end would seem to leave it unjoined.
          while (!over_) {
            std::this_thread::yield();
          }
        }) {
    while (!taken_) {
      std::this_thread::yield();
    }
  }
  ~AnotherThread() {
    over_ = true;
    thread_.join();
  }
  AnotherThread(const AnotherThread&) = delete;
  AnotherThread& operator=(const AnotherThread&) = delete;

 private:
  std::atomic<bool> taken_ = false;
  std::atomic<bool> over_ = false;
  std::thread thread_;
};

QVX_ALONE(Forks, AChildMakesContextLocksThoughAnotherThreadWasMakingOne) {
  qvx::WatchForks();
  NoteForks();
  const AnotherThread maker(qvx::HoldContextLocksForFork, qvx::EndContextLocksHold);
  EXPECT_EQ(InChild([] {
              EndWhereItHangs();
              const u32 handle = PXTAllocContextLock();
              PXTLockContext(handle);
              PXTUnLockContext(handle);
              PXTFreeContextLock(handle);
              return handle == 0 ? 1 : 0;
            }),
            0);
}

QVX_ALONE(Forks, AreWatchedOnceHoweverOftenItIsAsked) {
  qvx::WatchForks();
  qvx::WatchForks();
  EXPECT_EQ(InChild([] {
              EndWhereItHangs();
              PXTFreeContextLock(PXTAllocContextLock());
              return 0;
            }),
            0);
}

bool WritesAndReadsAnIniValue() {
  astring value[8];
  u32 size = sizeof(value);
  return PXTWriteINIFileValue("A", "b", QVX_INI_ASTRING, "2", 2, "forks.ini", QVX_LOCK_TRY) ==
             SM_STATUS_SUCCESS &&
         PXTReadINIFileValue("A", "b", QVX_INI_ASTRING, value, &size, nullptr, 0, "forks.ini",
                             QVX_LOCK_TRY) == SM_STATUS_SUCCESS &&
         std::string(value) == "2";
}

constexpr char kPairs[] = "/run/forks.properties";

bool WritesAndReadsAPair() {
  char key[] = "b";
  char value[] = "2";
  const PXTKeyValue pair = {key, value};
  if (PXTCFGSetKeyValue(kPairs, &pair, 0) != SM_STATUS_SUCCESS) return false;
  u32 count = 0;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(kPairs, &count);
  const astring* const found = PXTCFGGetKeyValue(entries, count, key, 0);
  const bool good = found != nullptr && std::string(found) == value;
  PXTCFGFreeKeyValueEntries(entries, count);
  return good;
}

QVX_ALONE(Forks, AChildWritesAndExitsThoughAnotherThreadHadTheTurn) {
  qvx::test::RequireSandbox();
  ASSERT_EQ(qvx::ModuleInit(), 1);
  qvx::test::WriteFile(kPairs, "b=1\n");
  NoteForks();
  const AnotherThread writer([] { EXPECT_EQ(qvx::TakeThreadsTurn(0), 0); }, qvx::GiveThreadsTurn);
  EXPECT_EQ(InChild([] {
              EndWhereItHangs();
              if (!WritesAndReadsAnIniValue()) return 1;
              if (!WritesAndReadsAPair()) return 2;
              astring* path = PXTGetQVXInstallPath();
              if (path == nullptr) return 3;
              PXTFreeMem(path);
              if (qvx::ModuleFini() != 1) return 4;
              exit(0);
            }),
            0);
}

}  // namespace
