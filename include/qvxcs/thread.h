/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_THREAD_H
#define QVXCS_THREAD_H

/**
 * @file
 * Threads, each with a record of the caller.
 *
 * A host starts a thread with a record and waits for its end with the same record. The
 * record must stay where it is until the thread has been waited for, and is not locked: one record
 * is not started or stopped by two threads at once. Every thread that was started has to be
 * stopped once, or its resources are never released. Nothing of a thread is kept in the library,
 * but its first and last steps are the library's code: unloading the library while a thread of it
 * runs crashes the process.
 */

#include <pthread.h>

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** The body of a thread; its result is dropped. */
typedef qvx_u32 (*PXTThreadEntry)(qvx_u32 argument);

/** A thread, in memory of the caller and filled by `PXTThreadStart`. */
typedef struct PXTThread {
  PXTThreadEntry entry; /**< the body */
  qvx_u32 argument;     /**< what the body is called with */
  pthread_t thread;     /**< set when the thread has been created, zeroed when it was stopped */
} PXTThread;

/**
 * Starts a thread with the system's default attributes.
 *
 * @param[out] thread   the record, which is filled and read by the new thread
 * @param[in] entry     the body; no exception may leave it
 * @param[in] argument  what the body is called with
 * @retval 0 the thread was started
 * @retval -1 when the record or the body is NULL (nothing is stored), or when the system cannot
 *         start a thread (body and argument are stored, the thread is zeroed)
 * @par Memory
 * The record stays the caller's and must outlive the thread.
 * @par Threads
 * Any thread may call, with its own record.
 */
QVX_EXPORT qvx_s32 PXTThreadStart(PXTThread* thread, PXTThreadEntry entry, qvx_u32 argument);

/**
 * Waits for a thread to end.
 *
 * There is no way to interrupt a body: to stop a thread is to wait until it ends by itself. Unlike
 * every other call, the wait may be ended by pthread_cancel; the record can then be stopped again.
 *
 * @param[in,out] thread  a record that was started, or a zeroed one
 * @retval 0 the thread has ended; at once for a record whose start failed, that has been stopped
 *         already or is zeroed
 * @retval -1 when the record is NULL
 * @par Memory
 * The system's resources of the thread are released; the record stays the caller's.
 * @par Threads
 * One thread at a time stops a record. A thread does not stop itself.
 */
QVX_EXPORT qvx_s32 PXTThreadStop(PXTThread* thread);

QVX_END_DECLS

#endif
