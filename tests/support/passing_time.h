// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_PASSING_TIME_H
#define QVX_TESTS_SUPPORT_PASSING_TIME_H

#include <functional>

#include "qvxcs/types.h"

// Test programs wrap usleep and clock_gettime, so that a test decides what happens in a sleep and
// how much time has passed.
namespace qvx::test {

// While it lives, usleep calls `action` with its microseconds, in the thread that would sleep.
class OnSleep {
 public:
  using Action = std::function<void(u32)>;
  explicit OnSleep(Action action);
  ~OnSleep();
  OnSleep(const OnSleep&) = delete;
  OnSleep& operator=(const OnSleep&) = delete;

 private:
  Action action_;
};

// For the wrapped usleep: calls the action if there is one, and returns whether there is.
bool ActsOnSleep(u32 microseconds);

// While it lives, the coarse clock that measures spans of time moves only by Advance().
class SteppedClock {
 public:
  SteppedClock();
  ~SteppedClock();
  SteppedClock(const SteppedClock&) = delete;
  SteppedClock& operator=(const SteppedClock&) = delete;
  static void Advance(u32 milliseconds);
};

}  // namespace qvx::test

#endif
