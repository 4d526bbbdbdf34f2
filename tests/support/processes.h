// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_PROCESSES_H
#define QVX_TESTS_SUPPORT_PROCESSES_H

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace qvx::test {

// Runs `body` in a child process and gives its exit status; 256 + the signal when one ended it.
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

// Another process that holds an exclusive record lock over a whole file from construction to
// Release() or Kill().
class LockHolder {
 public:
  explicit LockHolder(const char* path) {
    int ready[2];
    int go[2];
    if (pipe2(ready, O_CLOEXEC) != 0 || pipe2(go, O_CLOEXEC) != 0) {
      abort();
    }
    child_ = fork();
    if (child_ == 0) {
      Hold(path, ready[1], go[0], go[1]);
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
  [[noreturn]] static void Hold(const char* path, int ready, int go, int goWriter) {
    close(goWriter);
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0664);
    if (file < 0 || fcntl(file, F_SETLK, &whole) != 0 || write(ready, "r", 1) != 1) {
      _exit(1);
    }
    char byte = 0;
    (void)!read(go, &byte, 1);
    _exit(0);
  }

  pid_t child_ = 0;
  int go_ = -1;
};

}  // namespace qvx::test

#endif
