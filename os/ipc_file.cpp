// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ipc_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "base/layout.h"
#include "base/poll_wait.h"

namespace qvx {
namespace {

constexpr int kClosed = -1;

// One descriptor in a process, opened once: closing any other descriptor of the file would drop
// the record lock.
int ipcFile = kClosed;

bool IsRegular(int file) {
  struct stat status = {};
  return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

int SetRecord(int command, short type) {
  struct flock whole = {};
  whole.l_type = type;
  whole.l_whence = SEEK_SET;
  return fcntl(ipcFile, command, &whole);
}

// A file opened read-only refuses the exclusive lock with EBADF: the shared one is taken instead.
s32 WaitForRecord() {
  short type = F_WRLCK;
  while (SetRecord(F_SETLKW, type) != 0) {
    if (errno == EINTR) {
      continue;
    }
    if (errno != EBADF || type == F_RDLCK) {
      return -1;
    }
    type = F_RDLCK;
  }
  return 0;
}

}  // namespace

s32 OpenIPCFile() {
  if (ipcFile != kClosed) {
    return 0;
  }
  constexpr int kFlags = O_CLOEXEC | O_NONBLOCK;
  int file = open(kIPCFilePath, O_RDWR | O_CREAT | kFlags, 0664);
  if (file < 0 && errno == EACCES) {
    file = open(kIPCFilePath, O_RDONLY | kFlags);
  }
  if (file < 0) {
    return -1;
  }
  if (!IsRegular(file)) {
    close(file);
    return -1;
  }
  ipcFile = file;
  return 0;
}

s32 CloseIPCFile() {
  if (ipcFile != kClosed) {
    close(ipcFile);
    ipcFile = kClosed;
  }
  return 0;
}

s32 LockIPCFileRecord([[maybe_unused]] u32 handle, s32 timeout) {
  if (timeout == -1) {
    return WaitForRecord();
  }
  // Deliberate: a single attempt on a file opened read-only fails, for only the next one asks for
  // the shared lock. Held by FileLockTest.ASingleAttemptWithoutWriteAccessFails.
  short type = F_WRLCK;
  return PollWait(timeout, [&type] {
    if (SetRecord(F_SETLK, type) == 0) {
      return Attempt::kTaken;
    }
    if (errno != EBADF) {
      return Attempt::kBusy;
    }
    if (type == F_RDLCK) {
      return Attempt::kFailed;
    }
    type = F_RDLCK;
    return Attempt::kBusy;
  });
}

s32 UnlockIPCFileRecord() {
  while (SetRecord(F_SETLKW, F_UNLCK) != 0) {
    if (errno != EINTR) {
      return -1;
    }
  }
  return 0;
}

s32 IPCFileDescriptor() { return ipcFile; }

}  // namespace qvx
