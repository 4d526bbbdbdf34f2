// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_SEMAPHORE_H
#define QVX_OS_SEMAPHORE_H

#include "qvxcs/types.h"

// An internal service without a caller in the library, held by its tests.
namespace qvx {

s32 CreateSemaphore(s32 key, u32 initial);
s32 OpenSemaphore(s32 key);
s32 WaitForSemaphore(s32 handle, s32 timeout);
s32 ReleaseSemaphore(s32 handle);
s32 ResetSemaphore(s32 handle);
s32 DestroySemaphore(s32 handle);

}  // namespace qvx

#endif
