// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "support/passing_time.h"

#include <pthread.h>

#include <atomic>
#include <ctime>
#include <utility>

namespace {

std::atomic<const qvx::test::OnSleep::Action*> onSleep{nullptr};
// In milliseconds; 0 while the system's clock counts.
std::atomic<u64> steppedTime{0};

}  // namespace

extern "C" {
int __real_clock_gettime(clockid_t clock, timespec* time);

int __wrap_clock_gettime(clockid_t clock, timespec* time) {
  const u64 now = steppedTime;
  if (now == 0 || clock != CLOCK_MONOTONIC_COARSE) return __real_clock_gettime(clock, time);
  time->tv_sec = static_cast<time_t>(now / 1000);
  time->tv_nsec = static_cast<decltype(time->tv_nsec)>(now % 1000 * 1000000);
  return 0;
}
}

namespace qvx::test {

OnSleep::OnSleep(Action action) : action_(std::move(action)) { onSleep = &action_; }

OnSleep::~OnSleep() { onSleep = nullptr; }

bool ActsOnSleep(u32 microseconds) {
  const OnSleep::Action* const action = onSleep;
  if (action == nullptr) return false;
  (*action)(microseconds);
  pthread_testcancel();  // as a sleep does
  return true;
}

SteppedClock::SteppedClock() { steppedTime = 1000; }

SteppedClock::~SteppedClock() { steppedTime = 0; }

void SteppedClock::Advance(u32 milliseconds) { steppedTime += milliseconds; }

}  // namespace qvx::test
