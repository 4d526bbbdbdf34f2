// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_IPC_FILE_H
#define QVX_OS_IPC_FILE_H

#include "qvxcs/types.h"

namespace qvx {

s32 OpenIPCFile();
s32 CloseIPCFile();
s32 LockIPCFileRecord(u32 handle, s32 timeout);
s32 UnlockIPCFileRecord();
s32 IPCFileDescriptor();

}  // namespace qvx

#endif
