// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_log.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "os/file_lock.h"
#include "os/file_util.h"
#include "os/stdio_file.h"
#include "xml/log_entry.h"

namespace qvx {

namespace {

constexpr u32 kFailed = 0xFFFFFFFF;

constexpr astring kHead[] =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?>";
constexpr astring kOpeningTag[] = "<EventLog>";
constexpr astring kClosingTag[] = "</EventLog>";
constexpr s64 kHeadLength = sizeof kHead - 1;
constexpr s64 kTagLength = sizeof kClosingTag - 1;
static_assert(kHeadLength == 65 && kTagLength == 11);

// The closing tag is nearly always the last thing in the log: the first block read holds it.
constexpr s64 kSearchBlock = 4096;

iovec Part(const astring* text, size_t length) { return {const_cast<astring*>(text), length}; }

// One write, so that no other program ever finds the entry without its closing tag.
bool WriteAt(int descriptor, const iovec* parts, int count, s64 offset) {
  size_t wanted = 0;
  for (int i = 0; i < count; ++i) {
    wanted += parts[i].iov_len;
  }
  ssize_t written = 0;
  do {
    written = pwritev(descriptor, parts, count, static_cast<off_t>(offset));
  } while (written < 0 && errno == EINTR);
  return written >= 0 && static_cast<size_t>(written) == wanted;
}

bool ReadAt(int descriptor, astring* block, size_t length, s64 offset) {
  ssize_t got = 0;
  do {
    got = pread(descriptor, block, length, static_cast<off_t>(offset));
  } while (got < 0 && errno == EINTR);
  return got >= 0 && static_cast<size_t>(got) == length;
}

bool CutAt(int descriptor, s64 length) {
  return ftruncate(descriptor, static_cast<off_t>(length)) == 0;
}

// The last place at which the tag stands in the block, or -1.
s64 LastTagIn(const astring* block, s64 length) {
  for (s64 at = length - kTagLength; at >= 0; --at) {
    if (memcmp(block + at, kClosingTag, kTagLength) == 0) {
      return at;
    }
  }
  return -1;
}

// The offset of the log's last closing tag behind the head; -1 without one or when a read fails.
s64 FindClosingTag(int descriptor, s64 size) {
  astring block[kSearchBlock];
  s64 end = size;
  while (end - kTagLength >= kHeadLength) {
    const s64 start = std::max(end - kSearchBlock, kHeadLength);
    if (!ReadAt(descriptor, block, static_cast<size_t>(end - start), start)) {
      return -1;
    }
    const s64 found = LastTagIn(block, end - start);
    if (found >= 0) {
      return start + found;
    }
    end = start + kTagLength - 1;
  }
  return -1;
}

u32 WriteFirstEntry(int descriptor, const LogEntry& entry) {
  const iovec parts[] = {Part(kHead, sizeof kHead - 1), Part(kOpeningTag, sizeof kOpeningTag - 1),
                         Part(entry.Text(), entry.Length()),
                         Part(kClosingTag, sizeof kClosingTag - 1)};
  if (!WriteAt(descriptor, parts, 4, 0)) {
    (void)CutAt(descriptor, 0);
    return SM_STATUS_WRITE_FAILED;
  }
  return SM_STATUS_SUCCESS;
}

// The tag goes back first: its bytes are still allocated, also on a disk that is full.
void RestoreClosingTag(int descriptor, s64 offset) {
  const iovec tag = Part(kClosingTag, sizeof kClosingTag - 1);
  (void)WriteAt(descriptor, &tag, 1, offset);
  (void)CutAt(descriptor, offset + kTagLength);
}

u32 WriteNextEntry(int descriptor, s64 size, const LogEntry& entry) {
  const s64 offset = FindClosingTag(descriptor, size);
  if (offset < 0) {
    return SM_STATUS_BAD_DATA;
  }
  const iovec parts[] = {Part(entry.Text(), entry.Length()),
                         Part(kClosingTag, sizeof kClosingTag - 1)};
  const s64 end = offset + s64{entry.Length()} + kTagLength;
  if (!WriteAt(descriptor, parts, 2, offset) || (end < size && !CutAt(descriptor, end))) {
    RestoreClosingTag(descriptor, offset);
    return SM_STATUS_WRITE_FAILED;
  }
  return SM_STATUS_SUCCESS;
}

// A directory or a device that stands in a log's place keeps its mode.
void SetLogMode(const astring* path) {
  struct stat status;
  if (stat(path, &status) == 0 && S_ISREG(status.st_mode)) {
    (void)chmod(path, kFileMode);
  }
}

// Only a missing log is created: one that cannot be opened is left to whoever protected it.
FilePtr OpenLog(const astring* path) {
  SetLogMode(path);
  FilePtr file = OpenFile(path, "r+b");
  if (!file && errno == ENOENT) {
    file = OpenFile(path, "w+b");
    SetLogMode(path);
  }
  return file;
}

u32 WriteEntry(const astring* path, const LogEntry& entry) {
  const FileLockGuard lock(1);
  if (!lock) {
    return SM_STATUS_LOCK_FAILED;
  }
  FilePtr file = OpenLog(path);
  if (!file) {
    return kFailed;
  }
  const s64 size = StreamSize(file.get());
  if (size < 0) {
    return kFailed;
  }
  const int descriptor = fileno(file.get());
  const u32 status = size < kHeadLength ? WriteFirstEntry(descriptor, entry)
                                        : WriteNextEntry(descriptor, size, entry);
  const bool closed = CloseWritten(std::move(file));
  return status == SM_STATUS_SUCCESS && !closed ? SM_STATUS_WRITE_FAILED : status;
}

u32 AppendCleared(const astring* path, const astring* user, const astring* source) {
  return AppendToXMLLog(path, kLogInformation, kLogClearedId, user, source, "Log was cleared",
                        nullptr, 0, kDefaultMaxLogSize);
}

bool HasHead(const astring* path) {
  struct stat info = {};
  return path != nullptr && stat(path, &info) == 0 && S_ISREG(info.st_mode) &&
         info.st_size >= kHeadLength;
}

}  // namespace

u32 ForceXMLLogExists(const astring* path, const astring* user, const astring* source) {
  if (HasHead(path)) {
    return SM_STATUS_SUCCESS;
  }
  return AppendCleared(path, user, source);
}

u32 ClearXMLLog(const astring* path, const astring* user, const astring* source) {
  const LogEvent cleared = {kLogInformation, kLogClearedId, user, source, nullptr, nullptr, 0};
  if (path == nullptr || !IsLoggable(cleared)) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  if (const u32 status = DeleteLogFile(path)) {
    return status;
  }
  return AppendCleared(path, user, source);
}

u32 AppendToXMLLog(const astring* path, u16 type, u32 id, const astring* user,
                   const astring* source, const astring* description, const void* data,
                   u32 dataSize, u32 maxSize) {
  const LogEvent event = {type, id, user, source, description, data, dataSize};
  if (path == nullptr || !IsLoggable(event)) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  if (const u32 status = CreateLogDir(path)) {
    return status;
  }
  LogEntry entry;
  if (const u32 status = entry.Build(event)) {
    return status;
  }
  // Deliberate: a backup that fails is not reported; the entry goes to the log that is full.
  // Held by XmlLog.FailedBackupLeavesTheEntryInTheFullLog.
  booln backedUp = 0;
  CheckBackupLogFile(path, maxSize, entry.Length(), &backedUp);
  if (backedUp == 1) {
    // Deliberate: the new log tells first that it was begun, ahead of the entry that made it
    // necessary and is older. Held by XmlLog.ReachingTheMaximumMovesTheLogToItsBackup.
    (void)AppendToXMLLog(path, kLogInformation, kLogBackupId, user, source, "Log backup created",
                         nullptr, 0, kDefaultMaxLogSize);
  }
  return WriteEntry(path, entry);
}

u32 DeleteLogFile(const astring* path) {
  if (path == nullptr) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  const FileLockGuard lock(1);
  if (!lock) {
    return SM_STATUS_LOCK_FAILED;
  }
  SetLogMode(path);
  return unlink(path) == 0 ? SM_STATUS_SUCCESS : kFailed;
}

u32 CreateLogDir(const astring* path) {
  if (!HasDirectoryPart(path)) {
    return SM_STATUS_SUCCESS;
  }
  const HeapArray<astring> directory = DirectoryPart(path);
  if (!directory) {
    return SM_STATUS_NO_MEMORY;
  }
  return CreateDir(directory.get()) == SM_STATUS_SUCCESS ? SM_STATUS_SUCCESS : kFailed;
}

}  // namespace qvx
