// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_TURN_HOLDER_H
#define QVX_TESTS_SUPPORT_TURN_HOLDER_H

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "os/threads_turn.h"

namespace qvx::test {

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

}  // namespace qvx::test

#endif
