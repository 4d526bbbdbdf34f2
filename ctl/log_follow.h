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
#include "ctl/log_watch.h"

namespace qvx::ctl {

// Shows each entry once, across moves to the backup and across clearing, until it is stopped.
class LogFollower {
 public:
  // Without a state file the place is not kept. `watch` is the caller's.
  LogFollower(std::string path, LogView view, std::string statePath, LogWatch* watch);

  // Shows what is there now, and what came since in files that have been moved.
  void Advance();

  // False while the log has no file yet.
  [[nodiscard]] bool HasLog() const { return file_ != nullptr; }

 private:
  // An end that is no closing tag.
  struct TornEnd {
    u64 offset;
    std::chrono::steady_clock::time_point since;
    bool isTold;
  };

  // The log and its backup at one moment; null for a missing one.
  struct Look {
    std::unique_ptr<LogFile> log;
    std::unique_ptr<LogFile> backup;
    std::string backupKey;
    std::optional<u64> arrivals;
  };

  [[nodiscard]] Look LookAtBoth() const;
  void Resume(const LogPlace& place);
  bool Continue(std::unique_ptr<LogFile>* file, const LogPlace& place);
  void Begin(std::unique_ptr<LogFile> file);
  void OpenNext();
  void NoteMissed(const Look& look, bool isBackupNew);
  LogPart Drain();
  void NoteTornEnd(bool isCurrent);
  void NoteShrunk();
  void Save();

  std::string path_;
  LogView view_;
  std::string statePath_;
  LogWatch* watch_;
  LogPlace place_;
  LogPlace saved_;
  std::unique_ptr<LogFile> file_;
  std::unique_ptr<LogReader> reader_;
  // Of the watch, when this file was the newest of the log's name.
  std::optional<u64> arrivals_;
  u64 toldDamage_ = 0;  // where damage was last reported
  std::optional<TornEnd> torn_;
};

// Follows until SIGINT or SIGTERM.
void FollowLog(const std::string& path, const LogView& view, const std::string& statePath);

}  // namespace qvx::ctl

#endif
