// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/file_lock.h"

#include "os/ipc_file.h"
#include "os/threads_turn.h"

namespace qvx {

u32 hGFileLock = 0;

namespace {

constexpr s32 kPatientAttempts = 60000;

s32 SleepsOf(u16 wait) { return wait == QVX_LOCK_WAIT ? kPatientAttempts : 0; }

}  // namespace

// All global mutexes of a process are one lock over the whole IPC file; a handle is only the name.
u32 CreateGlobalMutex(u32 name) {
  if (name == 0) return 0;
  return OpenIPCFile() == 0 ? name : 0;
}

u32 OpenGlobalMutex(u32 name) { return CreateGlobalMutex(name); }

s32 WaitForGlobalMutex(u32 handle, s32 timeout) {
  return handle == 0 ? -1 : LockIPCFileRecord(handle, timeout);
}

s32 ReleaseGlobalMutex(u32 handle) { return handle == 0 ? -1 : UnlockIPCFileRecord(); }

void DestroyGlobalMutex() {}

u32 FileLock(u16 wait) { return WaitForGlobalMutex(hGFileLock, SleepsOf(wait)) == 0 ? 1 : 0; }

s32 FileUnlock() { return ReleaseGlobalMutex(hGFileLock); }

FileLockGuard::FileLockGuard(u16 wait) {
  const s32 slept = TakeThreadsTurn(SleepsOf(wait));
  if (slept < 0) return;
  held_ = WaitForGlobalMutex(hGFileLock, SleepsOf(wait) - slept) == 0;
  if (!held_) GiveThreadsTurn();
}

FileLockGuard::~FileLockGuard() {
  if (!held_) return;
  (void)FileUnlock();
  GiveThreadsTurn();
}

}  // namespace qvx
