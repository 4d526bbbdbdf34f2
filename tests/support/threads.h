// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_THREADS_H
#define QVX_TESTS_SUPPORT_THREADS_H

#include <sys/types.h>
#include <unistd.h>

#include <atomic>
#include <barrier>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

#include "qvxcs/types.h"

#include "support/files.h"

namespace qvx::test {

// Whether a thread or another process sleeps, as it does while it waits for a lock. A process that
// has ended counts as asleep, so that nobody waits for it in vain.
inline bool IsAsleep(pid_t id) {
  const std::string status = ReadFile("/proc/" + std::to_string(id) + "/stat");
  return status.find(") S ") != std::string::npos || status.find(") Z ") != std::string::npos;
}

// Whether `call`, in a thread of its own, waits until `release` has been called. It has `release`
// called as soon as the call sleeps or has come back, so no test depends on the machine's load.
template <typename Call, typename Release>
bool WaitsFor(Call call, Release release) {
  std::atomic<pid_t> id = 0;
  std::atomic<bool> done = false;
  std::thread other([&] {
    id = gettid();
    call();
    done = true;
  });
  while (id == 0 || (!done && !IsAsleep(id))) {
    std::this_thread::yield();
  }
  const bool waited = !done;
  release();
  other.join();
  return waited;
}

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
