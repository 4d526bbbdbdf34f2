// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/password.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "ctl/output.h"

namespace qvx::ctl {
namespace {

// The signals that end or stop the command, those of the terminal's keys and of a background job
// among them; what ends it comes first.
constexpr std::array<int, 7> kSignals = {SIGINT,  SIGQUIT, SIGTERM, SIGHUP,
                                         SIGTSTP, SIGTTIN, SIGTTOU};

volatile sig_atomic_t caught[NSIG];

void Catch(int signal) { caught[signal] = 1; }

bool IsAnyCaught() {
  return std::any_of(kSignals.begin(), kSignals.end(),
                     [](int signal) { return caught[signal] != 0; });
}

// Signals are only noted while this object lives, and interrupt a call that waits.
class CaughtSignals {
 public:
  CaughtSignals() {
    struct sigaction action {};
    action.sa_handler = Catch;
    for (size_t at = 0; at < kSignals.size(); ++at) {
      (void)sigaction(kSignals[at], nullptr, &before_[at]);
      if (before_[at].sa_handler == SIG_IGN) continue;
      (void)sigaction(kSignals[at], &action, nullptr);
    }
  }
  ~CaughtSignals() {
    for (size_t at = 0; at < kSignals.size(); ++at) {
      (void)sigaction(kSignals[at], &before_[at], nullptr);
    }
  }
  CaughtSignals(const CaughtSignals&) = delete;
  CaughtSignals& operator=(const CaughtSignals&) = delete;

 private:
  std::array<struct sigaction, kSignals.size()> before_{};
};

// Lets the caught signals do what they were sent for. Returns when they only stopped the command.
void RaiseCaught() {
  for (const int signal : kSignals) {
    if (caught[signal] == 0) continue;
    caught[signal] = 0;
    (void)raise(signal);
  }
}

// Waits for input; false when a signal was caught. Signals come only while it waits, so that none
// falls between the look and the wait.
bool AwaitInput() {
  sigset_t signals;
  sigset_t before;
  (void)sigemptyset(&signals);
  for (const int signal : kSignals) {
    (void)sigaddset(&signals, signal);
  }
  (void)sigprocmask(SIG_BLOCK, &signals, &before);
  pollfd ready{STDIN_FILENO, POLLIN, 0};
  if (!IsAnyCaught()) (void)ppoll(&ready, 1, nullptr, &before);
  (void)sigprocmask(SIG_SETMASK, &before, nullptr);
  return !IsAnyCaught();
}

// The terminal echoes nothing but the line's end while this object lives.
class NoEcho {
 public:
  NoEcho() : isTerminal_(tcgetattr(STDIN_FILENO, &before_) == 0) {
    if (!isTerminal_) return;
    termios silent = before_;
    silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    silent.c_lflag |= ECHONL;
    (void)tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
  }
  // Does not wait for output, which may be held back. In the background it is refused with a
  // signal: the terminal is another's then.
  ~NoEcho() {
    if (!isTerminal_) return;
    (void)tcflush(STDIN_FILENO, TCIFLUSH);
    (void)tcsetattr(STDIN_FILENO, TCSANOW, &before_);
  }
  NoEcho(const NoEcho&) = delete;
  NoEcho& operator=(const NoEcho&) = delete;

 private:
  termios before_{};
  bool isTerminal_;
};

}  // namespace

// The object is whole from here on, so that its end wipes what was typed before a failure.
Password::Password(const std::string& prompt) : Password() {
  while (!Ask(prompt) || IsAnyCaught()) {
    Wipe();
    RaiseCaught();
  }
}

Password::~Password() { Wipe(); }

bool Password::Ask(const std::string& prompt) {
  const CaughtSignals signals;
  const NoEcho silence;
  if (isatty(STDIN_FILENO) != 0 && !IsAnyCaught()) (void)fputs(prompt.c_str(), stderr);
  size_t length = 0;
  while (AwaitInput()) {
    char* const at = text_ + length;
    const ssize_t got = read(STDIN_FILENO, at, 1);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw SystemFailure("password", errno);
    if (got == 0 && length == 0) throw Failure(kUnknown, "password: none was given");
    if (got == 0 || *at == '\n') {
      *at = '\0';
      return true;
    }
    if (++length == sizeof(text_)) throw Failure(kUnknown, "password: longer than 255 bytes");
  }
  return false;
}

void Password::Wipe() { explicit_bzero(text_, sizeof(text_)); }

}  // namespace qvx::ctl
