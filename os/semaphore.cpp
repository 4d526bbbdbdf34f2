// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/semaphore.h"

#include <sys/ipc.h>
#include <sys/sem.h>

#include <cerrno>

#include "base/poll_wait.h"
#include "os/uninterrupted.h"

namespace qvx {
namespace {

constexpr s32 kInvalid = 0;
constexpr s32 kFailed = -1;
constexpr s32 kWithoutLimit = -1;

constexpr int kOneSemaphore = 1;
constexpr int kAccess = 0666;
constexpr int kNewSet = IPC_CREAT | IPC_EXCL | kAccess;

// The fourth argument of semctl, which the system's headers leave to the program.
union SemaphoreArgument {
  int val;
  semid_ds* buf;
  unsigned short* array;
};

// Deliberate: a value that the system refuses leaves the semaphore as it is.
// Held by Semaphore.AValueThatTheSystemRefusesLeavesANewSetAtZero.
void SetValue(s32 handle, u32 value) {
  SemaphoreArgument argument{};
  argument.val = static_cast<int>(value);
  (void)semctl(handle, 0, SETVAL, argument);
}

s32 RemoveSet(s32 identifier) { return semctl(identifier, 0, IPC_RMID); }

// One operation on semaphore 0; 0 when it was done.
int Operate(s32 handle, short amount, short flags) {
  sembuf operation = {0, amount, flags};
  return semop(handle, &operation, 1);
}

s32 OperateUninterrupted(s32 handle, short amount, short flags) {
  return Uninterrupted([=] { return Operate(handle, amount, flags); }) == 0 ? 0 : kFailed;
}

// Callers treat identifier 0 as a failure, so the set is made again while a placeholder keeps the
// system from giving out 0 once more.
s32 ReplaceSetZero(s32 key, u32 initial) {
  (void)RemoveSet(0);
  const int placeholder = semget(IPC_PRIVATE, kOneSemaphore, kNewSet);
  const s32 handle = CreateSemaphore(key, initial);
  if (placeholder != -1) (void)RemoveSet(placeholder);
  return handle;
}

}  // namespace

s32 CreateSemaphore(s32 key, u32 initial) {
  const int identifier = semget(key, kOneSemaphore, kNewSet);
  // Deliberate: an existing set is used as it is, its value unchanged.
  // Held by Semaphore.AnExistingSetIsUsedAsItIs.
  if (identifier == -1) return errno == EEXIST ? OpenSemaphore(key) : kInvalid;
  if (identifier == 0) return ReplaceSetZero(key, initial);
  SetValue(identifier, initial);
  return identifier;
}

s32 OpenSemaphore(s32 key) {
  // The system would make a new set for the private key.
  if (key == IPC_PRIVATE) return kInvalid;
  const int identifier = semget(key, kOneSemaphore, kAccess);
  return identifier == -1 ? kInvalid : identifier;
}

s32 WaitForSemaphore(s32 handle, s32 timeout) {
  if (handle == kInvalid) return kFailed;
  if (timeout == kWithoutLimit) return OperateUninterrupted(handle, -1, 0);
  // Deliberate: every failure counts as busy, even that of a set that no longer exists.
  // Held by Semaphore.APolledWaitTakesEveryFailureForBusy.
  return PollWait(timeout, [handle] {
    return Operate(handle, -1, IPC_NOWAIT) == 0 ? Attempt::kTaken : Attempt::kBusy;
  });
}

s32 ReleaseSemaphore(s32 handle) {
  return handle == kInvalid ? kFailed : OperateUninterrupted(handle, 1, IPC_NOWAIT);
}

s32 ResetSemaphore(s32 handle) {
  if (handle == kInvalid) return kFailed;
  SetValue(handle, 0);
  return 0;
}

s32 DestroySemaphore(s32 handle) { return handle == kInvalid ? 0 : RemoveSet(handle); }

}  // namespace qvx
