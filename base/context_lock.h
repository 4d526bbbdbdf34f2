// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_CONTEXT_LOCK_H
#define QVX_BASE_CONTEXT_LOCK_H

#include "qvxcs/types.h"

namespace qvx {

u32 AllocContextLock();
void FreeContextLock(u32 handle);
void LockContext(u32 handle);
void UnLockContext(u32 handle);
// Called when the library is unloaded.
void ReleaseContextLockSlots();

// Called around a fork: the child finds the table whole and free, whichever thread was using it.
// Both the parent and the child end the hold.
void HoldContextLocksForFork();
void EndContextLocksHold();

}  // namespace qvx

#endif
