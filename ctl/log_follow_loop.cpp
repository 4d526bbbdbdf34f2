// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <csignal>

#include "ctl/log_follow.h"
#include "ctl/log_watch.h"
#include "ctl/output.h"

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

}  // namespace

void FollowLog(const std::string& path, const LogView& view, const std::string& statePath) {
  const StopSignals signals;
  LogWatch watch(path);
  LogFollower follower(path, view, statePath, &watch);
  follower.Advance();
  // Right for a service that starts first; a wrong name would look like a quiet log.
  if (!follower.HasLog()) Warn(path + " does not exist yet; waiting for it");
  while (toldToStop == 0) {
    watch.Wait(signals.Waiting());
    follower.Advance();
  }
}

}  // namespace qvx::ctl
