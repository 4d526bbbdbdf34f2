// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_backup.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "os/file_lock.h"
#include "os/file_util.h"
#include "os/torn_log_notes.h"
#include "xml/log_file.h"
#include "xml/log_mend.h"

namespace qvx {

namespace {

constexpr u32 kBackupNameRoom = 256;

bool IsFull(const astring* path, u32 maxSize, u32 entrySize) {
  u32 size = 0;
  return GetSizeOfFile(path, &size) == SM_STATUS_SUCCESS &&
         ReachesMaximum(size, maxSize, entrySize);
}

u32 MoveOverBackup(const astring* path, const astring* backup) {
  if (chmod(path, kFileMode) != 0) return kMinusOne;
  SetLogMode(backup, LookAtLog(backup));
  (void)unlink(backup);
  return rename(path, backup) == 0 ? SM_STATUS_SUCCESS : kMinusOne;
}

}  // namespace

u32 GetBackupXMLLogPathFileName(const astring* path, astring* buffer, u32* size) {
  if (path == nullptr || size == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const size_t length = strlen(path);
  if (length < 2) return SM_STATUS_INVALID_PARAMETER;
  // Deliberate: the buffer is assumed to hold 256 bytes, and the incoming size is ignored. Held by
  // LogBackup.IncomingSizeIsNotConsulted.
  *size = static_cast<u32>(length + 1);
  if (length >= kBackupNameRoom) return SM_STATUS_BUFFER_TOO_SMALL;
  if (buffer != nullptr) {
    memmove(buffer, path, length + 1);
    buffer[length - 1] = '_';
  }
  return SM_STATUS_SUCCESS;
}

u32 BackupLogFile(const astring* path, u32 maxSize, u32 entrySize) {
  const HeapArray<astring> backup = AllocArray<astring>(kBackupNameRoom);
  if (!backup) return SM_STATUS_NO_MEMORY;
  u32 room = kBackupNameRoom;
  if (const u32 status = GetBackupXMLLogPathFileName(path, backup.get(), &room)) return status;
  if (strcmp(path, backup.get()) == 0) return kMinusOne;
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  // The caller measured the log too, without the lock, so as not to take it for a log that is not
  // full. Another process may have moved the log since: then the existing backup holds its entries
  // and must not be deleted for a new, short log.
  // It may have been cut since, too.
  if (MayHaveTornLogNotes()) MendLogAt(path);
  if (!IsFull(path, maxSize, entrySize)) return kMinusOne;
  return MoveOverBackup(path, backup.get());
}

void CheckBackupLogFile(const astring* path, u32 maxSize, u32 entrySize, booln* backedUp) {
  *backedUp = BackupLogFile(path, maxSize, entrySize) == SM_STATUS_SUCCESS ? 1 : 0;
}

}  // namespace qvx
