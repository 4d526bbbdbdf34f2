// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_IPC_NAME_H
#define QVX_OS_IPC_NAME_H

#include "qvxcs/types.h"

namespace qvx {

s32 CreateIPCName(u32 offset);

}  // namespace qvx

#endif
