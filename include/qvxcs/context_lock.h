/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_CONTEXT_LOCK_H
#define QVXCS_CONTEXT_LOCK_H

/**
 * @file
 * Context locks: one lock for each piece of data that the threads of a process share.
 *
 * Make a lock, take it around each use of the data, free it when the data goes. A handle is a
 * 32-bit number that means something in this process only. 0 means "no lock": freeing, locking and
 * unlocking 0, or a handle that is not in use, do nothing, so code that runs without a lock passes
 * 0. A number that was freed may come back with a later lock.
 *
 * The lock is not recursive: a thread that takes it twice waits for itself forever. It excludes
 * the threads of this process, not other processes. The linked lists of `list.h` use these locks.
 *
 * In a child forked from a process with threads, locks can be made, taken and freed. One that
 * another thread held at the fork stays taken there.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/**
 * Makes a lock that nobody holds.
 *
 * @return its handle; 0 without memory
 * @par Memory
 * The lock is the caller's, for `PXTFreeContextLock`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT qvx_u32 PXTAllocContextLock(void);

/**
 * Frees a lock.
 *
 * @param[in] handle  the lock; 0 or a handle not in use is ignored
 * @par Memory
 * The lock is gone and its handle no longer in use.
 * @par Threads
 * Any thread may call, while none holds the lock or waits for it.
 */
QVX_EXPORT void PXTFreeContextLock(qvx_u32 handle);

/**
 * Takes a lock, waiting without limit until it is free.
 *
 * @param[in] handle  the lock; 0 or a handle not in use is ignored
 * @par Memory
 * None.
 * @par Threads
 * Any thread may call that does not hold the lock.
 */
QVX_EXPORT void PXTLockContext(qvx_u32 handle);

/**
 * Releases a lock.
 *
 * @param[in] handle  the lock; 0 or a handle not in use is ignored
 * @par Memory
 * None.
 * @par Threads
 * The thread that holds the lock calls.
 */
QVX_EXPORT void PXTUnLockContext(qvx_u32 handle);

QVX_END_DECLS

#endif
