// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// What pthread_cancel does to a thread within a call: nothing, until the call is over.
#include <dirent.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "qvxcs/file_util.h"
#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/list.h"
#include "qvxcs/status.h"
#include "qvxcs/thread.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "os/threads_turn.h"
#include "support/alone.h"
#include "support/cancelled.h"
#include "support/files.h"
#include "support/passing_time.h"
#include "support/processes.h"
#include "support/sanitizers.h"

namespace {

using qvx::test::EndsAfter;
using qvx::test::EndsWithin;
using qvx::test::LockHolder;
using qvx::test::LockIsFree;
using qvx::test::OnSleep;
using qvx::test::ReadFile;

int OpenDescriptors() {
  int count = 0;
  DIR* const folder = opendir("/proc/self/fd");
  while (readdir(folder) != nullptr) {
    ++count;
  }
  (void)closedir(folder);
  return count;
}

// What a case may leave is seen when it ends.
class Attached {
 public:
  Attached() {
    EXPECT_EQ(qvx::ModuleAttach(), 1);
    descriptors_ = OpenDescriptors();
  }
  ~Attached() {
    EXPECT_TRUE(LockIsFree());
    EXPECT_EQ(qvx::TakeThreadsTurn(0), 0);
    qvx::GiveThreadsTurn();
    EXPECT_EQ(OpenDescriptors(), descriptors_);
    EXPECT_EQ(qvx::ModuleDetach(), 1);
  }
  Attached(const Attached&) = delete;
  Attached& operator=(const Attached&) = delete;

 private:
  int descriptors_ = 0;
};

QVX_ALONE(Cancel, ALogAppendThatWaitsForTheLockIsDoneFirst) {
  const Attached attached;
  LockHolder other(qvx::kIPCFilePath);
  const OnSleep release([&other](u32) { other.Release(); });
  u32 status = 77;
  EXPECT_TRUE(EndsAfter([&status] {
    status = PXTAppendToXMLLog("/run/cancel.xml", QVX_LOG_INFORMATION, 9, "u", "s", "<D/>", nullptr,
                               0, 131072);
  }));
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_NE(ReadFile("/run/cancel.xml").find("<ID>9</ID>"), std::string::npos);
}

QVX_ALONE(Cancel, AnINIWriteLeavesTheNewFileAndNoTemporary) {
  const Attached attached;
  qvx::test::WriteFile("/run/cancel.ini", "[A]\nb=1\n");
  u32 status = 77;
  EXPECT_TRUE(EndsAfter([&status] {
    status = PXTWriteINIPathFileValue("A", "b", QVX_INI_ASTRING, "2", 2, "/run/cancel.ini",
                                      QVX_LOCK_WAIT);
  }));
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile("/run/cancel.ini"), "[A]\nb=2\n");
}

QVX_ALONE(Cancel, AKeyValueWriteAndAReadAreDoneFirst) {
  const Attached attached;
  qvx::test::WriteFile("/run/cancel.properties", "a=1\n");
  char key[] = "a";
  char value[] = "2";
  const PXTKeyValue pair = {key, value};
  u32 status = 77;
  EXPECT_TRUE(EndsAfter([&] { status = PXTCFGSetKeyValue("/run/cancel.properties", &pair, 0); }));
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  u32 count = 0;
  PXTKeyValue* entries = nullptr;
  EXPECT_TRUE(
      EndsAfter([&] { entries = PXTCFGGetKeyValueEntries("/run/cancel.properties", &count); }));
  ASSERT_EQ(count, 1U);
  EXPECT_STREQ(entries[0].value, "2");
  PXTCFGFreeKeyValueEntries(entries, count);
}

QVX_ALONE(Cancel, AThreadThatWaitsForTheTurnGetsIt) {
  const Attached attached;
  std::atomic<bool> taken = false;
  std::atomic<bool> wanted = false;
  std::thread other([&] {
    EXPECT_EQ(qvx::TakeThreadsTurn(0), 0);
    taken = true;
    while (!wanted) {
      std::this_thread::yield();
    }
    qvx::GiveThreadsTurn();
  });
  while (!taken) {
    std::this_thread::yield();
  }
  const OnSleep want([&wanted](u32 microseconds) {
    wanted = true;
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
  });
  u32 status = 77;
  EXPECT_TRUE(EndsAfter([&status] {
    status =
        PXTWriteINIPathFileValue("A", "b", QVX_INI_ASTRING, "2", 2, "/run/turn.ini", QVX_LOCK_WAIT);
  }));
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  wanted = true;
  other.join();
}

QVX_ALONE(Cancel, AFileCallIsDoneFirst) {
  const Attached attached;
  u32 status = 77;
  EXPECT_TRUE(EndsAfter([&status] { status = PXTMkDir("/run/cancelled"); }));
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  u32 size = 0;
  qvx::test::WriteFile("/run/cancelled/file", "four");
  EXPECT_TRUE(EndsAfter([&] { status = PXTGetSizeOfFile("/run/cancelled/file", &size); }));
  EXPECT_EQ(size, 4U);
}

s32 CompareAtACancellationPoint(PXTDLListEntry*, PXTDLListEntry*) {
  pthread_testcancel();
  return 1;
}

QVX_ALONE(Cancel, AHostsCompareNeverLeavesTheListLocked) {
  const Attached attached;
  PXTDLList* const list = PXTDLListAlloc();
  PXTDLListInsertEntryAtHead(list, PXTDLListEntryAlloc(4));
  PXTDLListEntry* const entry = PXTDLListEntryAlloc(4);
  EXPECT_TRUE(
      EndsAfter([&] { (void)PXTDLListInsertOrdered(list, entry, CompareAtACancellationPoint); }));
  EXPECT_EQ(list->count, 2U);
  PXTDLListInsertEntryAtHead(list, PXTDLListEntryAlloc(4));
  EXPECT_EQ(list->count, 3U);
  PXTDLListFree(list);
}

QVX_ALONE(Cancel, AThreadThatHasItOffKeepsItOff) {
  const Attached attached;
  int state = PTHREAD_CANCEL_ENABLE;
  ASSERT_EQ(pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr), 0);
  (void)PXTMkDir("/run/held");
  ASSERT_EQ(pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, &state), 0);
  EXPECT_EQ(state, PTHREAD_CANCEL_DISABLE);
}

u32 UntilTold(u32) {
  while (!qvx::test::Exists("/run/end")) {
    usleep(1000);
  }
  return 0;
}

// ThreadSanitizer reports a cancelled join as a fault, because of its own bookkeeping.
QVX_ALONE(Cancel, WaitingForAThreadMayBeCancelled) {
  if (QVX_THREAD_SANITIZER != 0) GTEST_SKIP();
  const Attached attached;
  PXTThread thread = {};
  ASSERT_EQ(PXTThreadStart(&thread, UntilTold, 0), 0);
  EXPECT_FALSE(EndsAfter([&thread] { (void)PXTThreadStop(&thread); }));
  qvx::test::WriteFile("/run/end", "");
  EXPECT_EQ(PXTThreadStop(&thread), 0);
}

}  // namespace

// The request comes while the append waits; the entry is there, and the process lives on. The
// thread sanitizer takes a thread that ends within its own pthread_setcanceltype for a fault.
QVX_ALONE(Cancel, AnAsynchronousRequestEndsTheThreadAfterItsLogAppend) {
  if (QVX_THREAD_SANITIZER != 0) GTEST_SKIP();
  const Attached attached;
  LockHolder other(qvx::kIPCFilePath);
  const OnSleep release([&other](u32) {
    other.Release();
    (void)pthread_cancel(pthread_self());
  });
  EXPECT_TRUE(EndsWithin([] {
    (void)PXTAppendToXMLLog("/run/cancel.xml", QVX_LOG_INFORMATION, 9, "u", "s", "<D/>", nullptr, 0,
                            131072);
  }));
  EXPECT_NE(ReadFile("/run/cancel.xml").find("<ID>9</ID>"), std::string::npos);
}

s32 AsksForTheEnd(PXTDLListEntry*, PXTDLListEntry*) {
  (void)pthread_cancel(pthread_self());
  return 1;
}

QVX_ALONE(Cancel, AnAsynchronousRequestOfACompareEndsTheThreadAfterTheInsertion) {
  if (QVX_THREAD_SANITIZER != 0) GTEST_SKIP();
  PXTDLList* const list = PXTDLListAlloc();
  PXTDLListInsertEntryAtHead(list, PXTDLListEntryAlloc(1));
  EXPECT_TRUE(EndsWithin(
      [list] { (void)PXTDLListInsertKeyed(list, PXTDLListEntryAlloc(1), AsksForTheEnd); }));
  EXPECT_EQ(list->count, 2u);
  for (int entry = 0; entry < 2; ++entry) {
    PXTDLListEntryFree(PXTDLListRemoveEntryAtHead(list));
  }
  PXTDLListFree(list);
}
