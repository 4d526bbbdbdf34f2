// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOG_STATE_H
#define QVX_CTL_LOG_STATE_H

#include <optional>
#include <string>

#include "qvxcs/types.h"

namespace qvx::ctl {

// How far a log has been shown. A log is recognized by its first and its last shown entry, not by
// its name or number, because both are reused.
struct LogPlace {
  std::string log;    // the path that was followed
  std::string first;  // the mark of the log's first entry; empty before it was there
  u64 last = 0;       // where the last shown entry begins; 0 before the first was shown
  std::string lastMark;
  u64 next = 0;        // where reading continues
  std::string backup;  // the key of the backup that need not be shown again
};

// Nothing for a file that is missing or empty. Throws a Failure for one that holds something else,
// or the place of another log.
std::optional<LogPlace> LoadPlace(const std::string& path, const std::string& log);

// By a copy that is flushed and renamed over the old place, for its owner alone to read and write.
// What has the copy's name is removed first, a link too.
void SavePlace(const std::string& path, const LogPlace& place);

}  // namespace qvx::ctl

#endif
