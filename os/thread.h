// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_THREAD_H
#define QVX_OS_THREAD_H

#include "qvxcs/thread.h"
#include "qvxcs/types.h"

namespace qvx {

s32 OSThreadStart(PXTThread* thread, PXTThreadEntry entry, u32 argument);
s32 OSThreadStop(PXTThread* thread);

u32 OSThreadStub(PXTThread* thread);

}  // namespace qvx

#endif
