// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_IPC_FILE_H
#define QVX_OS_IPC_FILE_H

#include "qvxcs/types.h"

namespace qvx {

// The lock file of the suite, open once in a process while the library is attached. Each request
// first makes sure that the descriptor still is that file: a host may have closed it, as a daemon
// does with all descriptors of its child. Then the file is opened again, and any other file that
// now has the number is left alone.
s32 OpenIPCFile();
s32 CloseIPCFile();
s32 LockIPCFileRecord(u32 handle, s32 timeout);
s32 UnlockIPCFileRecord();
s32 IPCFileDescriptor();

}  // namespace qvx

#endif
