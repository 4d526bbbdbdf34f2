// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/grow_string.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstddef>
#include <cstring>
#include <string>

#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "support/heap_use.h"
#include "support/long_text.h"

namespace qvx {
namespace {

using test::FailNthAllocation;
using test::GuardBuffer;

// A record that holds `text` in a block of `capacity` bytes.
SSAStr Holding(u32 capacity, const std::string& text) {
  SSAStr record = {};
  EXPECT_NE(SSAStrAlloc(&record, capacity), nullptr);
  EXPECT_LT(text.size(), capacity);
  memcpy(record.text, text.c_str(), text.size() + 1);
  record.length = static_cast<u32>(text.size());
  return record;
}

SSUStr HoldingWide(u32 capacity, const std::u16string& text) {
  SSUStr record = {};
  EXPECT_NE(SSUStrAlloc(&record, capacity), nullptr);
  EXPECT_LE((text.size() + 1) * 2, capacity);
  memcpy(record.text, text.c_str(), (text.size() + 1) * 2);
  record.length = static_cast<u32>(text.size());
  return record;
}

std::u16string Wide(const SSUStr& record) {
  std::u16string text;
  for (u32 i = 0; i < record.length; ++i) {
    text.push_back(static_cast<char16_t>(record.text[i]));
  }
  EXPECT_EQ(record.text[record.length], 0);
  return text;
}

const ustring* Units(const char16_t* text) { return reinterpret_cast<const ustring*>(text); }

// A host of another language sees a record as bytes.
struct RecordBytes {
  void* text;
  u32 capacity;
  u32 length;

  explicit RecordBytes(const void* record) {
    const u8* const bytes = static_cast<const u8*>(record);
    memcpy(&text, bytes, sizeof(void*));
    memcpy(&capacity, bytes + sizeof(void*), 4);
    memcpy(&length, bytes + sizeof(void*) + 4, 4);
  }
};

TEST(GrowString, RecordsAreFilledAsAPointerAndTwo32BitFields) {
  SSAStr narrow = {};
  ASSERT_NE(SSAStrAlloc(&narrow, 9), nullptr);
  ASSERT_NE(SSAStrCatAStr(&narrow, "abc"), nullptr);
  const RecordBytes narrowBytes(&narrow);
  EXPECT_STREQ(static_cast<astring*>(narrowBytes.text), "abc");
  EXPECT_EQ(narrowBytes.capacity, 9u);
  EXPECT_EQ(narrowBytes.length, 3u);
  SSAStrFree(&narrow);
  SSUStr wide = {};
  ASSERT_NE(SSUStrAlloc(&wide, 10), nullptr);
  ASSERT_NE(SSUStrCatAStr(&wide, "ab"), nullptr);
  const RecordBytes wideBytes(&wide);
  EXPECT_EQ(memcmp(wideBytes.text, u"ab", 6), 0);
  EXPECT_EQ(wideBytes.capacity, 10u);
  EXPECT_EQ(wideBytes.length, 2u);
  SSUStrFree(&wide);
}

TEST(GrowString, AllocStoresAnEmptyText) {
  SSAStr narrow = {nullptr, 7, 9};
  astring* const text = SSAStrAlloc(&narrow, 5);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(narrow.text, text);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(narrow.capacity, 5u);
  EXPECT_EQ(narrow.length, 0u);
  SSAStrFree(&narrow);

  SSUStr wide = {nullptr, 7, 9};
  ustring* const units = SSUStrAlloc(&wide, 6);
  ASSERT_NE(units, nullptr);
  EXPECT_EQ(wide.text, units);
  EXPECT_EQ(units[0], 0);
  EXPECT_EQ(wide.capacity, 6u);
  EXPECT_EQ(wide.length, 0u);
  SSUStrFree(&wide);
}

TEST(GrowString, AllocOfCapacityZeroLeavesTheRecordAlone) {
  astring standing[] = "x";
  SSAStr narrow = {standing, 7, 9};
  EXPECT_EQ(SSAStrAlloc(&narrow, 0), nullptr);
  EXPECT_EQ(narrow.text, standing);
  EXPECT_EQ(narrow.capacity, 7u);
  EXPECT_EQ(narrow.length, 9u);

  ustring standingUnits[] = {'x', 0};
  SSUStr wide = {standingUnits, 7, 9};
  EXPECT_EQ(SSUStrAlloc(&wide, 0), nullptr);
  EXPECT_EQ(wide.text, standingUnits);
  EXPECT_EQ(wide.capacity, 7u);
  EXPECT_EQ(wide.length, 9u);
}

TEST(GrowString, AllocWithoutMemoryLeavesTheRecordAlone) {
  astring standing[] = "x";
  SSAStr narrow = {standing, 7, 9};
  ustring standingUnits[] = {'x', 0};
  SSUStr wide = {standingUnits, 7, 9};
  astring* text = nullptr;
  ustring* units = nullptr;
  {
    const FailNthAllocation fault(1);
    text = SSAStrAlloc(&narrow, 8);
  }
  {
    const FailNthAllocation fault(1);
    units = SSUStrAlloc(&wide, 8);
  }
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(narrow.text, standing);
  EXPECT_EQ(narrow.capacity, 7u);
  EXPECT_EQ(units, nullptr);
  EXPECT_EQ(wide.text, standingUnits);
  EXPECT_EQ(wide.length, 9u);
}

TEST(GrowString, SixteenBitCapacityOfOneIsKeptAndHoldsTheTerminator) {
  SSUStr record = {};
  ustring* const text = SSUStrAlloc(&record, 1);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(record.capacity, 1u);
  EXPECT_EQ(text[0], 0);
  // (0 + 1 + 1) x 2 bytes are needed, more than twice the capacity.
  EXPECT_NE(SSUStrCatUStr(&record, Units(u"a")), nullptr);
  EXPECT_EQ(record.capacity, 4u);
  EXPECT_EQ(Wide(record), u"a");
  SSUStrFree(&record);
}

TEST(GrowString, FreeSetsAllFieldsToZero) {
  SSAStr narrow = Holding(8, "abc");
  SSAStrFree(&narrow);
  EXPECT_EQ(narrow.text, nullptr);
  EXPECT_EQ(narrow.capacity, 0u);
  EXPECT_EQ(narrow.length, 0u);
  SSAStrFree(&narrow);

  SSUStr wide = HoldingWide(8, u"abc");
  SSUStrFree(&wide);
  EXPECT_EQ(wide.text, nullptr);
  EXPECT_EQ(wide.capacity, 0u);
  EXPECT_EQ(wide.length, 0u);
  SSUStrFree(&wide);
}

TEST(GrowString, FreeGivesTheBlockBack) {
  constexpr u32 kCapacity = 4096;
  SSAStr narrow = Holding(kCapacity, "abc");
  const size_t withNarrow = test::HeapInUse();
  SSAStrFree(&narrow);
  EXPECT_LE(test::HeapInUse() + kCapacity, withNarrow);

  SSUStr wide = HoldingWide(kCapacity, u"abc");
  const size_t withWide = test::HeapInUse();
  SSUStrFree(&wide);
  EXPECT_LE(test::HeapInUse() + kCapacity, withWide);
}

TEST(GrowString, NullRecordsAreTolerated) {
  EXPECT_EQ(SSAStrAlloc(nullptr, 8), nullptr);
  EXPECT_EQ(SSUStrAlloc(nullptr, 8), nullptr);
  SSAStrFree(nullptr);
  SSUStrFree(nullptr);
  EXPECT_EQ(SSAStrCatAStr(nullptr, "a"), nullptr);
  EXPECT_EQ(SSAStrCatUStr(nullptr, Units(u"a")), nullptr);
  EXPECT_EQ(SSUStrCatUStr(nullptr, Units(u"a")), nullptr);
  EXPECT_EQ(SSUStrCatAStr(nullptr, "a"), nullptr);
}

TEST(GrowString, RecordWithoutTextGivesNull) {
  SSAStr narrow = {};
  EXPECT_EQ(SSAStrCatAStr(&narrow, "a"), nullptr);
  EXPECT_EQ(SSAStrCatAStr(&narrow, nullptr), nullptr);
  EXPECT_EQ(SSAStrCatUStr(&narrow, Units(u"a")), nullptr);
  EXPECT_EQ(SSAStrCatUStr(&narrow, nullptr), nullptr);
  SSUStr wide = {};
  EXPECT_EQ(SSUStrCatUStr(&wide, Units(u"a")), nullptr);
  EXPECT_EQ(SSUStrCatUStr(&wide, nullptr), nullptr);
  EXPECT_EQ(SSUStrCatAStr(&wide, "a"), nullptr);
  EXPECT_EQ(SSUStrCatAStr(&wide, nullptr), nullptr);
}

TEST(GrowString, NullTextAppendsNothing) {
  SSAStr narrow = Holding(8, "abc");
  EXPECT_EQ(SSAStrCatAStr(&narrow, nullptr), narrow.text);
  EXPECT_EQ(SSAStrCatUStr(&narrow, nullptr), narrow.text);
  EXPECT_STREQ(narrow.text, "abc");
  EXPECT_EQ(narrow.length, 3u);
  SSAStrFree(&narrow);

  SSUStr wide = HoldingWide(8, u"abc");
  EXPECT_EQ(SSUStrCatUStr(&wide, nullptr), wide.text);
  EXPECT_EQ(SSUStrCatAStr(&wide, nullptr), wide.text);
  EXPECT_EQ(Wide(wide), u"abc");
  SSUStrFree(&wide);
}

TEST(GrowString, TenCharactersOntoThreeOfEightGrowToSixteen) {
  SSAStr record = Holding(8, "abc");
  EXPECT_EQ(SSAStrCatAStr(&record, "0123456789"), record.text);
  EXPECT_STREQ(record.text, "abc0123456789");
  EXPECT_EQ(record.length, 13u);
  EXPECT_EQ(record.capacity, 16u);
  SSAStrFree(&record);
}

TEST(GrowString, TextThatFillsTheBlockDoesNotMoveIt) {
  SSAStr narrow = Holding(8, "abc");
  astring* const text = narrow.text;
  EXPECT_EQ(SSAStrCatAStr(&narrow, "defg"), text);
  EXPECT_STREQ(text, "abcdefg");
  EXPECT_EQ(narrow.capacity, 8u);
  SSAStrFree(&narrow);

  SSUStr wide = HoldingWide(8, u"ab");
  ustring* const units = wide.text;
  EXPECT_EQ(SSUStrCatUStr(&wide, Units(u"c")), units);
  EXPECT_EQ(Wide(wide), u"abc");
  EXPECT_EQ(wide.capacity, 8u);
  SSUStrFree(&wide);
}

TEST(GrowString, NeededSizeIsTakenWhereItIsMoreThanTwiceTheCapacity) {
  SSAStr record = Holding(2, "a");
  EXPECT_NE(SSAStrCatAStr(&record, "0123456789"), nullptr);
  EXPECT_EQ(record.capacity, 12u);
  EXPECT_STREQ(record.text, "a0123456789");
  SSAStrFree(&record);
}

TEST(GrowString, SixteenBitSizesAreBytes) {
  SSUStr record = HoldingWide(8, u"abc");
  // (3 + 1 + 1) x 2 = 10 bytes are needed, 16 are twice the capacity.
  EXPECT_EQ(SSUStrCatUStr(&record, Units(u"d")), record.text);
  EXPECT_EQ(Wide(record), u"abcd");
  EXPECT_EQ(record.length, 4u);
  EXPECT_EQ(record.capacity, 16u);
  SSUStrFree(&record);
}

TEST(GrowString, OddSixteenBitCapacityCountsWholeUnitsOnly) {
  SSUStr record = {};
  ASSERT_NE(SSUStrAlloc(&record, 5), nullptr);
  EXPECT_NE(SSUStrCatUStr(&record, Units(u"a")), nullptr);
  EXPECT_EQ(record.capacity, 5u);
  EXPECT_NE(SSUStrCatUStr(&record, Units(u"b")), nullptr);
  EXPECT_EQ(record.capacity, 10u);
  EXPECT_EQ(Wide(record), u"ab");
  SSUStrFree(&record);
}

TEST(GrowString, CapacityAboveFFFFFGrowsByAQuarter) {
  const std::string text(0x100000 - 1, 'x');
  SSAStr record = Holding(0x100000, text);
  EXPECT_NE(SSAStrCatAStr(&record, "y"), nullptr);
  EXPECT_EQ(record.capacity, 0x140000u);
  EXPECT_EQ(record.length, 0x100000u);
  EXPECT_EQ(std::string(record.text), text + "y");
  SSAStrFree(&record);
}

TEST(GrowString, CapacityOfFFFFFStillDoubles) {
  SSAStr record = Holding(0xFFFFF, std::string(0xFFFFE, 'x'));
  EXPECT_NE(SSAStrCatAStr(&record, "y"), nullptr);
  EXPECT_EQ(record.capacity, 0x1FFFFEu);
  SSAStrFree(&record);
}

TEST(GrowString, FailedGrowthLeavesTheOldText) {
  SSAStr narrow = Holding(8, "abc");
  astring* const text = narrow.text;
  astring* result = nullptr;
  {
    const FailNthAllocation fault(1);
    result = SSAStrCatAStr(&narrow, "0123456789");
  }
  EXPECT_EQ(result, text);
  EXPECT_STREQ(text, "abc");
  EXPECT_EQ(narrow.length, 3u);
  EXPECT_EQ(narrow.capacity, 8u);
  SSAStrFree(&narrow);

  SSUStr wide = HoldingWide(8, u"abc");
  ustring* const units = wide.text;
  ustring* wideResult = nullptr;
  {
    const FailNthAllocation fault(1);
    wideResult = SSUStrCatUStr(&wide, Units(u"d"));
  }
  EXPECT_EQ(wideResult, units);
  EXPECT_EQ(Wide(wide), u"abc");
  EXPECT_EQ(wide.capacity, 8u);
  SSUStrFree(&wide);
}

TEST(GrowString, SizesBeyond32BitsAreFailedGrowth) {
  astring text[] = "abc";
  SSAStr narrow = {text, 4, 0xFFFFFFFF};
  EXPECT_EQ(SSAStrCatAStr(&narrow, "d"), text);
  EXPECT_EQ(narrow.length, 0xFFFFFFFFu);
  EXPECT_STREQ(text, "abc");

  ustring units[] = {'a', 0};
  SSUStr wide = {units, 4, 0x7FFFFFFF};
  EXPECT_EQ(SSUStrCatUStr(&wide, Units(u"b")), units);
  EXPECT_EQ(wide.length, 0x7FFFFFFFu);
  EXPECT_EQ(units[0], 'a');
}

// 3 characters, 4 more and the NUL fill 8 bytes.
TEST(GrowString, RoomIsTakenWithinTheBlockAsLongAsTheTerminatorFits) {
  SSAStr record = {};
  ASSERT_NE(SSAStrAlloc(&record, 8), nullptr);
  ASSERT_NE(SSAStrCatAStr(&record, "abc"), nullptr);
  const astring* const block = record.text;
  EXPECT_EQ(SSAStrMakeRoom(&record, 4, nullptr), block + 3);
  EXPECT_EQ(record.capacity, 8u);
  EXPECT_EQ(record.length, 3u);
  SSAStrFree(&record);
}

TEST(GrowString, RoomForOneCharacterMoreGrowsTheBlockAndHandsOverTheOldOne) {
  (void)mallopt(M_PERTURB, 0x5A);  // the heap gives no zeros of itself
  SSAStr record = {};
  ASSERT_NE(SSAStrAlloc(&record, 8), nullptr);
  ASSERT_NE(SSAStrCatAStr(&record, "abc"), nullptr);
  const astring* const block = record.text;
  HeapArray<astring> old;
  const astring* const room = SSAStrMakeRoom(&record, 5, &old);
  EXPECT_EQ(old.get(), block);
  EXPECT_NE(record.text, block);
  EXPECT_EQ(room, record.text + 3);
  EXPECT_STREQ(record.text, "abc");
  EXPECT_EQ(record.capacity, 16u);
  EXPECT_EQ(record.length, 3u);
  SSAStrFree(&record);
}

TEST(GrowString, WithoutMemoryForANewBlockTheOldOneStays) {
  SSAStr record = Holding(8, "abc");
  astring* const block = record.text;
  HeapArray<astring> old;
  {
    const FailNthAllocation fault(1);
    EXPECT_EQ(SSAStrMakeRoom(&record, 5, &old), nullptr);
  }
  EXPECT_EQ(old, nullptr);
  EXPECT_EQ(record.text, block);
  EXPECT_STREQ(block, "abc");
  SSAStrFree(&record);
}

TEST(GrowString, RoomBeyond32BitsIsRefused) {
  astring text[] = "abc";
  SSAStr record = {text, 4, 0xFFFFFFFF};
  HeapArray<astring> old;
  EXPECT_EQ(SSAStrMakeRoom(&record, 1, &old), nullptr);
  EXPECT_EQ(record.text, text);
  EXPECT_EQ(old, nullptr);
}

// A quarter more than 0xF0000000 bytes would be beyond 32 bits.
TEST(GrowString, ACapacityGrowsTo32BitsAtMost) {
  astring text[] = "abc";
  SSAStr record = {text, 0xF0000000, 0xF0000000};
  const FailNthAllocation fault(1);
  EXPECT_EQ(SSAStrCatAStr(&record, "d"), text);
  EXPECT_EQ(test::LastAllocationSize(), 0xFFFFFFFFu);
  EXPECT_EQ(record.capacity, 0xF0000000u);
}

TEST(GrowString, OwnTextIsAppendedAsIfCopiedFirst) {
  SSAStr moved = Holding(6, "abcde");
  EXPECT_EQ(SSAStrCatAStr(&moved, moved.text + 2), moved.text);
  EXPECT_STREQ(moved.text, "abcdecde");
  EXPECT_EQ(moved.capacity, 12u);
  SSAStrFree(&moved);

  SSAStr inPlace = Holding(16, "abcde");
  EXPECT_EQ(SSAStrCatAStr(&inPlace, inPlace.text), inPlace.text);
  EXPECT_STREQ(inPlace.text, "abcdeabcde");
  SSAStrFree(&inPlace);

  SSUStr wide = HoldingWide(8, u"abc");
  EXPECT_EQ(SSUStrCatUStr(&wide, wide.text), wide.text);
  EXPECT_EQ(Wide(wide), u"abcabc");
  SSUStrFree(&wide);
}

TEST(GrowText, CharactersOfAKnownCountNeedNoTerminator) {
  GrowText text(4);
  ASSERT_TRUE(text);
  GuardBuffer<astring> added(3);
  memcpy(added.data(), "bcd", 3);
  EXPECT_TRUE(text.Cat("a"));
  EXPECT_TRUE(text.Cat({added.data(), 3}));
  EXPECT_TRUE(text.Cat({added.data(), 0}));
  EXPECT_STREQ(text.Text(), "abcd");
  EXPECT_EQ(text.Length(), 4u);
}

TEST(GrowText, AnAppendThatCannotGrowIsFalseAndLeavesTheText) {
  GrowText text(4);
  ASSERT_TRUE(text.Cat("abc"));
  bool appended = true;
  {
    const FailNthAllocation fail(1);
    appended = text.Cat("d");
  }
  EXPECT_FALSE(appended);
  EXPECT_STREQ(text.Text(), "abc");
  EXPECT_EQ(text.Length(), 3u);
}

TEST(GrowText, WithoutMemoryItIsEmptyAndTakesNothing) {
  const FailNthAllocation fail(1);
  GrowText text(4);
  EXPECT_FALSE(text);
  EXPECT_FALSE(text.Cat(""));
  EXPECT_EQ(text.Text(), nullptr);
}

TEST(GrowString, SixteenBitTextIsAppendedAsUtf8) {
  SSAStr record = Holding(4, "a");
  EXPECT_EQ(SSAStrCatUStr(&record, Units(u"b\u00E9\u20AC")), record.text);
  EXPECT_STREQ(record.text, "ab\xC3\xA9\xE2\x82\xAC");
  EXPECT_EQ(record.length, 7u);
  EXPECT_EQ(SSAStrCatUStr(&record, Units(u"")), record.text);
  EXPECT_EQ(record.length, 7u);
  SSAStrFree(&record);
}

TEST(GrowString, Utf8TextIsAppendedAsSixteenBitUnits) {
  SSUStr record = HoldingWide(4, u"a");
  EXPECT_EQ(SSUStrCatAStr(&record, "b\xC3\xA9\xE2\x82\xAC"), record.text);
  EXPECT_EQ(Wide(record), u"ab\u00E9\u20AC");
  EXPECT_EQ(SSUStrCatAStr(&record, ""), record.text);
  EXPECT_EQ(record.length, 4u);
  SSUStrFree(&record);
}

TEST(GrowString, TextThatCannotBeConvertedLeavesTheRecord) {
  const ustring unpaired[] = {0xD800, 'a', 0};
  SSAStr narrow = Holding(8, "abc");
  EXPECT_EQ(SSAStrCatUStr(&narrow, unpaired), narrow.text);
  EXPECT_STREQ(narrow.text, "abc");
  EXPECT_EQ(narrow.length, 3u);
  SSAStrFree(&narrow);

  SSUStr wide = HoldingWide(8, u"abc");
  EXPECT_EQ(SSUStrCatAStr(&wide, "d\xFF"), wide.text);
  EXPECT_EQ(Wide(wide), u"abc");
  EXPECT_EQ(wide.length, 3u);
  SSUStrFree(&wide);
}

TEST(GrowString, CharacterThatDecodesToZeroEndsTheAppend) {
  SSUStr record = HoldingWide(8, u"a");
  EXPECT_EQ(SSUStrCatAStr(&record, "b\xC0\x80z"), record.text);
  EXPECT_EQ(Wide(record), u"ab");
  SSUStrFree(&record);
}

TEST(GrowString, ConversionWithoutItsBlockGivesNull) {
  SSAStr narrow = Holding(8, "abc");
  SSUStr wide = HoldingWide(8, u"abc");
  astring* text = narrow.text;
  ustring* units = wide.text;
  {
    const FailNthAllocation fault(1);
    text = SSAStrCatUStr(&narrow, Units(u"d"));
  }
  {
    const FailNthAllocation fault(1);
    units = SSUStrCatAStr(&wide, "d");
  }
  EXPECT_EQ(text, nullptr);
  EXPECT_STREQ(narrow.text, "abc");
  EXPECT_EQ(narrow.length, 3u);
  EXPECT_EQ(units, nullptr);
  EXPECT_EQ(Wide(wide), u"abc");
  SSAStrFree(&narrow);
  SSUStrFree(&wide);
}

TEST(GrowString, ConversionThatNeeds4GiBGivesNull) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> text((u64{1} << 31) - 1, 'a');
  SSUStr record = HoldingWide(8, u"abc");
  const FailNthAllocation fault(1);
  EXPECT_EQ(SSUStrCatAStr(&record, text.text()), nullptr);  // (2^31 - 1) x 2 + 2 bytes
  EXPECT_FALSE(FailNthAllocation::Fired()) << "nothing is tried to be allocated";
  EXPECT_EQ(Wide(record), u"abc");
  SSUStrFree(&record);
}

TEST(GrowString, ConvertedTextThatCannotGrowTheRecordGivesTheOldText) {
  SSAStr narrow = Holding(4, "abc");
  SSUStr wide = HoldingWide(8, u"abc");
  astring* text = nullptr;
  ustring* units = nullptr;
  {
    const FailNthAllocation fault(2);
    text = SSAStrCatUStr(&narrow, Units(u"d"));
  }
  {
    const FailNthAllocation fault(2);
    units = SSUStrCatAStr(&wide, "d");
  }
  EXPECT_EQ(text, narrow.text);
  EXPECT_STREQ(narrow.text, "abc");
  EXPECT_EQ(units, wide.text);
  EXPECT_EQ(Wide(wide), u"abc");
  SSAStrFree(&narrow);
  SSUStrFree(&wide);
}

TEST(GrowString, ExportedCallsReachTheSameRecords) {
  SSAStr narrow = {};
  SSUStr wide = {};
  ASSERT_NE(PXTSSAStrAlloc(&narrow, 4), nullptr);
  ASSERT_NE(PXTSSUStrAlloc(&wide, 4), nullptr);
  EXPECT_EQ(PXTSSAStrCatAStr(&narrow, "a"), narrow.text);
  EXPECT_EQ(PXTSSAStrCatUStr(&narrow, Units(u"b")), narrow.text);
  EXPECT_EQ(PXTSSUStrCatUStr(&wide, Units(u"c")), wide.text);
  EXPECT_EQ(PXTSSUStrCatAStr(&wide, "d"), wide.text);
  EXPECT_STREQ(narrow.text, "ab");
  EXPECT_EQ(Wide(wide), u"cd");
  PXTSSAStrFree(&narrow);
  PXTSSUStrFree(&wide);
  EXPECT_EQ(narrow.text, nullptr);
  EXPECT_EQ(wide.text, nullptr);
}

}  // namespace
}  // namespace qvx
