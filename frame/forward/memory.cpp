// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/memory.h"

#include "base/heap.h"

void* PXTAllocMem(u32 size) { return qvx::AllocMem(size); }
void* PXTReAllocMem(void* block, u32 size) { return qvx::ReAllocMem(block, size); }
void PXTFreeMem(void* block) { qvx::FreeMem(block); }
void PXTGenericFree(void* block) { qvx::FreeMem(block); }
void SUPTFreeMem(void* block) { qvx::FreeMem(block); }
