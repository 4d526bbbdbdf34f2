/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_MEMORY_H
#define QVXCS_MEMORY_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT void* PXTAllocMem(u32 size);

QVX_EXPORT void* PXTReAllocMem(void* block, u32 size);

QVX_EXPORT void PXTFreeMem(void* block);

QVX_EXPORT void PXTGenericFree(void* block);

QVX_EXPORT void SUPTFreeMem(void* block);

QVX_END_DECLS

#endif
