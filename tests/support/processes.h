// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_PROCESSES_H
#define QVX_TESTS_SUPPORT_PROCESSES_H

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <vector>

#include "base/layout.h"

namespace qvx::test {

// Runs `body` in a child process and returns its exit status; 256 + the signal when one ended it.
template <typename Body>
int InChild(Body body) {
  const pid_t child = fork();
  if (child < 0) {
    abort();
  }
  if (child == 0) {
    _exit(body());
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
}

// Runs the program `words[0]`, a path, and returns its exit status as InChild does. Where the tests
// are another machine's, their emulator must run it: the kernel cannot.
inline int RunProgram(std::vector<const char*> words) {
  const char* const emulator = getenv("QVX_EMULATOR");
  if (emulator != nullptr) words.insert(words.begin(), emulator);
  words.push_back(nullptr);
  return InChild([&words] {
    (void)execv(words[0], const_cast<char* const*>(words.data()));
    return 127;
  });
}

// Whether another process could take the suite's file lock now. Another process tries it, because
// closing any descriptor of the lock file ends this one's hold.
inline bool LockIsFree() {
  return InChild([] {
           struct flock whole = {};
           whole.l_type = F_WRLCK;
           whole.l_whence = SEEK_SET;
           const int file = open(kIPCFilePath, O_RDONLY | O_CLOEXEC);
           const bool told = file >= 0 && fcntl(file, F_GETLK, &whole) == 0;
           return told && whole.l_type == F_UNLCK ? 0 : 1;
         }) == 0;
}

// Another process that holds a record lock over a whole file, the suite's lock file if no other is
// named, from construction to Release() or Kill(), or for the given time. The lock is exclusive
// unless `type` is F_RDLCK.
class LockHolder {
 public:
  explicit LockHolder(const char* path = kIPCFilePath, unsigned microseconds = 0,
                      short type = F_WRLCK) {
    int ready[2];
    int go[2];
    if (pipe2(ready, O_CLOEXEC) != 0 || pipe2(go, O_CLOEXEC) != 0) {
      abort();
    }
    child_ = fork();
    if (child_ == 0) {
      close(go[1]);
      Hold(path, ready[1], go[0], microseconds, type);
    }
    close(ready[1]);
    close(go[0]);
    go_ = go[1];
    char byte = 0;
    if (read(ready[0], &byte, 1) != 1) {
      abort();
    }
    close(ready[0]);
  }
  ~LockHolder() { Release(); }
  LockHolder(const LockHolder&) = delete;
  LockHolder& operator=(const LockHolder&) = delete;

  void Release() {
    if (go_ >= 0) {
      close(go_);
      go_ = -1;
      waitpid(child_, nullptr, 0);
    }
  }
  void Kill() {
    if (go_ >= 0) {
      kill(child_, SIGKILL);
      Release();
    }
  }

 private:
  [[noreturn]] static void Hold(const char* path, int ready, int go, unsigned microseconds,
                                short type) {
    struct flock whole = {};
    whole.l_type = type;
    whole.l_whence = SEEK_SET;
    const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0664);
    if (file < 0 || fcntl(file, F_SETLK, &whole) != 0 || write(ready, "r", 1) != 1) {
      _exit(1);
    }
    pollfd released = {go, POLLIN, 0};
    const timespec time = {microseconds / 1000000, microseconds % 1000000 * 1000L};
    (void)ppoll(&released, 1, microseconds == 0 ? nullptr : &time, nullptr);
    _exit(0);
  }

  pid_t child_ = 0;
  int go_ = -1;
};

}  // namespace qvx::test

#endif
