// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/hash_id.h"

#include "text/hash_id.h"

u32 PXTHashTableBytesNeeded(u32 count) { return qvx::HashTableBytesNeeded(count); }
u32 PXTClearHashTable(void* table, u32 size) { return qvx::ClearHashTable(table, size); }
u32 PXTAcquireHashID(void* table, u32 size) { return qvx::AcquireHashID(table, size); }
s32 PXTReleaseHashID(void* table, u32 size, u32 id) { return qvx::ReleaseHashID(table, size, id); }
s32 PXTVerifyHashID(void* table, u32 size, u32 id) { return qvx::VerifyHashID(table, size, id); }
u32 PXTGetMaxInUseID(void* table, u32 size) { return qvx::GetMaxInUseID(table, size); }
u32 PXTFindFirstHashID(void* table, u32 size, u32* word, u32* bit) {
  return qvx::FindFirstHashID(table, size, word, bit);
}
u32 PXTFindNextHashID(void* table, u32 size, u32* word, u32* bit) {
  return qvx::FindNextHashID(table, size, word, bit);
}
