// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_LOCAL_MUTEX_H
#define QVX_BASE_LOCAL_MUTEX_H

#include <pthread.h>

#include "qvxcs/types.h"

namespace qvx {

using LocalMutex = pthread_mutex_t*;

LocalMutex CreateLocalMutex();
void DestroyLocalMutex(LocalMutex mutex);

// An internal service without a caller in the library, held by its tests.
s32 WaitForLocalMutex(LocalMutex mutex, s32 timeout);
s32 ReleaseLocalMutex(LocalMutex mutex);

}  // namespace qvx

#endif
