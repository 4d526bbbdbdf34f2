// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Prints how many system calls each operation makes. A child stops itself before and after an
// operation; between the two stops each call stops it.
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "benchmarks/operations.h"

namespace {

constexpr int kCallStop = SIGTRAP | 0x80;

int StopOf(pid_t child) {
  int status = 0;
  if (waitpid(child, &status, 0) != child || !WIFSTOPPED(status)) exit(1);
  return WSTOPSIG(status);
}

void RunStopping(const Operation& operation) {
  (void)ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
  if (operation.prepare != nullptr) operation.prepare();
  operation.run();
  (void)raise(SIGSTOP);
  operation.run();
  (void)raise(SIGSTOP);
  _exit(0);
}

// Entry and exit of a call are a stop each. raise() makes its own calls, counted as `ofRaise`.
int StopsOf(pid_t child) {
  (void)StopOf(child);
  (void)ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
  int stops = 0;
  for (;;) {
    (void)ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    const int signal = StopOf(child);
    if (signal == SIGSTOP) break;
    if (signal == kCallStop) ++stops;
  }
  (void)kill(child, SIGKILL);
  (void)waitpid(child, nullptr, 0);
  return stops;
}

int StopsOf(const Operation& operation) {
  const pid_t child = fork();
  if (child < 0) exit(1);
  if (child == 0) RunStopping(operation);
  return StopsOf(child);
}

}  // namespace

int main() {
  const int ofRaise = StopsOf({"nothing", nullptr, [] {}, true});
  for (const Operation& operation : Operations()) {
    if (!operation.counted) {
      if (operation.prepare != nullptr) operation.prepare();
      continue;
    }
    (void)printf("%s\t%d\n", operation.name, (StopsOf(operation) - ofRaise) / 2);
    (void)fflush(stdout);
  }
  return 0;
}
