// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ipc_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

#include "base/layout.h"
#include "base/poll_wait.h"
#include "os/descriptor.h"
#include "os/file_id.h"
#include "os/uninterrupted.h"

namespace qvx {
namespace {

constexpr int kClosed = -1;

// One descriptor in a process, opened once: closing any other descriptor of the file would drop
// the record lock.
constinit std::atomic<int> ipcFile{kClosed};
// The file that was opened under this number.
FileId ipcFileId = {};

Descriptor OpenLockFile() {
  Descriptor file = OpenDescriptor(kIPCFilePath, O_RDWR | O_CREAT | O_NONBLOCK, 0664);
  if (!file && errno == EACCES) file = OpenDescriptor(kIPCFilePath, O_RDONLY | O_NONBLOCK);
  return file;
}

s32 OpenAnew() {
  Descriptor file = OpenLockFile();
  struct stat status = {};
  if (!file || fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode)) return -1;
  ipcFileId = FileIdOf(status);
  ipcFile = file.Release();
  return 0;
}

// Whether the number still belongs to the file that was opened: the host may have closed it, and
// the system may have given it to another file, which is the host's and is left alone.
bool IsStillOurs() {
  struct stat status = {};
  return ipcFile != kClosed && fstat(ipcFile, &status) == 0 && FileIdOf(status) == ipcFileId;
}

int SetRecord(int command, short type) {
  struct flock whole = {};
  whole.l_type = type;
  whole.l_whence = SEEK_SET;
  return fcntl(ipcFile, command, &whole);
}

// One request for the lock. A lost descriptor is opened again; if that fails, the request fails
// like one on a closed descriptor.
int RequestRecord(int command, short type) {
  if (ipcFile == kClosed || IsStillOurs() || OpenAnew() == 0) return SetRecord(command, type);
  errno = EBADF;
  return -1;
}

// A file opened read-only refuses the exclusive lock with EBADF: the shared one is taken instead.
s32 WaitForRecord() {
  short type = F_WRLCK;
  while (Uninterrupted([type] { return RequestRecord(F_SETLKW, type); }) != 0) {
    if (errno != EBADF || type == F_RDLCK) return -1;
    type = F_RDLCK;
  }
  return 0;
}

}  // namespace

s32 OpenIPCFile() { return ipcFile == kClosed ? OpenAnew() : 0; }

s32 CloseIPCFile() {
  if (IsStillOurs()) (void)close(ipcFile);
  ipcFile = kClosed;
  return 0;
}

s32 LockIPCFileRecord([[maybe_unused]] u32 handle, s32 timeout) {
  if (timeout == -1) return WaitForRecord();
  // Deliberate: a single attempt on a file opened read-only fails, because only the next one asks
  // for the shared lock. Held by FileLockTest.ASingleAttemptWithoutWriteAccessFails.
  short type = F_WRLCK;
  return PollWait(timeout, [&type] {
    if (RequestRecord(F_SETLK, type) == 0) return Attempt::kTaken;
    if (errno != EBADF) return Attempt::kBusy;
    if (type == F_RDLCK) return Attempt::kFailed;
    type = F_RDLCK;
    return Attempt::kBusy;
  });
}

s32 UnlockIPCFileRecord() {
  // Closing the descriptor has already ended the hold.
  if (ipcFile != kClosed && !IsStillOurs()) return 0;
  return Uninterrupted([] { return SetRecord(F_SETLKW, F_UNLCK); }) == 0 ? 0 : -1;
}

s32 IPCFileDescriptor() { return ipcFile; }

}  // namespace qvx
