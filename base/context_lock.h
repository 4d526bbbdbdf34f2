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

// Around a fork, so that the child finds the table whole and free, whichever thread was at it. The
// hold is ended in the parent and in the child.
void HoldContextLocksForFork();
void EndContextLocksHold();

}  // namespace qvx

#endif
