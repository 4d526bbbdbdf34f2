// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/web_server.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "qvxcs/paths.h"
#include "qvxcs/status.h"

#include "base/layout.h"
#include "base/results.h"
#include "os/kept_descriptor.h"

namespace qvx {
namespace {

constexpr int kFirstInherited = 3;
constexpr int kLastInherited = 255;
constexpr s32 kServiceExitTwo = 2;
// The longest command, an unknown action's on a host with systemd, has 62 characters.
constexpr size_t kCommandRoom = 128;

// The library's own descriptors are close-on-exec, so the service does not inherit them. Without
// them later calls would lose the lock, or take the host's next file for the role map. What is
// inherited under their number is a file that the host has put there.
bool IsInherited(int file) { return (fcntl(file, F_GETFD) & FD_CLOEXEC) == 0; }

void CloseInherited() {
  for (int file = kFirstInherited; file <= kLastInherited; ++file) {
    if (!IsKeptDescriptor(file) || IsInherited(file)) (void)close(file);
  }
}

const astring* WordOf(u32 action) {
  switch (action) {
    case QVX_WEBSERVER_STOP:
      return " stop";
    case QVX_WEBSERVER_START:
      return " start";
    case QVX_WEBSERVER_RESTART:
    case QVX_WEBSERVER_RESTART_TOO:
      return " restart";
    default:
      // Deliberate: an unknown action is run as a command that does not exist, so that it fails
      // with the shell's exit status 127. Held by WebServer.UnknownActionRunsNoServiceCommand.
      return kServiceName;
  }
}

bool HasSystemd() {
  struct stat status = {};
  return stat(kOsReleasePath, &status) == 0;
}

void FormatCommand(astring (&command)[kCommandRoom], const astring* word) {
  constexpr astring kSilenced[] = " 2>&1 >/dev/null";
  if (HasSystemd()) {
    (void)snprintf(command, sizeof(command), "systemctl%s %s.service%s", word, kServiceName,
                   kSilenced);
  } else {
    (void)snprintf(command, sizeof(command), "%s%s%s", kServiceInitScript, word, kSilenced);
  }
}

}  // namespace

u32 CfgWebServer(u32 action, u32 /*reserved*/, s32* exitCode) {
  if (action == QVX_WEBSERVER_RESTART || action == QVX_WEBSERVER_RESTART_TOO) CloseInherited();
  astring command[kCommandRoom];
  FormatCommand(command, WordOf(action));
  // Deliberate: only the upper bits of the wait status count, so a shell that a signal ended counts
  // as a success. Held by WebServer.ShellEndedBySignalPassesForSuccess.
  const s32 code = static_cast<s32>(system(command)) >> 8;
  if (exitCode != nullptr) *exitCode = code;
  if (code == 0) return SM_STATUS_SUCCESS;
  return code == kServiceExitTwo ? SM_STATUS_FILE_CREATE_FAILED : kMinusOne;
}

}  // namespace qvx
