/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_CONTEXT_LOCK_H
#define QVXCS_CONTEXT_LOCK_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTAllocContextLock(void);

QVX_EXPORT void PXTFreeContextLock(u32 handle);

QVX_EXPORT void PXTLockContext(u32 handle);

QVX_EXPORT void PXTUnLockContext(u32 handle);

QVX_END_DECLS

#endif
