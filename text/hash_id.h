// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_HASH_ID_H
#define QVX_TEXT_HASH_ID_H

#include "qvxcs/types.h"

namespace qvx {

u32 HashTableBytesNeeded(u32 count);
u32 ClearHashTable(void* table, u32 size);
u32 AcquireHashID(void* table, u32 size);
s32 ReleaseHashID(void* table, u32 size, u32 id);
s32 VerifyHashID(void* table, u32 size, u32 id);
u32 GetMaxInUseID(void* table, u32 size);
u32 FindFirstHashID(void* table, u32 size, u32* word, u32* bit);
u32 FindNextHashID(void* table, u32 size, u32* word, u32* bit);

}  // namespace qvx

#endif
