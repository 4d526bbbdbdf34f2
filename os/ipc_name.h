// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_IPC_NAME_H
#define QVX_OS_IPC_NAME_H

#include "qvxcs/types.h"

namespace qvx {

// The base that the configuration file has now; 100,000 without one.
s32 ReadIPCNameBase();

// The base, read once, and the offset.
s32 CreateIPCName(u32 offset);

}  // namespace qvx

#endif
