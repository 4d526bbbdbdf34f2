// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/file_lock.h"

#include "os/ipc_file.h"

namespace qvx {

u32 hGFileLock = 0;

namespace {

constexpr s32 kPatientAttempts = 60000;

}  // namespace

// All global mutexes of a process are one lock over the whole IPC file; a handle is only the name.
u32 CreateGlobalMutex(u32 name) {
  if (name == 0) {
    return 0;
  }
  return OpenIPCFile() == 0 ? name : 0;
}

u32 OpenGlobalMutex(u32 name) { return CreateGlobalMutex(name); }

s32 WaitForGlobalMutex(u32 handle, s32 timeout) {
  return handle == 0 ? -1 : LockIPCFileRecord(handle, timeout);
}

s32 ReleaseGlobalMutex(u32 handle) { return handle == 0 ? -1 : UnlockIPCFileRecord(); }

void DestroyGlobalMutex() {}

u32 FileLock(u16 wait) {
  const s32 attempts = wait == 1 ? kPatientAttempts : 0;
  return WaitForGlobalMutex(hGFileLock, attempts) == 0 ? 1 : 0;
}

s32 FileUnlock() { return ReleaseGlobalMutex(hGFileLock); }

}  // namespace qvx
