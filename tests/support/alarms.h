// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_ALARMS_H
#define QVX_TESTS_SUPPORT_ALARMS_H

#include <sys/time.h>

#include <csignal>
#include <cstdlib>

#include "support/processes.h"

namespace qvx::test {

// While it lives, a signal interrupts the process every 10 ms; the third one ends the other
// process's hold, so that a wait which lets itself be interrupted, or does not wait, is seen.
class AlarmsEndTheHold {
 public:
  explicit AlarmsEndTheHold(LockHolder* holder) {
    other = holder;
    count = 0;
    struct sigaction action = {};
    action.sa_handler = OnAlarm;
    const itimerval every = {{0, 10000}, {0, 10000}};
    if (sigaction(SIGALRM, &action, nullptr) != 0 || setitimer(ITIMER_REAL, &every, nullptr) != 0) {
      abort();
    }
  }
  ~AlarmsEndTheHold() {
    const itimerval never = {};
    (void)setitimer(ITIMER_REAL, &never, nullptr);
  }
  AlarmsEndTheHold(const AlarmsEndTheHold&) = delete;
  AlarmsEndTheHold& operator=(const AlarmsEndTheHold&) = delete;

  [[nodiscard]] static int Count() { return count; }

 private:
  static void OnAlarm(int /*signal*/) {
    count = count + 1;
    if (count == 3) {
      other->Release();
    }
  }

  static inline LockHolder* other = nullptr;
  static inline volatile sig_atomic_t count = 0;
};

}  // namespace qvx::test

#endif
