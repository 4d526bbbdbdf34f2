// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_KILL_AT_STOP_H
#define QVX_TESTS_SUPPORT_KILL_AT_STOP_H

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "qvxcs/types.h"

namespace qvx::test {

inline constexpr int kKilled = -1;

// Runs `body` in another process that stops before and after each of its system calls, where `look`
// decides whether it goes on. Returns the process's exit status, or kKilled when `look` said no.
template <typename Body, typename Look>
int RunStepwise(Body body, Look look) {
  const pid_t child = fork();
  if (child == 0) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || raise(SIGSTOP) != 0) {
      _exit(9);
    }
    // Not _exit, which in a coverage build writes the counts: thousands of additional stops.
    _Exit(body());
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) {
    abort();
  }
  while (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 &&
         waitpid(child, &status, 0) == child && WIFSTOPPED(status)) {
    if (!look()) {
      kill(child, SIGKILL);
      waitpid(child, &status, 0);
      return kKilled;
    }
  }
  if (!WIFEXITED(status)) {
    abort();
  }
  return WEXITSTATUS(status);
}

// Runs `work` in another process that is killed at its n-th stop. Returns whether it was killed;
// in a process that finishes, `work` must have returned `true`.
template <typename Work>
bool KilledAtStop(u32 nth, Work work) {
  u32 stop = 0;
  const int status =
      RunStepwise([&work] { return work() ? 0 : 8; }, [&stop, nth] { return ++stop < nth; });
  if (status != kKilled && status != 0) {
    abort();
  }
  return status == kKilled;
}

// Kills `work` at its first, second, ... stop until it finishes: `prepare` runs before each
// attempt and `check` after it. Returns the number of stops.
template <typename Prepare, typename Work, typename Check>
u32 KillAtEachStop(Prepare prepare, Work work, Check check) {
  for (u32 nth = 1;; ++nth) {
    prepare();
    const bool killed = KilledAtStop(nth, work);
    check(nth);
    if (!killed) return nth - 1;
  }
}

}  // namespace qvx::test

#endif
