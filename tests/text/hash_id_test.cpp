// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/hash_id.h"

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <vector>

#include "qvxcs/hash_id.h"

#include "support/guard_buffer.h"

namespace {

using qvx::test::GuardBuffer;

// A table of exactly so many bytes with the given identifiers in use.
class Table {
 public:
  explicit Table(u32 size, std::initializer_list<u32> ids = {}) : size_(size), bytes_(size) {
    EXPECT_EQ(qvx::ClearHashTable(bytes_.data(), size), 0u);
    for (const u32 id : ids)
      bytes_[id / 8] = static_cast<u8>(bytes_[id / 8] | 1u << id % 8);
  }
  u8* data() { return bytes_.data(); }
  [[nodiscard]] u32 size() const { return size_; }
  u32 Acquire() { return qvx::AcquireHashID(data(), size_); }
  s32 Verify(u32 id) { return qvx::VerifyHashID(data(), size_, id); }
  s32 Release(u32 id) { return qvx::ReleaseHashID(data(), size_, id); }
  u32 Max() { return qvx::GetMaxInUseID(data(), size_); }
  std::vector<u32> List() {
    std::vector<u32> ids;
    u32 word = 77;
    u32 bit = 77;
    u32 id = qvx::FindFirstHashID(data(), size_, &word, &bit);
    for (; id != 0; id = qvx::FindNextHashID(data(), size_, &word, &bit))
      ids.push_back(id);
    return ids;
  }

 private:
  u32 size_;
  GuardBuffer<u8> bytes_;
};

using Ids = std::vector<u32>;

TEST(HashId, BytesNeededAreAnEighthRoundedUp) {
  const struct {
    u32 count;
    u32 bytes;
  } cases[] = {{0, 0},
               {1, 1},
               {8, 1},
               {9, 2},
               {64, 8},
               {0xFFFFFFF9, 0x20000000},
               {0xFFFFFFFF, 0x20000000},
               {0xFFFFFFF8, 0x1FFFFFFF}};
  for (const auto& each : cases) {
    EXPECT_EQ(qvx::HashTableBytesNeeded(each.count), each.bytes) << each.count;
  }
}

TEST(HashId, ClearingTouchesExactlyTheTable) {
  GuardBuffer<u8> bytes(7);
  EXPECT_EQ(qvx::ClearHashTable(bytes.data(), 6), 0u);
  for (u32 at = 0; at < 6; ++at)
    EXPECT_EQ(bytes[at], 0);
  EXPECT_TRUE(bytes.UntouchedFrom(6));
  EXPECT_TRUE(bytes.FrontUntouched());
  EXPECT_EQ(qvx::ClearHashTable(bytes.data() + 6, 0), 0u);
  EXPECT_TRUE(bytes.UntouchedFrom(6));
}

TEST(HashId, AClearedTableOf8BytesHandsOut1To63) {
  Table table(8);
  for (u32 id = 1; id <= 63; ++id)
    EXPECT_EQ(table.Acquire(), id);
  EXPECT_EQ(table.Acquire(), 0u);
  EXPECT_EQ(table.data()[0], 0xFE);  // bit 0 of word 0 is never set
}

TEST(HashId, TheLowestFreeIdentifierIsTaken) {
  Table table(8);
  for (u32 id = 1; id <= 63; ++id)
    (void)table.Acquire();
  EXPECT_EQ(table.Release(40), 0);
  EXPECT_EQ(table.Release(33), 0);
  EXPECT_EQ(table.Release(31), 0);
  EXPECT_EQ(table.Acquire(), 31u);
  EXPECT_EQ(table.Acquire(), 33u);
  EXPECT_EQ(table.Acquire(), 40u);
  EXPECT_EQ(table.Acquire(), 0u);
}

TEST(HashId, TablesBelow4BytesHandOutAndReportNothing) {
  for (const u32 size : {0u, 1u, 3u}) {
    Table table(size);
    if (size != 0) memset(table.data(), 0x02, size);
    EXPECT_EQ(table.Acquire(), 0u) << size;
    EXPECT_EQ(table.Max(), 0u) << size;
    EXPECT_EQ(table.List(), Ids{}) << size;
  }
}

TEST(HashId, APartialLastWordIsNeverHandedOutButVerifiedAndReleased) {
  for (const u32 size : {5u, 6u, 7u}) {
    Table table(size, {32, size * 8 - 1});
    for (u32 id = 1; id <= 31; ++id)
      EXPECT_EQ(table.Acquire(), id);
    EXPECT_EQ(table.Acquire(), 0u);
    EXPECT_EQ(table.Max(), 31u);
    EXPECT_EQ(table.Verify(32), 0);
    EXPECT_EQ(table.Verify(33), -1);
    EXPECT_EQ(table.Verify(size * 8 - 1), 0);
    EXPECT_EQ(table.Release(size * 8 - 1), 0);
    EXPECT_EQ(table.Verify(size * 8 - 1), -1);
    EXPECT_EQ(table.Verify(size * 8), -1);
    EXPECT_EQ(table.Release(size * 8), -1);
  }
}

TEST(HashId, IdentifiersBeyondTheTableAreRefused) {
  Table table(8, {63});
  EXPECT_EQ(table.Verify(63), 0);
  for (const u32 id : {64u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(table.Verify(id), -1);
    EXPECT_EQ(table.Release(id), -1);
  }
}

TEST(HashId, ATableOf0BytesHoldsNoIdentifier) {
  Table table(0);
  for (const u32 id : {0u, 1u, 0xFFFFFFFFu}) {
    EXPECT_EQ(table.Verify(id), -1);
    EXPECT_EQ(table.Release(id), -1);
  }
}

TEST(HashId, LimitsAreComparedIn64Bits) {
  Table table(16, {100});
  const u32 huge = 0x20000001;  // times 8 is 8 in 32 bits; only the identifier's byte is touched
  EXPECT_EQ(qvx::VerifyHashID(table.data(), huge, 100), 0);
  EXPECT_EQ(qvx::ReleaseHashID(table.data(), huge, 100), 0);
  EXPECT_EQ(qvx::VerifyHashID(table.data(), huge, 100), -1);
}

TEST(HashId, ReleasingTwiceFailsTheSecondTime) {
  Table table(8);
  for (u32 id = 1; id <= 5; ++id)
    (void)table.Acquire();
  EXPECT_EQ(table.Verify(5), 0);
  EXPECT_EQ(table.Release(5), 0);
  EXPECT_EQ(table.Verify(5), -1);
  EXPECT_EQ(table.Release(5), -1);
  EXPECT_EQ(table.Verify(4), 0);
}

TEST(HashId, IdentifierZeroIsNeverInUse) {
  Table table(8);
  while (table.Acquire() != 0) {
  }
  EXPECT_EQ(table.Verify(0), -1);
  EXPECT_EQ(table.Release(0), -1);
  EXPECT_EQ(Table(1).Verify(0), -1);
}

TEST(HashId, TheMaximumIsTheHighestIdentifierInUse) {
  EXPECT_EQ(Table(12).Max(), 0u);
  EXPECT_EQ(Table(12, {1}).Max(), 1u);
  EXPECT_EQ(Table(12, {1, 31}).Max(), 31u);
  EXPECT_EQ(Table(12, {5, 32}).Max(), 32u);
  EXPECT_EQ(Table(12, {5, 64, 95}).Max(), 95u);
  EXPECT_EQ(Table(12, {0}).Max(), 0u);  // bit 0 of word 0 is ignored
  EXPECT_EQ(Table(12, {0, 3}).Max(), 3u);
}

TEST(HashId, EnumerationYieldsIdentifiersInRisingOrder) {
  EXPECT_EQ(Table(8, {5, 37}).List(), (Ids{5, 37}));
  EXPECT_EQ(Table(8, {0, 1, 2, 31, 63}).List(), (Ids{1, 2, 31, 63}));
  EXPECT_EQ(Table(16, {64, 127}).List(), (Ids{64, 127}));
  EXPECT_EQ(Table(16).List(), Ids{});
  EXPECT_EQ(Table(7, {5, 37}).List(), Ids{5});  // the partial last word is not listed
}

TEST(HashId, EnumerationPassesOverLowerBitsOfLaterWords) {
  EXPECT_EQ(Table(8, {5, 33}).List(), Ids{5});
  EXPECT_EQ(Table(12, {5, 33, 69}).List(), (Ids{5, 69}));
  EXPECT_EQ(Table(12, {31, 62, 95}).List(), (Ids{31, 95}));
}

TEST(HashId, TheCursorMovesOnlyToWhatIsFound) {
  Table table(8, {5, 37});
  u32 word = 9;
  u32 bit = 9;
  EXPECT_EQ(qvx::FindFirstHashID(table.data(), 8, &word, &bit), 5u);
  EXPECT_EQ(word, 0u);
  EXPECT_EQ(bit, 5u);
  EXPECT_EQ(qvx::FindNextHashID(table.data(), 8, &word, &bit), 37u);
  EXPECT_EQ(word, 1u);
  EXPECT_EQ(bit, 5u);
  EXPECT_EQ(qvx::FindNextHashID(table.data(), 8, &word, &bit), 0u);
  EXPECT_EQ(word, 1u);
  EXPECT_EQ(bit, 5u);
  Table empty(8);
  EXPECT_EQ(qvx::FindFirstHashID(empty.data(), 8, &word, &bit), 0u);
  EXPECT_EQ(word, 0u);
  EXPECT_EQ(bit, 0u);
}

TEST(HashId, ACursorBitAbove31FindsNothing) {
  Table table(8, {1, 31, 32, 63});
  for (const u32 given : {32u, 33u, 0xFFFFFFFFu}) {
    u32 word = 0;
    u32 bit = given;
    EXPECT_EQ(qvx::FindNextHashID(table.data(), 8, &word, &bit), 0u) << given;
    EXPECT_EQ(word, 0u);
    EXPECT_EQ(bit, given);
  }
}

TEST(HashId, ACursorAtBit31GoesOnWithBit31OfLaterWords) {
  Table table(12, {31, 62, 63, 95});
  u32 word = 0;
  u32 bit = 31;
  EXPECT_EQ(qvx::FindNextHashID(table.data(), 12, &word, &bit), 63u);
  EXPECT_EQ(qvx::FindNextHashID(table.data(), 12, &word, &bit), 95u);
}

TEST(HashId, ACursorBehindTheTableFindsNothing) {
  Table table(8, {1});
  for (const u32 given : {2u, 3u, 0xFFFFFFFFu}) {
    u32 word = given;
    u32 bit = 0;
    EXPECT_EQ(qvx::FindNextHashID(table.data(), 8, &word, &bit), 0u);
    EXPECT_EQ(word, given);
  }
}

TEST(HashId, WordsWhoseIdentifiersDoNotFit32BitsAreNotSearched) {
  Table table(8, {1});
  u32 word = 1u << 27;
  u32 bit = 0;
  EXPECT_EQ(qvx::FindNextHashID(table.data(), 0xFFFFFFFF, &word, &bit), 0u);
}

TEST(HashId, TablesNeedNoAlignment) {
  GuardBuffer<u8> bytes(9);
  u8* table = bytes.data() + 1;
  EXPECT_EQ(qvx::ClearHashTable(table, 8), 0u);
  EXPECT_EQ(qvx::AcquireHashID(table, 8), 1u);
  EXPECT_EQ(qvx::GetMaxInUseID(table, 8), 1u);
  EXPECT_TRUE(bytes[0] == GuardBuffer<u8>::kGuard);
}

TEST(HashId, ExportedFunctionsGiveTheSameAnswers) {
  u32 table[2];
  u32 word = 9;
  u32 bit = 9;
  EXPECT_EQ(PXTHashTableBytesNeeded(9), 2u);
  EXPECT_EQ(PXTClearHashTable(table, sizeof(table)), 0u);
  EXPECT_EQ(PXTAcquireHashID(table, sizeof(table)), 1u);
  EXPECT_EQ(PXTAcquireHashID(table, sizeof(table)), 2u);
  EXPECT_EQ(table[0], 0x6u);
  EXPECT_EQ(PXTVerifyHashID(table, sizeof(table), 2), 0);
  EXPECT_EQ(PXTGetMaxInUseID(table, sizeof(table)), 2u);
  EXPECT_EQ(PXTFindFirstHashID(table, sizeof(table), &word, &bit), 1u);
  EXPECT_EQ(PXTFindNextHashID(table, sizeof(table), &word, &bit), 2u);
  EXPECT_EQ(PXTReleaseHashID(table, sizeof(table), 2), 0);
  EXPECT_EQ(PXTReleaseHashID(table, sizeof(table), 2), -1);
}

}  // namespace
