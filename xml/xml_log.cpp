// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_log.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "os/file_lock.h"
#include "os/file_util.h"
#include "os/torn_log_notes.h"
#include "xml/log_entry.h"
#include "xml/log_file.h"
#include "xml/log_mend.h"
#include "xml/log_tail.h"

namespace qvx {

namespace {

bool HasHead(const LogLook& look) { return look.regular && look.size >= kLogHeadLength; }

// Mends the log in a separate hold of the lock.
void MendAlone(const astring* path) {
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (lock) MendLogAt(path);
}

// A log is mended before its size moves it to the backup, which would keep it torn. The lock file
// is empty unless a process was killed. Mending makes no log longer.
bool IsFull(const astring* path, const LogLook& look, u32 maxSize, const LogEntry& entry) {
  if (!look.regular || !ReachesMaximum(look.size, maxSize, entry.Length())) return false;
  if (!MayHaveTornLogNotes()) return true;
  MendAlone(path);
  const LogLook mended = LookAtLog(path);
  return mended.regular && ReachesMaximum(mended.size, maxSize, entry.Length());
}

// The log's last close failed, which may have lost the entry.
void TakeBackFromClosed(const astring* path, const FileId& id, const LogAddition& addition) {
  const LogFile log = OpenStandingLog(path);
  if (log && log.id == id) (void)addition.TakeBack(log);
}

u32 WriteAndClose(const astring* path, LogFile log, const LogAddition& addition) {
  // What follows the closing tag is removed first, so that a kill within the write leaves nothing
  // of it after the entry.
  if (addition.End() < log.size && !CutLog(log, addition.Offset() + kLogClosingLength)) {
    return SM_STATUS_WRITE_FAILED;
  }
  if (!addition.Write(log)) {
    (void)addition.TakeBack(log);
    return SM_STATUS_WRITE_FAILED;
  }
  if (log.descriptor.Close()) return SM_STATUS_SUCCESS;
  TakeBackFromClosed(path, log.id, addition);
  return SM_STATUS_WRITE_FAILED;
}

u32 WriteTo(const astring* path, LogFile log, const LogEntry& entry) {
  TornLogNotes notes;
  MendNoted(&log, &notes);
  const s64 offset = log.size < kLogHeadLength ? 0 : FindClosingTag(log);
  if (offset < 0) return SM_STATUS_BAD_DATA;
  const FileId id = log.id;
  const LogAddition addition(entry, offset);
  // Without its note the entry is written all the same.
  if (addition.MayBeTorn()) (void)notes.Add(addition.NoteFor(log));
  const u32 status = WriteAndClose(path, std::move(log), addition);
  notes.Drop(id);
  return status;
}

u32 WriteEntry(const astring* path, const LogEntry& entry) {
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  LogFile log = OpenLog(path);
  return log ? WriteTo(path, std::move(log), entry) : kMinusOne;
}

// An entry to a log that exists, opens and is not full needs nothing before the lock. False with
// nothing done for any other log and when the lock is not free.
bool WriteAtOnce(const astring* path, u32 maxSize, const LogEntry& entry, u32* status) {
  const FileLockGuard lock(QVX_LOCK_TRY);
  if (!lock) return false;
  LogFile log = OpenLogBelow(path, s64{maxSize} - s64{entry.Length()});
  if (!log) return false;
  *status = WriteTo(path, std::move(log), entry);
  return true;
}

// Whether the path names the file itself, not a link to it.
bool NamesItself(const astring* path, const FileId& id) {
  struct stat status = {};
  return lstat(path, &status) == 0 && FileIdOf(status) == id;
}

u32 AppendCleared(const astring* path, const astring* user, const astring* source) {
  return AppendToXMLLog(path, kLogInformation, kLogClearedId, user, source, "Log was cleared",
                        nullptr, 0, kDefaultMaxLogSize);
}

bool MayBeLogged(const astring* user, const astring* source) {
  return IsLoggable({kLogInformation, kLogClearedId, user, source, nullptr, nullptr, 0});
}

}  // namespace

u32 ForceXMLLogExists(const astring* path, const astring* user, const astring* source) {
  if (path == nullptr) return SM_STATUS_BAD_ARGUMENT;
  const LogLook look = LookAtLog(path);
  const int reason = errno;
  if (HasHead(look)) return SM_STATUS_SUCCESS;
  if (!MayBeLogged(user, source)) return SM_STATUS_BAD_ARGUMENT;
  // A log that the system does not show may have entries, and is not begun anew.
  if (!look.found && reason != ENOENT) return kMinusOne;
  return AppendCleared(path, user, source);
}

u32 ClearXMLLog(const astring* path, const astring* user, const astring* source) {
  if (path == nullptr || !MayBeLogged(user, source)) return SM_STATUS_BAD_ARGUMENT;
  if (const u32 status = DeleteLogFile(path)) return status;
  return AppendCleared(path, user, source);
}

u32 AppendToXMLLog(const astring* path, u16 type, u32 id, const astring* user,
                   const astring* source, const astring* description, const void* data,
                   u32 dataSize, u32 maxSize) {
  const LogEvent event = {type, id, user, source, description, data, dataSize};
  if (path == nullptr || !IsLoggable(event)) return SM_STATUS_BAD_ARGUMENT;
  LogEntry entry;
  const u32 built = entry.Build(event);
  u32 status = SM_STATUS_SUCCESS;
  if (built == SM_STATUS_SUCCESS && WriteAtOnce(path, maxSize, entry, &status)) return status;
  const LogLook look = LookAtLog(path);
  if (!look.found) status = CreateLogDir(path);
  if (status == SM_STATUS_SUCCESS) status = built;
  if (status != SM_STATUS_SUCCESS) return status;
  // Deliberate: a backup that fails is not reported; the entry is written to the full log.
  // Held by XmlLog.FailedBackupLeavesTheEntryInTheFullLog.
  booln backedUp = 0;
  if (IsFull(path, look, maxSize, entry)) {
    CheckBackupLogFile(path, maxSize, entry.Length(), &backedUp);
  }
  if (backedUp == 1) {
    // Deliberate: the new log first records that it was begun, before the entry that made it
    // necessary and is older. Held by XmlLog.ReachingTheMaximumMovesTheLogToItsBackup.
    (void)AppendToXMLLog(path, kLogInformation, kLogBackupId, user, source, "Log backup created",
                         nullptr, 0, kDefaultMaxLogSize);
  }
  return WriteEntry(path, entry);
}

u32 DeleteLogFile(const astring* path) {
  if (path == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  const LogLook look = LookAtLog(path);
  SetLogMode(path, look);
  TornLogNotes notes;
  const bool forgets = notes.Find(look.id) != nullptr && NamesItself(path, look.id);
  if (unlink(path) != 0) return kMinusOne;
  if (forgets) notes.Drop(look.id);
  return SM_STATUS_SUCCESS;
}

u32 CreateLogDir(const astring* path) {
  if (!HasDirectoryPart(path)) return SM_STATUS_SUCCESS;
  const HeapArray<astring> directory = DirectoryPart(path);
  if (!directory) return SM_STATUS_NO_MEMORY;
  return CreateDir(directory.get()) == SM_STATUS_SUCCESS ? SM_STATUS_SUCCESS : kMinusOne;
}

}  // namespace qvx
