// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_KILL_AT_STOP_H
#define QVX_TESTS_SUPPORT_KILL_AT_STOP_H

#include <fcntl.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "qvxcs/types.h"

#include "paths/layout.h"

namespace qvx::test {

// Runs `work` in another process that is killed at its n-th system-call stop; each call has two,
// one before and one behind it. Gives whether it was killed; a process that comes to its end must
// have been told `true` by its work.
template <typename Work>
bool KilledAtStop(u32 nth, Work work) {
  const pid_t child = fork();
  if (child == 0) {
    if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || raise(SIGSTOP) != 0) {
      _exit(9);
    }
    _exit(work() ? 0 : 8);
  }
  int status = 0;
  if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) {
    abort();
  }
  for (u32 stop = 1; stop <= nth; ++stop) {
    if (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) != 0 ||
        waitpid(child, &status, 0) != child) {
      abort();
    }
    if (!WIFSTOPPED(status)) {
      if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        abort();
      }
      return false;
    }
  }
  if (kill(child, SIGKILL) != 0 || waitpid(child, &status, 0) != child || !WIFSIGNALED(status)) {
    abort();
  }
  return true;
}

// Kills `work` at its first, second, ... stop until it finishes: `prepare` comes before each of its
// runs and `check` behind it. Gives the number of stops met.
template <typename Prepare, typename Work, typename Check>
u32 KillAtEachStop(Prepare prepare, Work work, Check check) {
  for (u32 nth = 1;; ++nth) {
    prepare();
    const bool killed = KilledAtStop(nth, work);
    check(nth);
    if (!killed) {
      return nth - 1;
    }
  }
}

// Whether nobody holds a record lock over the suite's lock file. Asked by another process, because
// closing any descriptor of the file ends this one's hold.
inline bool NobodyHoldsTheLock() {
  const pid_t child = fork();
  if (child == 0) {
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    const int file = open(kIPCFilePath, O_RDONLY | O_CLOEXEC);
    _exit(file >= 0 && fcntl(file, F_GETLK, &whole) == 0 && whole.l_type == F_UNLCK ? 0 : 1);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

}  // namespace qvx::test

#endif
