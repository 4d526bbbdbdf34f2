// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/thread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <climits>

#include "support/processes.h"
#include "support/sanitizers.h"

namespace {

std::atomic<u32> seen{0};
std::atomic<bool> ended{false};

u32 Remember(u32 argument) {
  seen = argument;
  return 12345;
}

u32 TakeAWhile(u32 argument) {
  usleep(argument);
  ended = true;
  return 0;
}

TEST(Thread, RunsTheEntryWithItsArgument) {
  PXTThread thread = {};
  EXPECT_EQ(PXTThreadStart(&thread, Remember, 0xFFFFFFF0U), 0);
  EXPECT_EQ(thread.entry, &Remember);
  EXPECT_EQ(thread.argument, 0xFFFFFFF0U);
  EXPECT_EQ(PXTThreadStop(&thread), 0);
  EXPECT_EQ(seen, 0xFFFFFFF0U);
}

TEST(Thread, StopWaitsForTheBodyToEnd) {
  PXTThread thread = {};
  ASSERT_EQ(qvx::OSThreadStart(&thread, TakeAWhile, 50000), 0);
  EXPECT_EQ(qvx::OSThreadStop(&thread), 0);
  EXPECT_TRUE(ended);
}

TEST(Thread, ARecordCanBeStartedAgainAfterItWasStopped) {
  PXTThread thread = {};
  for (const u32 argument : {7U, 8U}) {
    ASSERT_EQ(qvx::OSThreadStart(&thread, Remember, argument), 0);
    EXPECT_EQ(qvx::OSThreadStop(&thread), 0);
    EXPECT_EQ(seen, argument);
  }
}

TEST(Thread, ARecordWithoutAThreadStopsAtOnce) {
  PXTThread thread = {};
  EXPECT_EQ(qvx::OSThreadStop(&thread), 0);
  ASSERT_EQ(qvx::OSThreadStart(&thread, Remember, 5), 0);
  EXPECT_EQ(qvx::OSThreadStop(&thread), 0);
  EXPECT_EQ(thread.thread, 0U);
  EXPECT_EQ(qvx::OSThreadStop(&thread), 0);
}

PXTThread ownRecord = {};
std::atomic<bool> mayStop{false};
std::atomic<s32> stopOfItself{-2};

u32 StopItself(u32) {
  while (!mayStop) {
    usleep(1000);
  }
  stopOfItself = qvx::OSThreadStop(&ownRecord);
  return 0;
}

TEST(Thread, ABodyThatStopsItselfGoesOnAndIsWaitedForByTheNextStop) {
  if (QVX_THREAD_SANITIZER != 0) {
    GTEST_SKIP() << "the sanitizer forgets a thread when the first wait for it fails";
  }
  ASSERT_EQ(qvx::OSThreadStart(&ownRecord, StopItself, 0), 0);
  mayStop = true;
  while (stopOfItself == -2) {
    usleep(1000);
  }
  EXPECT_EQ(stopOfItself, 0);
  EXPECT_NE(ownRecord.thread, pthread_t{});
  EXPECT_EQ(qvx::OSThreadStop(&ownRecord), 0);
  EXPECT_EQ(ownRecord.thread, pthread_t{});
}

TEST(Thread, ANullRecordOrEntryStartsNothing) {
  PXTThread thread = {};
  EXPECT_EQ(qvx::OSThreadStart(nullptr, Remember, 1), -1);
  EXPECT_EQ(qvx::OSThreadStart(&thread, nullptr, 1), -1);
  EXPECT_EQ(qvx::OSThreadStop(nullptr), -1);
  EXPECT_EQ(seen, 0U);
}

TEST(Thread, FailsWhenTheSystemHasNoThreadToGive) {
  EXPECT_EQ(qvx::test::InChild([] {
              pthread_attr_t attributes;
              pthread_attr_init(&attributes);
              pthread_attr_setstacksize(&attributes, SIZE_MAX / 8 * 7);  // no room for such a stack
              if (pthread_setattr_default_np(&attributes) != 0) return 100;
              PXTThread thread = {};
              thread.thread = pthread_self();
              if (qvx::OSThreadStart(&thread, Remember, 9) != -1) return 101;
              if (thread.thread != 0 || qvx::OSThreadStop(&thread) != 0) return 103;
              return thread.entry == &Remember && thread.argument == 9 && seen == 0 ? 0 : 102;
            }),
            0);
}

TEST(Thread, TheStubCallsTheEntryAndDropsItsResult) {
  PXTThread thread = {};
  thread.entry = Remember;
  thread.argument = 42;
  EXPECT_EQ(qvx::OSThreadStub(&thread), 0U);
  EXPECT_EQ(seen, 42U);
}

TEST(Thread, TheStubWithANullRecordCallsNothing) {
  EXPECT_EQ(qvx::OSThreadStub(nullptr), 0U);
  EXPECT_EQ(seen, 0U);
}

}  // namespace
