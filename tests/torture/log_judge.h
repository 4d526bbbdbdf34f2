// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TORTURE_LOG_JUDGE_H
#define QVX_TESTS_TORTURE_LOG_JUDGE_H

#include <string>

#include "torture/torture.h"

namespace qvx::torture {

// A log and its backup, as ReadText gives them.
struct LogFiles {
  std::string log = kNone;
  std::string backup = kNone;
  std::string torn = "";  // the log before it was mended, if it was torn
};

// A torn log without the entry that was cut.
std::string MendedLog(const std::string& torn);

std::string BackupOf(const std::string& path);
LogFiles ReadLogFiles(const char* path);

// What is wrong with them after the scene, or nothing.
std::string JudgeLog(const Scene& scene, const LogFiles& before, const LogFiles& now, bool done,
                     Torn torn);

// A text that is neither missing, nor empty, nor a log with one closing tag.
bool IsDamaged(const std::string& log);

}  // namespace qvx::torture

#endif
