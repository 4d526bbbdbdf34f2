// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOG_ENTRY_H
#define QVX_CTL_LOG_ENTRY_H

#include <optional>
#include <string>
#include <string_view>

#include "qvxcs/types.h"

namespace qvx::ctl {

struct LogRecord {
  s64 time = 0;  // seconds since 1970
  std::string date;
  std::string host;
  u32 type = 0;
  u32 id = 0;
  std::string user;  // entities decoded, as the source
  std::string source;
  std::string description;  // markup as it is
  std::string data;         // a hexadecimal dump
};

// Parses "<LogEntry>" to "</LogEntry>"; nothing for a text that the library did not write in this
// form.
std::optional<LogRecord> ParseLogRecord(std::string_view text);

}  // namespace qvx::ctl

#endif
