/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_HASH_ID_H
#define QVXCS_HASH_ID_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTHashTableBytesNeeded(u32 count);

QVX_EXPORT u32 PXTClearHashTable(void* table, u32 size);

QVX_EXPORT u32 PXTAcquireHashID(void* table, u32 size);

QVX_EXPORT s32 PXTReleaseHashID(void* table, u32 size, u32 id);

QVX_EXPORT s32 PXTVerifyHashID(void* table, u32 size, u32 id);

QVX_EXPORT u32 PXTGetMaxInUseID(void* table, u32 size);

QVX_EXPORT u32 PXTFindFirstHashID(void* table, u32 size, u32* word, u32* bit);

QVX_EXPORT u32 PXTFindNextHashID(void* table, u32 size, u32* word, u32* bit);

QVX_END_DECLS

#endif
