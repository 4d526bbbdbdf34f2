// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_value.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "support/guard_buffer.h"

namespace qvx {
namespace {

using test::GuardBuffer;

// The text that `put` makes of a value whose bytes end at an untouchable page, at an odd address
// where the width allows.
template <typename T, typename PutText>
std::string TextOf(T value, PutText put) {
  GuardBuffer<u8> exact(sizeof(value));
  memcpy(exact.data(), &value, sizeof(value));
  GuardBuffer<u8> shifted(sizeof(value) + 1);
  memcpy(shifted.data(), &value, sizeof(value));
  GuardBuffer<astring> out(kValueTextRoom);
  const u32 length = put(out.data(), exact.data());
  const std::string text(out.data());
  EXPECT_EQ(length, text.size());
  EXPECT_EQ(put(out.data(), shifted.data()), length);
  EXPECT_EQ(text, out.data());
  return text;
}

template <typename T>
std::string Decimal(s32 code, T value) {
  return TextOf(value, [code](astring* out, const void* from) {
    return PutDecimal(out, ValueTypeOf(code), from);
  });
}

template <typename T>
std::string Hexadecimal(s32 code, T value) {
  return TextOf(value, [code](astring* out, const void* from) {
    return PutHexadecimal(out, ValueTypeOf(code), from);
  });
}

TEST(XmlValue, EachCodeHasItsForm) {
  const struct {
    s32 code;
    ValueForm form;
  } rows[] = {
      {1, ValueForm::kText},
      {2, ValueForm::kWideText},
      {4, ValueForm::kBooln},
      {5, ValueForm::kNumber},
      {7, ValueForm::kNumber},
      {9, ValueForm::kLongNumber},
      {11, ValueForm::kLongNumber},
      {13, ValueForm::kDouble},
      {15, ValueForm::kTime},
      {16, ValueForm::kTextRecord},
      {17, ValueForm::kWideTextRecord},
      {18, ValueForm::kBeginTag},
      {19, ValueForm::kEndTag},
      {20, ValueForm::kNumber},
      {21, ValueForm::kNumber},
      {22, ValueForm::kNumber},
      {23, ValueForm::kNumber},
      {25, ValueForm::kTypedValue},
      {26, ValueForm::kEscapedText},
      {27, ValueForm::kEscapedWideText},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ValueTypeOf(row.code).form, row.form) << row.code;
  }
}

TEST(XmlValue, GapsInTheNumberingHaveNoForm) {
  for (const s32 code : {0, 3, 6, 8, 10, 12, 14, 24, 28, 99, -1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(ValueTypeOf(code).form, ValueForm::kNone) << code;
  }
}

TEST(XmlValue, NumbersAreDecimalOverTheirWholeRange) {
  EXPECT_EQ(Decimal(5, u32{0}), "0");
  EXPECT_EQ(Decimal(5, u32{0xFFFFFFFF}), "4294967295");
  EXPECT_EQ(Decimal(7, s32{INT32_MAX}), "2147483647");
  EXPECT_EQ(Decimal(7, s32{INT32_MIN}), "-2147483648");
  EXPECT_EQ(Decimal(9, u64{UINT64_MAX}), "18446744073709551615");
  EXPECT_EQ(Decimal(9, u64{1000}), "1000");
  EXPECT_EQ(Decimal(11, s64{INT64_MAX}), "9223372036854775807");
  EXPECT_EQ(Decimal(11, s64{INT64_MIN}), "-9223372036854775808");
  EXPECT_EQ(Decimal(11, s64{-10}), "-10");
  EXPECT_EQ(Decimal(20, u8{255}), "255");
  EXPECT_EQ(Decimal(21, s8{-128}), "-128");
  EXPECT_EQ(Decimal(21, s8{127}), "127");
  EXPECT_EQ(Decimal(22, u16{65535}), "65535");
  EXPECT_EQ(Decimal(23, s16{-32768}), "-32768");
  EXPECT_EQ(Decimal(23, s16{32767}), "32767");
}

TEST(XmlValue, HexadecimalIsLowerCaseWithAPrefixExceptForZero) {
  EXPECT_EQ(Hexadecimal(5, u32{0}), "0");
  EXPECT_EQ(Hexadecimal(5, u32{255}), "0xff");
  EXPECT_EQ(Hexadecimal(5, u32{0x12ABCDEF}), "0x12abcdef");
  EXPECT_EQ(Hexadecimal(20, u8{255}), "0xff");
  EXPECT_EQ(Hexadecimal(22, u16{0x100}), "0x100");
  EXPECT_EQ(Hexadecimal(21, s8{0}), "0");
}

TEST(XmlValue, HexadecimalExtendsTheSignTo32Bits) {
  EXPECT_EQ(Hexadecimal(21, s8{-1}), "0xffffffff");
  EXPECT_EQ(Hexadecimal(23, s16{-2}), "0xfffffffe");
  EXPECT_EQ(Hexadecimal(7, s32{-1}), "0xffffffff");
  EXPECT_EQ(Hexadecimal(7, s32{INT32_MIN}), "0x80000000");
  EXPECT_EQ(Hexadecimal(21, s8{127}), "0x7f");
}

TEST(XmlValue, OnlyOneIsTrue) {
  EXPECT_EQ(TextOf(booln{1}, PutBooln), "true");
  EXPECT_EQ(TextOf(booln{0}, PutBooln), "false");
  EXPECT_EQ(TextOf(booln{2}, PutBooln), "false");
  EXPECT_EQ(TextOf(booln{0x101}, PutBooln), "false");
}

TEST(XmlValue, DoublesHaveEightPlaces) {
  EXPECT_EQ(TextOf(d64{0}, PutDouble), "0.00000000");
  EXPECT_EQ(TextOf(d64{1.5}, PutDouble), "1.50000000");
  EXPECT_EQ(TextOf(d64{-0.125}, PutDouble), "-0.12500000");
}

TEST(XmlValue, DoublesAreCutAtThirtyOneCharacters) {
  // 2 to the 73rd is 9444732965739290427392: 22 digits, point and 8 places are just 31.
  EXPECT_EQ(TextOf(d64{9444732965739290427392.0}, PutDouble), "9444732965739290427392.00000000");
  // 2 to the 80th has three digits more.
  EXPECT_EQ(TextOf(d64{1208925819614629174706176.0}, PutDouble), "1208925819614629174706176.00000");
  EXPECT_EQ(TextOf(d64{1e300}, PutDouble).size(), 31u);
}

TEST(XmlValue, TimesAreLocalTimes) {
  ASSERT_EQ(setenv("TZ", "UTC0", 1), 0);
  EXPECT_EQ(TextOf(s32{1}, PutTime), "Thu Jan  1 00:00:01 1970");
  EXPECT_EQ(TextOf(s32{-1}, PutTime), "Wed Dec 31 23:59:59 1969");
  ASSERT_EQ(setenv("TZ", "XXX-2", 1), 0);  // two hours east
  EXPECT_EQ(TextOf(s32{INT32_MAX}, PutTime), "Tue Jan 19 05:14:07 2038");
}

}  // namespace
}  // namespace qvx
