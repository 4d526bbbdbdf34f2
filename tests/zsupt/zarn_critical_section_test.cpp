// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_critical_section.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace {

using ZarnSupport::ZarnCriticalSection;

class Locked : public ZarnSupport::ZarnCriticalSectionObject {};

TEST(ZarnCriticalSection, ThreadsExcludeEachOther) {
  Locked object;
  int inside = 0;
  int most = 0;
  int count = 0;
  std::vector<std::thread> threads;
  for (int at = 0; at < 8; ++at) {
    threads.emplace_back([&] {
      for (int turn = 0; turn < 1000; ++turn) {
        const ZarnCriticalSection section(object);
        most = std::max(most, ++inside);
        ++count;
        --inside;
      }
    });
  }
  for (std::thread& thread : threads)
    thread.join();
  EXPECT_EQ(most, 1);
  EXPECT_EQ(count, 8000);
}

TEST(ZarnCriticalSection, ItsHolderMayTakeItAgain) {
  Locked object;
  const ZarnCriticalSection outer(object);
  const ZarnCriticalSection inner(object);
}

TEST(ZarnCriticalSection, IsReleasedByAnException) {
  Locked object;
  EXPECT_THROW(
      {
        const ZarnCriticalSection section(object);
        throw 1;
      },
      int);
  std::atomic<bool> entered = false;
  std::thread other([&] {
    const ZarnCriticalSection section(object);
    entered = true;
  });
  other.join();
  EXPECT_TRUE(entered);
}

}  // namespace
