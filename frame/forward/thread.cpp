// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/thread.h"

#include "os/thread.h"

s32 PXTThreadStart(PXTThread* thread, PXTThreadEntry entry, u32 argument) {
  return qvx::OSThreadStart(thread, entry, argument);
}
s32 PXTThreadStop(PXTThread* thread) { return qvx::OSThreadStop(thread); }
