/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_THREAD_H
#define QVXCS_THREAD_H

#include <pthread.h>

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

typedef u32 (*PXTThreadEntry)(u32 argument);

typedef struct PXTThread {
  PXTThreadEntry entry;
  u32 argument;
  pthread_t thread;
} PXTThread;

QVX_EXPORT s32 PXTThreadStart(PXTThread* thread, PXTThreadEntry entry, u32 argument);

QVX_EXPORT s32 PXTThreadStop(PXTThread* thread);

QVX_END_DECLS

#endif
