// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "access/role_map_error.h"
#include "base/layout.h"
#include "ctl/call_failure.h"
#include "ctl/doctor_checks.h"
#include "ctl/lock_holders.h"
#include "ctl/log_repair.h"
#include "ctl/output.h"
#include "ctl/pam_sample.h"
#include "ctl/pam_service.h"
#include "ctl/role_map_check.h"
#include "ctl/role_map_records.h"
#include "ctl/shown_path.h"

namespace qvx::ctl {
namespace {

constexpr char kServiceOfLogins[] = "qvauth";
constexpr char kServiceOfAll[] = "other";  // what PAM uses for a service that does not exist
constexpr char kCheckMap[] = "qvxctl rolemap check";
constexpr unsigned long long kLittleSpace = 1 << 20;

std::string Octal(mode_t mode) {
  char text[16];
  (void)snprintf(text, sizeof(text), "%04o", mode & 07777);
  return text;
}

std::string LogPath() { return std::string(kCmdLogDirectory) + kCmdLogFileName; }

unsigned long long FreeSpace(const char* directory) {
  struct statvfs status {};
  if (statvfs(directory, &status) != 0) return ~0ULL;
  return static_cast<unsigned long long>(status.f_bavail) * status.f_frsize;
}

std::string DescribeTalker(const PamFinding& finding) {
  return finding.file + ":" + std::to_string(finding.line) + ": " + finding.module +
         " sends messages, and a login may fail because of them";
}

// A line that is taken out would take its module's check with it and shift the jumps over it.
std::string MendOf(const PamFinding& finding) {
  const std::string line = std::to_string(finding.line);
  if (finding.silencedBy.empty()) return "make it optional in line " + line + " of " + finding.file;
  return "sed -i '" + line + "s/" + finding.module + "/& " + finding.silencedBy + "/' " +
         finding.file;
}

std::string MoveAway(const std::string& path) { return "mv " + path + " " + path + ".old"; }

// Whether what cannot be opened is something else in the place of a file.
bool IsInTheWay(int reason) {
  return reason == EISDIR || reason == kNoRegularFile || reason == ENXIO || reason == ELOOP;
}

Diagnosis NoFile(const std::string& part, const std::string& path, int reason) {
  return {part, Health::kFault, SystemFailure(path, reason).what(), MoveAway(path)};
}

// The first part of a folder's path that is there and no folder, a link that leads nowhere too;
// empty where there is none.
std::string FindNoFolder(const std::string& folder) {
  for (size_t at = folder.find('/', 1); at != std::string::npos; at = folder.find('/', at + 1)) {
    std::string part = folder.substr(0, at);
    struct stat status {};
    if (lstat(part.c_str(), &status) != 0) return "";
    if (stat(part.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return part;
  }
  return "";
}

Diagnosis NoFolder(const std::string& folder, const std::string& make) {
  const std::string other = FindNoFolder(folder);
  if (other.empty()) return {"folders", Health::kFault, folder + " is missing", make};
  return {"folders", Health::kFault, other + " is no folder", MoveAway(other) + " && " + make};
}

}  // namespace

// Without the variable-data folder nothing attaches; the others are made as they are needed, except
// the folders above them.
Diagnosis CheckFolders() {
  for (const char* path : {kProductVarPath, kProductIniPath, kIniFileDirectory, kCmdLogDirectory}) {
    struct stat status {};
    const std::string folder = ShownPath(path);
    const std::string mend = "install -d -m 0755 " + folder;
    const bool isThere = stat(path, &status) == 0;
    if (!isThere && errno == EACCES) throw SystemFailure(folder, EACCES);
    if (!isThere || !S_ISDIR(status.st_mode)) return NoFolder(folder, mend);
    if ((status.st_mode & 02) != 0 && (status.st_mode & S_ISVTX) == 0) {
      return {"folders", Health::kFault,
              folder + " may be written by anyone: " + Octal(status.st_mode), mend};
    }
  }
  return {"folders", Health::kGood, "all there", ""};
}

Diagnosis CheckLockFile() {
  const std::string part = "lock file";
  struct stat status {};
  const std::string path = LockFilePath();
  if (stat(path.c_str(), &status) != 0) {
    return {part, Health::kWarning, "missing; the first program makes it",
            "systemd-tmpfiles --create"};
  }
  if (!S_ISREG(status.st_mode)) {
    return {part, Health::kFault, "no regular file", "rm -r " + path};
  }
  const std::string holder = DescribeHolder();
  const std::string use = holder.empty() ? "free" : "held by " + holder;
  const std::string text = use + ", mode " + Octal(status.st_mode);
  if ((status.st_mode & 06) == 0) return {part, Health::kGood, text, ""};
  return {part, Health::kWarning, text + ": anyone can hold up the suite by a lock",
          "chown root:qvxcs " + path + " && chmod 0660 " + path};
}

Diagnosis CheckLiveRoleMap() {
  const std::string part = "role map";
  const int unreadable = ReasonNotReadable(kRoleMapPath);
  if (IsInTheWay(unreadable)) return NoFile(part, kRoleMapPath, unreadable);
  if (unreadable == ENOENT) {
    return {part, Health::kWarning, "missing; the library uses its built-in lines",
            std::string("install -m 0640 -o root -g root DRAFT ") + kRoleMapPath};
  }
  const std::vector<RoleMapFinding> findings = CheckRoleMap(kRoleMapPath, true);
  const auto faults = std::count_if(findings.begin(), findings.end(),
                                    [](const auto& each) { return each.weight == Weight::kFault; });
  if (faults != 0) {
    const bool isModeAlone = faults == 1 && FaultOfOpening(kRoleMapPath) == RoleBadPermissions;
    return {part, Health::kFault, "refused; the library uses its built-in lines",
            isModeAlone ? std::string("chmod 0640 ") + kRoleMapPath : kCheckMap};
  }
  if (!findings.empty()) {
    const char* const noun = findings.size() == 1 ? " warning" : " warnings";
    return {part, Health::kWarning, std::to_string(findings.size()) + noun, kCheckMap};
  }
  return {part, Health::kGood, "no fault", ""};
}

Diagnosis CheckPamService() {
  const std::string part = "PAM service";
  const std::string path = FindPamService(kServiceOfLogins);
  if (!path.empty()) {
    const std::vector<PamFinding> findings = FindTalkingModules(kServiceOfLogins);
    if (findings.empty()) return {part, Health::kGood, path, ""};
    return {part, Health::kWarning, DescribeTalker(findings.front()), MendOf(findings.front())};
  }
  const std::string other = FindPamService(kServiceOfAll);
  if (other.empty()) {
    return {part, Health::kFault, "there is no service qvauth and no `other`; no login succeeds",
            CommandThatMakesPamService()};
  }
  const std::vector<PamFinding> findings = FindTalkingModules(kServiceOfAll);
  const std::string talker = findings.empty() ? "" : "; " + DescribeTalker(findings.front());
  return {part, Health::kWarning, "there is no service qvauth: PAM uses `other`, " + other + talker,
          CommandThatMakesPamService()};
}

Diagnosis CheckCommandLog() {
  const std::string path = LogPath();
  const int unreadable = ReasonNotReadable(path);
  if (IsInTheWay(unreadable)) return NoFile("logs", path, unreadable);
  if (unreadable == ENOENT) {
    return {"logs", Health::kGood, "no command log yet; the first entry makes it", ""};
  }
  const LogDamage damage = ExamineLog(path);
  if (!damage.findings.empty()) {
    return {"logs", Health::kFault, damage.findings.back(), damage.mend};
  }
  if (FreeSpace(kCmdLogDirectory) < kLittleSpace) {
    return {"logs", Health::kWarning, "under 1 MiB is free", std::string("df ") + kCmdLogDirectory};
  }
  return {"logs", Health::kGood, "the command log is whole", ""};
}

}  // namespace qvx::ctl
