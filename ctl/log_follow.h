// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOG_FOLLOW_H
#define QVX_CTL_LOG_FOLLOW_H

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "ctl/log_file.h"
#include "ctl/log_show.h"
#include "ctl/log_state.h"

namespace qvx::ctl {

// Shows each entry once, across moves to the backup and across clearing, until it is stopped.
class LogFollower {
 public:
  // Without a state file the place is not kept.
  LogFollower(std::string path, LogView view, std::string statePath);

  // Shows what is there now, and what came since in files that have been moved.
  void Advance();

  // A log that has no file yet.
  [[nodiscard]] bool HasLog() const { return file_ != nullptr; }

 private:
  // An end that is no closing tag.
  struct TornEnd {
    u64 offset;
    std::chrono::steady_clock::time_point since;
    bool isTold;
  };

  void Resume(const LogPlace& place);
  bool Continue(const std::string& path, const LogPlace& place);
  void Begin(std::unique_ptr<LogFile> file);
  void OpenNext();
  LogPart Drain();
  void NoteTornEnd(bool isCurrent);
  void NoteShrunk();
  void Save();

  std::string path_;
  LogView view_;
  std::string statePath_;
  LogPlace place_;
  LogPlace saved_;
  std::unique_ptr<LogFile> file_;
  std::unique_ptr<LogReader> reader_;
  u64 toldDamage_ = 0;  // where damage was last reported
  std::optional<TornEnd> torn_;
};

// Follows until SIGINT or SIGTERM.
void FollowLog(const std::string& path, const LogView& view, const std::string& statePath);

}  // namespace qvx::ctl

#endif
