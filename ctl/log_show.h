// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOG_SHOW_H
#define QVX_CTL_LOG_SHOW_H

#include <optional>
#include <string>

#include "ctl/log_reader.h"

namespace qvx::ctl {

// Which entries are shown, and how.
struct LogView {
  std::optional<s64> since;  // seconds since 1970
  std::optional<std::string> user;
  std::optional<u32> id;
  bool asJson = false;
};

// "2026-11-22", "2026-11-22 14:30", with seconds too, "@1700000000", or "90s", "15m", "2h", "7d"
// ago. Throws a Failure for anything else.
s64 ParseSince(const std::string& text);

// Prints an entry that the view selects.
void ShowEntry(const LogView& view, const LogRecord& record, u64 offset);

// Prints the log; false when it is damaged, which is reported on stderr.
bool ShowLog(const std::string& path, const LogView& view);

}  // namespace qvx::ctl

#endif
