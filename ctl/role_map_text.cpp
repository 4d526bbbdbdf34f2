// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/role_map_text.h"

#include <cerrno>
#include <cstdio>

#include "ctl/call_failure.h"
#include "ctl/output.h"
#include "os/stdio_file.h"

namespace qvx::ctl {

std::string RoleMapText::Line(unsigned long number) const {
  return number == 0 || number > lines.size() ? "" : lines[number - 1];
}

RoleMapText ReadRoleMapText(const std::string& path) {
  if (const int reason = ReasonNotReadable(path)) throw SystemFailure(path, reason);
  const FilePtr file = OpenFile(path.c_str(), "r");
  if (!file) throw SystemFailure(path, errno);
  RoleMapText text;
  std::string line;
  for (int byte = getc(file.get()); byte != EOF; byte = getc(file.get())) {
    if (byte != '\n') {
      line.push_back(static_cast<char>(byte));
      continue;
    }
    text.lines.push_back(line);
    line.clear();
  }
  if (ferror(file.get()) != 0) throw SystemFailure(path, errno);
  text.endsWithoutNewline = !line.empty();
  if (text.endsWithoutNewline) text.lines.push_back(line);
  return text;
}

}  // namespace qvx::ctl
