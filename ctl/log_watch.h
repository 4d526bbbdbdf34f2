// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOG_WATCH_H
#define QVX_CTL_LOG_WATCH_H

#include <csignal>
#include <optional>
#include <string>

#include "qvxcs/types.h"

#include "os/descriptor.h"

struct inotify_event;

namespace qvx::ctl {

// Watches the directory of a log.
class LogWatch {
 public:
  explicit LogWatch(const std::string& path);

  // Waits for a change in the directory or one of the signals; a second at most, because some file
  // systems do not report changes.
  void Wait(const sigset_t* signals);

  // Counts the files that get the log's name, created there or moved there. Where the system
  // dropped reports, the count rises by too much. Nothing where the directory is not watched.
  std::optional<u64> Arrivals();

 private:
  void Add();
  void ReadEvents();
  void Note(const inotify_event& event, const char* name);

  Descriptor events_;
  std::string directory_;
  std::string name_;
  bool isAdded_ = false;
  bool hasChanged_ = false;  // read by Arrivals(), not waited for
  u64 arrivals_ = 1;         // the file that is there
};

}  // namespace qvx::ctl

#endif
