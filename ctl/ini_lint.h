// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_INI_LINT_H
#define QVX_CTL_INI_LINT_H

#include <string>
#include <vector>

namespace qvx::ctl {

struct LintFinding {
  unsigned line;
  bool refused;  // the library refuses the file from here on; else it skips the line
  std::string text;
};

// What the library's reader skips, refuses, or reads differently from how it looks, in the order of
// the lines. The lines are taken apart by the library's own rules. Throws a Failure for a file that
// cannot be read.
std::vector<LintFinding> LintIniFile(const std::string& path);

}  // namespace qvx::ctl

#endif
