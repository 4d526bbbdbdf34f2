// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_THREADS_H
#define QVX_TESTS_SUPPORT_THREADS_H

#include <barrier>
#include <cstddef>
#include <thread>
#include <vector>

#include "qvxcs/types.h"

namespace qvx::test {

// Runs `body(0)` to `body(count - 1)` in threads that begin together, and waits for all.
template <typename Body>
void InThreads(u32 count, Body body) {
  std::barrier<> start(static_cast<std::ptrdiff_t>(count));
  std::vector<std::thread> threads;
  for (u32 at = 0; at < count; ++at) {
    threads.emplace_back([at, &start, &body] {
      start.arrive_and_wait();
      body(at);
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace qvx::test

#endif
