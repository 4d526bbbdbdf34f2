// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "frame/module.h"

#include "qvxcs/status.h"

#include "base/context_lock.h"
#include "base/export_context.h"
#include "frame/forks.h"
#include "os/file_lock.h"
#include "os/ip_support.h"
#include "os/ipc_file.h"
#include "os/ipc_name.h"
#include "os/threads_turn.h"
#include "paths/install_path.h"
#include "text/wide.h"
#include "xml/command_log.h"

namespace qvx {

s32 modAttachCount = 0;

namespace {

constexpr u32 kFileLockOffset = 30000;

void CloseLock() {
  (void)ReleaseGlobalMutex(hGFileLock);
  DestroyGlobalMutex();
  hGFileLock = 0;
  (void)CloseIPCFile();
}

s32 FirstAttach() {
  GetExportContext(&origECI);
  hGFileLock = CreateGlobalMutex(static_cast<u32>(CreateIPCName(kFileLockOffset)));
  if (hGFileLock == 0) return 0;
  (void)WaitForGlobalMutex(hGFileLock, -1);
  (void)SUPTIntfInitQVXInstallPath();
  // Deliberate: IP support stays loaded after the last detach, so another first attach of the same
  // loaded image is refused. Held by Module.AttachAfterTheLastDetachIsRefused.
  if (LoadIPSupt() != SM_STATUS_SUCCESS) {
    CloseLock();
    return 0;
  }
  ++modAttachCount;
  (void)ReleaseGlobalMutex(hGFileLock);
  InitCmdMaxLogSize();
  return 1;
}

}  // namespace

s32 ModuleAttach() {
  if (modAttachCount >= 1) {
    ++modAttachCount;
    return 1;
  }
  return FirstAttach();
}

s32 ModuleDetach() {
  if (modAttachCount < 1) return 0;
  if (modAttachCount-- != 1) return 1;
  // At the end of a process another thread may still be working under the lock. It is not waited
  // for: it keeps the lock file until it is done or the process has ended.
  if (TakeThreadsTurn(0) < 0) return 1;
  (void)WaitForGlobalMutex(hGFileLock, -1);
  (void)UnLoadIPSupt();
  CloseLock();
  GiveThreadsTurn();
  return 1;
}

s16 ModuleInit() {
  (void)AskProcessor();  // before the host has threads that would all ask
  WatchForks();
  return static_cast<s16>(ModuleAttach());
}

s16 ModuleFini() {
  const s16 result = static_cast<s16>(ModuleDetach());
  ReleaseContextLockSlots();
  return result;
}

}  // namespace qvx
