// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <csignal>
#include <ctime>

#include "ctl/log_follow.h"
#include "os/descriptor.h"

namespace qvx::ctl {
namespace {

volatile sig_atomic_t toldToStop = 0;

void TellToStop(int /*signal*/) { toldToStop = 1; }

// Signals to stop come only while the watch waits.
class StopSignals {
 public:
  StopSignals() {
    struct sigaction action {};
    action.sa_handler = TellToStop;
    sigset_t signals;
    (void)sigemptyset(&signals);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
      (void)sigaction(signal, &action, nullptr);
      (void)sigaddset(&signals, signal);
    }
    (void)sigprocmask(SIG_BLOCK, &signals, &mask_);
  }
  [[nodiscard]] const sigset_t* Waiting() const { return &mask_; }

 private:
  sigset_t mask_{};
};

// Wakes on changes in the log's directory, and every second where the system does not report them.
class DirectoryWatch {
 public:
  explicit DirectoryWatch(const std::string& path)
      : events_(AboveStandard(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))) {
    const size_t slash = path.rfind('/');
    directory_ = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    Add();
  }

  void Wait(const sigset_t* signals) {
    const timespec second{1, 0};
    pollfd ready{events_.Number(), POLLIN, 0};
    const int count = ppoll(&ready, events_ ? 1 : 0, &second, signals);
    char room[4096];
    while (count > 0 && read(events_.Number(), room, sizeof(room)) > 0) {
    }
    if (!added_) Add();
  }

 private:
  void Add() {
    constexpr u32 kChanges = IN_MODIFY | IN_CREATE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
    added_ = events_ && inotify_add_watch(events_.Number(), directory_.c_str(), kChanges) >= 0;
  }

  Descriptor events_;
  std::string directory_;
  bool added_ = false;
};

}  // namespace

void FollowLog(const std::string& path, const LogView& view, const std::string& statePath) {
  const StopSignals signals;
  DirectoryWatch watch(path);
  LogFollower follower(path, view, statePath);
  while (toldToStop == 0) {
    follower.Advance();
    watch.Wait(signals.Waiting());
  }
  follower.Advance();
}

}  // namespace qvx::ctl
