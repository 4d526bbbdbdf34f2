// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/context_lock.h"

#include "base/context_lock.h"

u32 PXTAllocContextLock() { return qvx::AllocContextLock(); }
void PXTFreeContextLock(u32 handle) { qvx::FreeContextLock(handle); }
void PXTLockContext(u32 handle) { qvx::LockContext(handle); }
void PXTUnLockContext(u32 handle) { qvx::UnLockContext(handle); }
