// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/uni_number.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <string_view>
#include <vector>

#include "qvxcs/number_text.h"

#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "support/locale_guard.h"
#include "support/long_text.h"

namespace {

using qvx::test::GuardBuffer;

std::vector<ustring> Units(std::string_view text) {
  std::vector<ustring> units(text.begin(), text.end());
  units.push_back(0);
  return units;
}

std::string Narrow(const ustring* units) {
  std::string text;
  for (; *units != 0; ++units)
    text.push_back(static_cast<char>(*units));
  return text;
}

TEST(UniNumber, TextIsReadAsThe8BitConversionsReadIt) {
  const qvx::test::LocaleGuard locale("C");
  EXPECT_EQ(qvx::UniToSigned32(Units(" -42x").data()), -42);
  EXPECT_EQ(qvx::UniToUnSigned32(Units("+42").data()), 42u);
  EXPECT_EQ(qvx::UniToUnSigned32(Units("-1").data()), 0xFFFFFFFFu);
  EXPECT_EQ(qvx::UniToSigned64(Units("-9223372036854775808").data()), INT64_MIN);
  EXPECT_EQ(qvx::UniToUnSigned64(Units("18446744073709551615").data()), UINT64_MAX);
  EXPECT_EQ(qvx::UniToUnSigned64(Units("-1").data()), 0u);
  EXPECT_EQ(qvx::UniToDouble(Units("-2.5e1").data()), -25.0);
}

TEST(UniNumber, NumbersBeyond32BitsKeepTheirLow32Bits) {
  EXPECT_EQ(qvx::UniToSigned32(Units("4294967301").data()), 5);
  EXPECT_EQ(qvx::UniToSigned32(Units("2147483648").data()), INT32_MIN);
  EXPECT_EQ(qvx::UniToUnSigned32(Units("-4294967291").data()), 5u);
}

void ExpectZeroOf(const ustring* text) {
  EXPECT_EQ(qvx::UniToSigned32(text), 0);
  EXPECT_EQ(qvx::UniToUnSigned32(text), 0u);
  EXPECT_EQ(qvx::UniToSigned64(text), 0);
  EXPECT_EQ(qvx::UniToUnSigned64(text), 0u);
  EXPECT_EQ(qvx::UniToDouble(text), 0.0);
}

TEST(UniNumber, NullEmptyAndOtherTextsAreZero) {
  ExpectZeroOf(nullptr);
  ExpectZeroOf(Units("").data());
  ExpectZeroOf(Units("x1").data());
  ExpectZeroOf(Units("-").data());
}

TEST(UniNumber, TextThatTheLocaleCannotHoldIsZero) {
  const qvx::test::LocaleGuard locale("C");
  const ustring text[] = {'1', '2', 0x20AC, 0};
  ExpectZeroOf(text);
}

TEST(UniNumber, WhatFitsIsReadAndAFaultBehindItIsNotSeen) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  // Four units have room for five bytes: the euro sign takes the last three, and the lone surrogate
  // after it, which cannot be converted, is never reached.
  const ustring beyond[] = {'1', '2', 0x20AC, 0xD800, 0};
  EXPECT_EQ(qvx::UniToSigned32(beyond), 12);
  EXPECT_EQ(qvx::UniToDouble(beyond), 12.0);
  const ustring within[] = {'1', '2', 0xD800, 0};
  ExpectZeroOf(within);
}

TEST(UniNumber, WithoutMemoryTextIsZero) {
  const std::vector<ustring> text = Units("42");
  const u32 met = qvx::test::FailEachAllocation([&] { return qvx::UniToSigned32(text.data()); },
                                                [](s32 value) { EXPECT_EQ(value, 0); });
  EXPECT_GE(met, 1u);
  EXPECT_EQ(qvx::UniToSigned32(text.data()), 42);
}

// 1.50 with its terminator takes 10 bytes.
struct CutCase {
  u32 size;
  const char* stored;
  u32 sizeAfter;
};

TEST(UniNumber, DoubleTextFitsOrIsCutWithinTheStatedBytes) {
  const qvx::test::LocaleGuard locale("C");
  for (const CutCase& each :
       {CutCase{10, "1.50", 10}, CutCase{11, "1.50", 10}, CutCase{9, "1.5", 8},
        CutCase{8, "1.5", 8}, CutCase{7, "1.", 6}, CutCase{6, "1.", 6}, CutCase{5, "1", 4},
        CutCase{4, "1", 4}, CutCase{3, "", 2}, CutCase{2, "", 2}}) {
    GuardBuffer<ustring> out(each.size / 2);
    u32 size = each.size;
    EXPECT_EQ(qvx::UniDoubleToStr(out.data(), &size, 1.5, 2), 0);
    EXPECT_EQ(size, each.sizeAfter) << each.size;
    EXPECT_EQ(Narrow(out.data()), each.stored) << each.size;
    EXPECT_TRUE(out.FrontUntouched());
    EXPECT_TRUE(out.UntouchedFrom(each.sizeAfter / 2)) << each.size;
  }
}

TEST(UniNumber, RoomBehindADoubleTextIsLeft) {
  const qvx::test::LocaleGuard locale("C");
  GuardBuffer<ustring> out(64);
  u32 size = 128;
  EXPECT_EQ(qvx::UniDoubleToStr(out.data(), &size, -1234.5678, 3), 0);
  EXPECT_EQ(size, 20u);
  EXPECT_EQ(Narrow(out.data()), "-1234.568");
  EXPECT_TRUE(out.UntouchedFrom(10));
}

TEST(UniNumber, SizesZeroAndOneAndANullOutputOnlyMeasure) {
  for (const u32 given : {0u, 1u}) {
    GuardBuffer<ustring> out(1);
    u32 size = given;
    EXPECT_EQ(qvx::UniDoubleToStr(out.data(), &size, 1.5, 2), 0);
    EXPECT_EQ(size, 10u);
    EXPECT_TRUE(out.UntouchedFrom(0));
    size = given;
    EXPECT_EQ(qvx::UniUnSigned32ToStr(out.data(), &size, 7, 2), 0);
    EXPECT_EQ(size, 2u);
    EXPECT_TRUE(out.UntouchedFrom(0));
  }
  u32 size = 4;
  EXPECT_EQ(qvx::UniDoubleToStr(nullptr, &size, 1.5, 2), 0);
  EXPECT_EQ(size, 10u);
  EXPECT_EQ(qvx::UniSigned32ToStr(nullptr, &size, -1234, 10), 0);
  EXPECT_EQ(size, 8u);
}

TEST(UniNumber, PrecisionZeroHasNoPoint) {
  ustring out[8];
  u32 size = sizeof(out);
  EXPECT_EQ(qvx::UniDoubleToStr(out, &size, 2.75, 0), 0);
  EXPECT_EQ(Narrow(out), "3");
}

TEST(UniNumber, TheGreatestDoublesHaveRoom) {
  u32 size = 0;
  EXPECT_EQ(qvx::UniDoubleToStr(nullptr, &size, 1.7e308, 20), 0);
  EXPECT_EQ(size, 662u);  // 309 digits, the point and 20 more, and the terminator
  GuardBuffer<ustring> out(331);
  EXPECT_EQ(qvx::UniDoubleToStr(out.data(), &size, 1.7e308, 20), 0);
  EXPECT_EQ(size, 662u);
  EXPECT_EQ(Narrow(out.data()).size(), 330u);
  EXPECT_EQ(Narrow(out.data()).substr(0, 3), "169");  // the nearest double is just below 1.7e308
}

TEST(UniNumber, ANegativePrecisionAndANullSizeChangeNothing) {
  GuardBuffer<ustring> out(8);
  u32 size = 16;
  EXPECT_EQ(qvx::UniDoubleToStr(out.data(), &size, 1.5, -1), -1);
  EXPECT_EQ(qvx::UniDoubleToStr(out.data(), &size, 1.5, INT32_MIN), -1);
  EXPECT_EQ(size, 16u);
  EXPECT_EQ(qvx::UniDoubleToStr(out.data(), nullptr, 1.5, 2), -1);
  EXPECT_EQ(qvx::UniUnSigned32ToStr(out.data(), nullptr, 1, 10), -1);
  EXPECT_EQ(qvx::UniSigned32ToStr(out.data(), nullptr, 1, 10), -1);
  EXPECT_TRUE(out.UntouchedFrom(0));
}

TEST(UniNumber, WithoutMemoryOutputAndSizeAreUntouched) {
  const qvx::test::LocaleGuard locale("C");
  GuardBuffer<ustring> out(8);
  u32 size = 0;
  const auto convert = [&] {
    size = 16;
    return qvx::UniDoubleToStr(out.data(), &size, 1.5, 2);
  };
  const u32 met = qvx::test::FailEachAllocation(convert, [&](s32 result) {
    EXPECT_EQ(result, -1);
    EXPECT_EQ(size, 16u);
    EXPECT_TRUE(out.UntouchedFrom(0));
  });
  EXPECT_GE(met, 1u);
  EXPECT_EQ(Narrow(out.data()), "1.50");
}

TEST(UniNumber, TextsOf32BitNumbersKeepThreeCharacters) {
  const struct {
    u32 value;
    s32 base;
    const char* text;
  } cases[] = {
      {1234, 10, "123"},
      {65535, 16, "fff"},
      {1234, 16, "4d2"},
      {512, 8, "100"},
      {7, 10, "7"},
      {0xFFFFFFFF, 10, "-1"},
      {0x80000000, 10, "-21"},
      {0, 10, "0"},
      {42, 5, "42"},
      {7, 2, ""},
      {0, 2, ""},
  };
  for (const auto& each : cases) {
    const u32 needed = static_cast<u32>(std::string(each.text).size()) * 2 + 2;
    for (const bool isSigned : {false, true}) {
      GuardBuffer<ustring> out(needed / 2);
      u32 size = needed;
      EXPECT_EQ(isSigned ? qvx::UniSigned32ToStr(out.data(), &size, static_cast<s32>(each.value),
                                                 each.base)
                         : qvx::UniUnSigned32ToStr(out.data(), &size, each.value, each.base),
                0);
      EXPECT_EQ(size, needed);
      EXPECT_EQ(Narrow(out.data()), each.text);
    }
  }
}

TEST(UniNumber, TextsOf32BitNumbersAreCutWithinTheStatedBytes) {
  for (const CutCase& each : {CutCase{7, "12", 6}, CutCase{6, "12", 6}, CutCase{5, "1", 4},
                              CutCase{4, "1", 4}, CutCase{3, "", 2}, CutCase{2, "", 2}}) {
    GuardBuffer<ustring> out(each.size / 2);
    u32 size = each.size;
    EXPECT_EQ(qvx::UniUnSigned32ToStr(out.data(), &size, 1234, 10), 0);
    EXPECT_EQ(size, each.sizeAfter) << each.size;
    EXPECT_EQ(Narrow(out.data()), each.stored) << each.size;
    EXPECT_TRUE(out.UntouchedFrom(each.sizeAfter / 2));
  }
}

TEST(UniNumber, ExportedConversionsGiveTheSameAnswers) {
  const qvx::test::LocaleGuard locale("C");
  const std::vector<ustring> text = Units("-3");
  EXPECT_EQ(PXTUniToSigned32(text.data()), -3);
  EXPECT_EQ(PXTUniToUnSigned32(text.data()), 0xFFFFFFFDu);
  EXPECT_EQ(PXTUniToSigned64(text.data()), -3);
  EXPECT_EQ(PXTUniToUnSigned64(text.data()), 0u);
  EXPECT_EQ(PXTUniToDouble(text.data()), -3.0);
  ustring out[16];
  u32 size = sizeof(out);
  EXPECT_EQ(PXTUniDoubleToStr(out, &size, 0.5, 1), 0);
  EXPECT_EQ(Narrow(out), "0.5");
  EXPECT_EQ(PXTUniUnSigned32ToStr(out, &size, 12, 10), 0);
  EXPECT_EQ(Narrow(out), "12");
  EXPECT_EQ(PXTUniSigned32ToStr(out, &size, -1, 10), 0);
  EXPECT_EQ(Narrow(out), "-1");
}

TEST(UniNumber, ATextWhoseCountIsBeyond32BitsIsZeroWithoutAnAllocation) {
  if (!qvx::test::kHasLongTexts) GTEST_SKIP();
  const qvx::test::LongText<ustring> text((u64{1} << 32) - 1, '1');  // and one byte more of room
  const qvx::test::FailNthAllocation fault(1);
  EXPECT_EQ(qvx::UniToSigned32(text.text()), 0);
  EXPECT_FALSE(qvx::test::FailNthAllocation::Fired());
}

}  // namespace
