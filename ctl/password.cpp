// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/password.h"

#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "ctl/output.h"
#include "os/uninterrupted.h"

namespace qvx::ctl {
namespace {

// The terminal echoes nothing while this object lives; signals that would leave it that way arrive
// afterwards.
class NoEcho {
 public:
  NoEcho() : isTerminal_(tcgetattr(STDIN_FILENO, &before_) == 0) {
    if (!isTerminal_) return;
    sigset_t signals;
    (void)sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGQUIT, SIGTERM, SIGTSTP, SIGHUP}) {
      (void)sigaddset(&signals, signal);
    }
    (void)sigprocmask(SIG_BLOCK, &signals, &mask_);
    termios silent = before_;
    // Keys that would end the command arrive as characters, and end it after the echo is back.
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO | ISIG);
    silent.c_lflag |= ECHONL;
    (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  ~NoEcho() {
    if (!isTerminal_) return;
    (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &before_);
    (void)sigprocmask(SIG_SETMASK, &mask_, nullptr);
  }
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;

 private:
  termios before_{};
  sigset_t mask_{};
  bool isTerminal_;
};

constexpr char kInterruptKey = '\003';

}  // namespace

Password::Password(const std::string& prompt) {
  if (isatty(STDIN_FILENO) != 0) (void)fputs(prompt.c_str(), stderr);
  const NoEcho silence;
  size_t length = 0;
  for (;; ++length) {
    char byte = 0;
    const ssize_t got = Uninterrupted([&byte] { return read(STDIN_FILENO, &byte, 1); });
    if (got < 0) throw SystemFailure("password", errno);
    if (got == 0 && length == 0) throw Failure(kUnknown, "password: none was given");
    if (got == 0 || byte == '\n') break;
    if (byte == kInterruptKey) throw Failure(kUnknown, "");
    if (length + 1 == sizeof(text_)) throw Failure(kUnknown, "password: longer than 255 bytes");
    text_[length] = byte;
  }
}

Password::~Password() { explicit_bzero(text_, sizeof(text_)); }

}  // namespace qvx::ctl
