// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <utility>

#include "os/file_util.h"
#include "os/uninterrupted.h"

namespace qvx {
namespace {

// A FIFO in the log's place must not be waited for.
constexpr int kLogFlags = O_RDWR | O_NONBLOCK | O_NOCTTY;
// Fewer rights than a finished log has, so that nobody gains a right while it is being made.
constexpr mode_t kNewLogMode = 0664;

mode_t PermissionsOf(const struct stat& status) { return status.st_mode & 07777; }

// The mode is set first where it keeps its owner from writing.
Descriptor OpenWithItsMode(const astring* path) {
  Descriptor opened = OpenDescriptor(path, kLogFlags);
  if (opened || errno == ENOENT) return opened;
  const int reason = errno;
  SetLogMode(path, LookAtLog(path));
  if (reason == EACCES) return OpenDescriptor(path, kLogFlags);
  errno = reason;
  return opened;
}

// One look at the open file finds everything that is needed about it. A log of the limit's size or
// more is left as it is.
LogFile LogOver(Descriptor descriptor, s64 limit = INT64_MAX) {
  struct stat status = {};
  if (!descriptor || fstat(descriptor.Number(), &status) != 0) return {};
  if (!S_ISREG(status.st_mode)) {
    errno = EINVAL;
    return {};
  }
  if (status.st_size >= limit) return {};
  if (PermissionsOf(status) != kFileMode) (void)fchmod(descriptor.Number(), kFileMode);
  return {std::move(descriptor), FileIdOf(status), status.st_size};
}

}  // namespace

LogLook LookAtLog(const astring* path) {
  struct stat status = {};
  if (stat(path, &status) != 0) return {};
  return {true, S_ISREG(status.st_mode), PermissionsOf(status), FileIdOf(status), status.st_size};
}

void SetLogMode(const astring* path, const LogLook& look) {
  if (look.regular && look.mode != kFileMode) (void)chmod(path, kFileMode);
}

LogFile OpenLogBelow(const astring* path, s64 limit) {
  return LogOver(OpenDescriptor(path, kLogFlags), limit);
}

LogFile OpenStandingLog(const astring* path) { return LogOver(OpenWithItsMode(path)); }

LogFile OpenLog(const astring* path) {
  Descriptor standing = OpenWithItsMode(path);
  if (standing || errno != ENOENT) return LogOver(std::move(standing));
  return LogOver(OpenDescriptor(path, kLogFlags | O_CREAT, kNewLogMode));
}

bool ReadLog(const LogFile& log, void* block, size_t length, s64 offset) {
  const ssize_t got = Uninterrupted(
      [&] { return pread(log.descriptor.Number(), block, length, static_cast<off_t>(offset)); });
  return got >= 0 && static_cast<size_t>(got) == length;
}

bool WriteLog(const LogFile& log, const iovec* parts, int count, s64 offset) {
  size_t wanted = 0;
  for (int i = 0; i < count; ++i) {
    wanted += parts[i].iov_len;
  }
  const ssize_t written = Uninterrupted(
      [&] { return pwritev(log.descriptor.Number(), parts, count, static_cast<off_t>(offset)); });
  return written >= 0 && static_cast<size_t>(written) == wanted;
}

bool CutLog(const LogFile& log, s64 length) {
  return ftruncate(log.descriptor.Number(), static_cast<off_t>(length)) == 0;
}

}  // namespace qvx
