// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOG_REPAIR_H
#define QVX_CTL_LOG_REPAIR_H

#include <string>
#include <vector>

#include "qvxcs/types.h"

namespace qvx::ctl {

struct LogDamage {
  std::vector<std::string> findings;  // none for a whole or an empty log
  bool mendable = false;              // the end can be put right
  bool isLeft = false;                // there is damage that a repair of the end leaves
  u64 end = 0;                        // of the last whole entry: there the closing tag belongs
  u64 size = 0;
  std::string mend;  // the command that helps; empty for a whole log
  bool operator==(const LogDamage&) const = default;
};

// Reads the whole log and finds what `log repair` would do.
LogDamage ExamineLog(const std::string& path);

// What is wrong with an end without the closing tag, and what helps. `end` is that of the last
// whole entry or of the head, 0 without either; `isUnclosed` when only the tag is missing there.
std::string DescribeTornEnd(u64 end, bool isUnclosed, u64 size);

// Under the suite's lock: looks again, and only if the log is unchanged cuts it after its last
// whole entry and closes it.
void RepairLog(const std::string& path, const LogDamage& seen);

}  // namespace qvx::ctl

#endif
