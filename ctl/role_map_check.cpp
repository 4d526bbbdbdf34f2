// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/role_map_check.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "access/role_map_error.h"
#include "base/layout.h"
#include "ctl/output.h"
#include "ctl/role_map_entries.h"
#include "ctl/role_map_records.h"
#include "ctl/role_map_text.h"

namespace qvx::ctl {
namespace {

using Findings = std::vector<RoleMapFinding>;

void CheckBytes(const RoleMapText& text, Findings* findings) {
  for (unsigned long number = 1; number <= text.lines.size(); ++number) {
    const std::string line = text.Line(number);
    for (const char byte : line) {
      if ((static_cast<unsigned char>(byte) & 0x80) == 0) continue;
      findings->push_back({number, Weight::kWarning,
                           "a byte above 0x7F ends the map: this line and all that follow do not "
                           "count"});
      return;
    }
    if (!line.empty() && line.back() == '\r') {
      findings->push_back({number, Weight::kWarning, "ends with a carriage return"});
    }
  }
  if (!text.endsWithoutNewline) return;
  findings->push_back(
      {text.lines.size(), Weight::kWarning, "has no line feed at its end and does not count"});
}

std::string Octal(mode_t mode) {
  char text[16];
  (void)snprintf(text, sizeof(text), "%05o", mode & 07777);
  return text;
}

struct stat StatusOf(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) throw SystemFailure(path, errno);
  return status;
}

void CheckPlace(const std::string& path, bool isLive, Findings* findings) {
  const Weight weight = isLive ? Weight::kWarning : Weight::kNote;
  const struct stat file = StatusOf(path);
  if (const int code = FaultOfOpening(path); code == RoleBadPermissions) {
    findings->push_back({0, isLive ? Weight::kFault : Weight::kNote,
                         std::string(TextOfFault(code)) + " but " + Octal(file.st_mode)});
  }
  if (file.st_uid != 0) findings->push_back({0, weight, "the file is not root's"});
  const size_t slash = path.rfind('/');
  const std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const struct stat place = StatusOf(directory);
  if (place.st_uid != 0) findings->push_back({0, weight, "the directory is not root's"});
  const bool isOpen = (place.st_mode & 022) != 0 && (place.st_mode & S_ISVTX) == 0;
  if (isOpen) {
    findings->push_back(
        {0, weight,
         "others may replace the file: the directory's mode is " + Octal(place.st_mode)});
  }
}

}  // namespace

const char* NameOfWeight(Weight weight) {
  switch (weight) {
    case Weight::kFault:
      return "fault";
    case Weight::kWarning:
      return "warning";
    default:
      return "note";
  }
}

std::vector<RoleMapFinding> CheckRoleMap(const std::string& path, bool isLive) {
  const RoleMapText text = ReadRoleMapText(path);
  const RoleMapRecords records(path);
  Findings findings;
  for (const RoleMapFault& fault : records.Faults()) {
    findings.push_back({fault.line, Weight::kFault, TextOfFault(fault.code)});
  }
  CheckBytes(text, &findings);
  CheckEntries(records.List(), &findings);
  std::stable_sort(
      findings.begin(), findings.end(),
      [](const RoleMapFinding& one, const RoleMapFinding& other) { return one.line < other.line; });
  CheckPlace(isLive ? kRoleMapPath : path, isLive, &findings);
  return findings;
}

}  // namespace qvx::ctl
