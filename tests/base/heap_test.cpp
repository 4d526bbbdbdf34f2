// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/heap.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstring>

#include "qvxcs/memory.h"

#include "support/alloc_fault.h"

namespace {

TEST(Heap, BlocksAreOfTheAskedSizeAndKeepTheirBytesWhenTheyGrow) {
  auto* block = static_cast<u8*>(PXTAllocMem(16));
  ASSERT_NE(block, nullptr);
  memset(block, 0x5A, 16);
  block = static_cast<u8*>(PXTReAllocMem(block, 4096));
  ASSERT_NE(block, nullptr);
  for (int at = 0; at < 16; ++at) {
    EXPECT_EQ(block[at], 0x5A);
  }
  memset(block, 0, 4096);
  PXTFreeMem(block);
}

TEST(Heap, ReAllocOfNullIsAnAllocation) {
  void* const block = PXTReAllocMem(nullptr, 8);
  EXPECT_NE(block, nullptr);
  PXTFreeMem(block);
}

TEST(Heap, ASizeOfZeroIsForTheCLibraryToDecide) {
  void* const block = PXTAllocMem(0);
  EXPECT_NE(block, nullptr);
  EXPECT_EQ(PXTReAllocMem(block, 0), nullptr);  // and the block is gone
}

// A block so large that the heap maps it from the system and returns it at once.
constexpr size_t kLarge = size_t{4} << 20;

size_t LargeBytes() { return mallinfo2().hblkhd; }

TEST(Heap, EveryFreeTakesBlocksOfTheProcessHeapAndIgnoresNull) {
  const size_t before = LargeBytes();
  for (void (*const release)(void*) : {PXTFreeMem, PXTGenericFree, SUPTFreeMem}) {
    void* const block = malloc(kLarge);
    ASSERT_NE(block, nullptr);
    // A sanitizer's heap reports no sizes; it reports blocks that are not freed.
    EXPECT_TRUE(LargeBytes() >= before + kLarge || LargeBytes() == 0);
    release(block);
    EXPECT_EQ(LargeBytes(), before);
    release(nullptr);
    EXPECT_EQ(LargeBytes(), before);
  }
}

TEST(Heap, ExhaustedMemoryGivesNull) {
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(PXTAllocMem(8), nullptr);
}

TEST(Heap, AFailedReAllocLeavesTheBlock) {
  auto* const block = static_cast<u8*>(PXTAllocMem(2));
  block[0] = 7;
  {
    const qvx::test::FailNthAllocation fault(1);
    EXPECT_EQ(PXTReAllocMem(block, 100), nullptr);
  }
  EXPECT_EQ(block[0], 7);
  PXTFreeMem(block);
}

TEST(Heap, ArraysBeyondTheMachinesSizesAreRefused) {
  EXPECT_EQ(qvx::AllocArray<u32>(UINT64_MAX / 2), nullptr);
  EXPECT_EQ(qvx::AllocArray<u32>(UINT64_MAX / 4 + 2), nullptr);  // 4 in 64 bits
  EXPECT_EQ(qvx::AllocArray<u8>(static_cast<u64>(PTRDIFF_MAX) + 1), nullptr);
}

}  // namespace
