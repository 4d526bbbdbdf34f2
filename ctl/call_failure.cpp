// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/call_failure.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "qvxcs/status.h"

#include "ctl/lock_holders.h"
#include "os/descriptor.h"

namespace qvx::ctl {
namespace {

// The lock is held, or its file cannot be reached: then the library could not attach.
Failure LockFailure(const std::string& what) {
  const std::string holder = DescribeBlockingHolder();
  Failure failure = StatusFailure(what, SM_STATUS_LOCK_FAILED);
  if (!holder.empty()) return {kUnknown, failure.what() + (": held by " + holder)};
  const int reason = ReasonNotReadable(LockFilePath());
  if (reason == 0) return failure;
  return StatusFailure(what + ": " + LockFilePath(), SM_STATUS_LOCK_FAILED, reason);
}

}  // namespace

int ReasonNotReadable(const std::string& path) {
  const Descriptor file = OpenDescriptor(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file) return errno;
  struct stat status {};
  if (fstat(file.Number(), &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return S_ISREG(status.st_mode) ? 0 : kNoRegularFile;
}

Failure CallFailure(const std::string& what, const std::string& path, u32 status, int reason) {
  const std::string where = what + ": " + path;
  switch (status) {
    case SM_STATUS_LOCK_FAILED:
      return LockFailure(what);
    case SM_STATUS_FILE_OPEN_FAILED:
    case SM_STATUS_FILE_OPEN_ERROR:
      if (const int unreadable = ReasonNotReadable(path)) reason = unreadable;
      return StatusFailure(where, status, reason);
    case SM_STATUS_WRITE_FAILED:
    case SM_STATUS_FILE_CREATE_FAILED:
    case SM_STATUS_FILE_DELETE_FAILED:
    case 0xFFFFFFFF:
      return StatusFailure(where, status, reason);
    default:
      return StatusFailure(where, status);
  }
}

void RequireFreeLock(const std::string& what) {
  const std::string holder = DescribeBlockingHolder();
  if (holder.empty()) return;
  throw LockFailure(what);
}

}  // namespace qvx::ctl
