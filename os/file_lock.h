// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_FILE_LOCK_H
#define QVX_OS_FILE_LOCK_H

#include "qvxcs/ini_file.h"
#include "qvxcs/types.h"

namespace qvx {

// The global mutex made by the first attach; 0 while the library is not attached.
extern u32 hGFileLock;

u32 CreateGlobalMutex(u32 name);
// An internal service without a caller in the library, held by its tests.
u32 OpenGlobalMutex(u32 name);
s32 WaitForGlobalMutex(u32 handle, s32 timeout);
s32 ReleaseGlobalMutex(u32 handle);
void DestroyGlobalMutex();

// Deliberate: the lock belongs to the process: a second take in the same process succeeds, and the
// first release ends every hold.
// Held by FileLockTest.TheInnerReleaseOfANestedHoldEndsTheOuterOne.
// It serialises file work between the suite's processes.
// QVX_LOCK_WAIT tries up to 60,000 times, 1 ms apart; any other value tries once.
// An internal service without a caller in the library, held by its tests.
u32 FileLock(u16 wait);
s32 FileUnlock();

// Holds the threads' turn and, within it, the file lock. The sleeps spent on the turn count against
// those of the lock, and a single attempt is one attempt at each. A guard inside another one of the
// same thread takes the turn once more.
class FileLockGuard {
 public:
  explicit FileLockGuard(u16 wait);
  ~FileLockGuard();
  FileLockGuard(const FileLockGuard&) = delete;
  FileLockGuard& operator=(const FileLockGuard&) = delete;
  explicit operator bool() const { return held_; }

 private:
  bool held_ = false;
};

}  // namespace qvx

#endif
