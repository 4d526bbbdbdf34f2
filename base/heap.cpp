// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/heap.h"

namespace qvx {

void* AllocMem(u32 size) { return malloc(size); }

void* ReAllocMem(void* block, u32 size) { return realloc(block, size); }

void FreeMem(void* block) { free(block); }

}  // namespace qvx
