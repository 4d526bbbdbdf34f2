// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_ROLE_MAP_TEXT_H
#define QVX_CTL_ROLE_MAP_TEXT_H

#include <string>
#include <vector>

// The bytes of a role map, to show its lines and what no reader of records sees.
namespace qvx::ctl {

struct RoleMapText {
  std::vector<std::string> lines;  // without their line feeds
  bool endsWithoutNewline = false;

  // Line 1 is the first; empty for a line that does not exist.
  [[nodiscard]] std::string Line(unsigned long number) const;
};

// Throws a Failure for a file that cannot be read.
RoleMapText ReadRoleMapText(const std::string& path);

}  // namespace qvx::ctl

#endif
