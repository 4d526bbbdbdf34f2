// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <clocale>
#include <cstdio>
#include <cstdlib>

#include "access/os_privilege.h"
#include "base/layout.h"
#include "ctl/call_failure.h"
#include "ctl/doctor_checks.h"
#include "ctl/output.h"
#include "ctl/role_decision.h"
#include "os/ipc_name.h"

namespace qvx::ctl {
namespace {

constexpr s32 kUselessBase = -30000;  // makes the lock's name 0, which is no name
constexpr s32 kUnreadBase = -1;
constexpr char kPackage[] = "libqvxcs1";

// What a command prints; its exit code in `code`, -1 when it did not run.
std::string OutputOf(const char* command, int* code) {
  FILE* const stream = popen(command, "re");
  std::string text;
  std::array<char, 4096> piece{};
  for (size_t got = 1; stream != nullptr && got != 0;) {
    got = fread(piece.data(), 1, piece.size(), stream);
    text.append(piece.data(), got);
  }
  const int status = stream == nullptr ? -1 : pclose(stream);
  *code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return text;
}

}  // namespace

Diagnosis CheckProcessRights() {
  const std::string level = TextOfRights(OSGetProcessRights());
  const bool mayLock = access(kIPCFilePath, R_OK | W_OK) == 0 || access(kIPCFilePath, F_OK) != 0;
  if (mayLock) return {"rights", Health::kGood, "this process: " + level, ""};
  return {"rights", Health::kWarning,
          "this process: " + level + ", which may not take the suite's lock",
          "adduser $USER qvxcs"};
}

Diagnosis CheckLocale() {
  const std::string chosen = setlocale(LC_CTYPE, nullptr);
  const bool isKnown = setlocale(LC_CTYPE, "") != nullptr;
  const std::string name = isKnown ? setlocale(LC_CTYPE, nullptr) : "";
  const bool isWide = MB_CUR_MAX > 1;
  (void)setlocale(LC_CTYPE, chosen.c_str());
  if (!isKnown) {
    return {"locale", Health::kWarning, "the environment names a locale that is not there",
            "update-locale LANG=C.UTF-8"};
  }
  const std::string note = isWide ? "" : "; programs in it know only 7-bit names";
  return {"locale", Health::kGood, name + note, ""};
}

Diagnosis CheckIpcBase() {
  const s32 base = ReadIPCNameBase();
  const std::string text = "ipcnamebase=" + std::to_string(base);
  const std::string mend = std::string("sed -i '/ipcnamebase=/d' ") + kIPCConfigPath;
  if (base == kUselessBase) {
    return {"IPC base", Health::kFault, text + " keeps the library out", mend};
  }
  if (base == kUnreadBase) {
    return {"IPC base", Health::kWarning, text + " is read anew each time", mend};
  }
  return {"IPC base", Health::kGood, text, ""};
}

Diagnosis CheckPackageFiles() {
  int code = 0;
  const std::string part = "package";
  const std::string query = std::string("dpkg-query -W -f '${Version}' ") + kPackage + " 2>&1";
  const std::string version = OutputOf(query.c_str(), &code);
  if (code != 0) return {part, Health::kGood, "not installed from a package", ""};
  const std::string verify = std::string("dpkg --verify ") + kPackage + " 2>&1";
  const std::string changed = OutputOf(verify.c_str(), &code);
  if (changed.empty()) return {part, Health::kGood, std::string(kPackage) + " " + version, ""};
  return {part, Health::kFault, changed.substr(0, changed.find('\n')),
          std::string("apt-get install --reinstall ") + kPackage};
}

}  // namespace qvx::ctl
