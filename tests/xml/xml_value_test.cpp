// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_value.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "qvxcs/status.h"
#include "qvxcs/xml_buffer.h"

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
std::string Text(s32 code, T value) {
  return TextOf(value, [&type = ValueTypeOf(code)](astring* out, const void* from) {
    return type.put(out, type, from);
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
      {QVX_TYPE_ASTRING, ValueForm::kText},
      {QVX_TYPE_USTRING, ValueForm::kWideText},
      {QVX_TYPE_BOOLN, ValueForm::kWhole},
      {QVX_TYPE_U32, ValueForm::kNumber},
      {QVX_TYPE_S32, ValueForm::kNumber},
      {QVX_TYPE_U64, ValueForm::kPieces},
      {QVX_TYPE_S64, ValueForm::kPieces},
      {QVX_TYPE_D64, ValueForm::kPieces},
      {QVX_TYPE_TIME, ValueForm::kTime},
      {QVX_TYPE_SSASTR, ValueForm::kTextRecord},
      {QVX_TYPE_SSUSTR, ValueForm::kWideTextRecord},
      {QVX_TYPE_BEGIN, ValueForm::kBeginTag},
      {QVX_TYPE_END, ValueForm::kEndTag},
      {QVX_TYPE_U8, ValueForm::kNumber},
      {QVX_TYPE_S8, ValueForm::kNumber},
      {QVX_TYPE_U16, ValueForm::kNumber},
      {QVX_TYPE_S16, ValueForm::kNumber},
      {QVX_TYPE_TYPED_VALUE, ValueForm::kTypedValue},
      {QVX_TYPE_XML_ASTRING, ValueForm::kEscapedText},
      {QVX_TYPE_XML_USTRING, ValueForm::kEscapedWideText},
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

// A type is written and read back by its one row: what `put` writes, `take` reads into the same
// bytes, and into no others.
TEST(XmlValue, WhatATypeWritesItReadsBack) {
  const u8 bytes[] = {0xD6, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};  // -42, and its narrow forms
  for (const s32 code : {QVX_TYPE_U8, QVX_TYPE_S8, QVX_TYPE_U16, QVX_TYPE_S16, QVX_TYPE_U32,
                         QVX_TYPE_S32, QVX_TYPE_U64, QVX_TYPE_S64}) {
    const ValueType& type = ValueTypeOf(code);
    astring text[kValueTextRoom];
    (void)type.put(text, type, bytes);
    GuardBuffer<u8> back(type.bytes);
    EXPECT_EQ(type.take(text, type, back.data()), SM_STATUS_SUCCESS) << code;
    EXPECT_EQ(memcmp(back.data(), bytes, type.bytes), 0) << code;
    EXPECT_TRUE(back.FrontUntouched()) << code;
  }
}

TEST(XmlValue, NumbersAreDecimalOverTheirWholeRange) {
  EXPECT_EQ(Text(QVX_TYPE_U32, u32{0}), "0");
  EXPECT_EQ(Text(QVX_TYPE_U32, u32{0xFFFFFFFF}), "4294967295");
  EXPECT_EQ(Text(QVX_TYPE_S32, s32{INT32_MAX}), "2147483647");
  EXPECT_EQ(Text(QVX_TYPE_S32, s32{INT32_MIN}), "-2147483648");
  EXPECT_EQ(Text(QVX_TYPE_U64, u64{UINT64_MAX}), "18446744073709551615");
  EXPECT_EQ(Text(QVX_TYPE_U64, u64{1000}), "1000");
  EXPECT_EQ(Text(QVX_TYPE_S64, s64{INT64_MAX}), "9223372036854775807");
  EXPECT_EQ(Text(QVX_TYPE_S64, s64{INT64_MIN}), "-9223372036854775808");
  EXPECT_EQ(Text(QVX_TYPE_S64, s64{-10}), "-10");
  EXPECT_EQ(Text(QVX_TYPE_U8, u8{255}), "255");
  EXPECT_EQ(Text(QVX_TYPE_S8, s8{-128}), "-128");
  EXPECT_EQ(Text(QVX_TYPE_S8, s8{127}), "127");
  EXPECT_EQ(Text(QVX_TYPE_U16, u16{65535}), "65535");
  EXPECT_EQ(Text(QVX_TYPE_S16, s16{-32768}), "-32768");
  EXPECT_EQ(Text(QVX_TYPE_S16, s16{32767}), "32767");
}

TEST(XmlValue, HexadecimalIsLowerCaseWithAPrefixExceptForZero) {
  EXPECT_EQ(Hexadecimal(QVX_TYPE_U32, u32{0}), "0");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_U32, u32{255}), "0xff");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_U32, u32{0x12ABCDEF}), "0x12abcdef");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_U8, u8{255}), "0xff");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_U16, u16{0x100}), "0x100");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_S8, s8{0}), "0");
}

TEST(XmlValue, HexadecimalExtendsTheSignTo32Bits) {
  EXPECT_EQ(Hexadecimal(QVX_TYPE_S8, s8{-1}), "0xffffffff");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_S16, s16{-2}), "0xfffffffe");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_S32, s32{-1}), "0xffffffff");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_S32, s32{INT32_MIN}), "0x80000000");
  EXPECT_EQ(Hexadecimal(QVX_TYPE_S8, s8{127}), "0x7f");
}

TEST(XmlValue, OnlyOneIsTrue) {
  EXPECT_EQ(Text(QVX_TYPE_BOOLN, booln{1}), "true");
  EXPECT_EQ(Text(QVX_TYPE_BOOLN, booln{0}), "false");
  EXPECT_EQ(Text(QVX_TYPE_BOOLN, booln{2}), "false");
  EXPECT_EQ(Text(QVX_TYPE_BOOLN, booln{0x101}), "false");
}

TEST(XmlValue, DoublesHaveEightPlaces) {
  EXPECT_EQ(Text(QVX_TYPE_D64, d64{0}), "0.00000000");
  EXPECT_EQ(Text(QVX_TYPE_D64, d64{1.5}), "1.50000000");
  EXPECT_EQ(Text(QVX_TYPE_D64, d64{-0.125}), "-0.12500000");
}

TEST(XmlValue, DoublesAreCutAtThirtyOneCharacters) {
  // 2 to the 73rd is 9444732965739290427392: 22 digits, point and 8 places are just 31.
  EXPECT_EQ(Text(QVX_TYPE_D64, d64{9444732965739290427392.0}), "9444732965739290427392.00000000");
  // 2 to the 80th has three digits more.
  EXPECT_EQ(Text(QVX_TYPE_D64, d64{1208925819614629174706176.0}),
            "1208925819614629174706176.00000");
  EXPECT_EQ(Text(QVX_TYPE_D64, d64{1e300}).size(), 31u);
}

TEST(XmlValue, TimesAreLocalTimes) {
  ASSERT_EQ(setenv("TZ", "UTC0", 1), 0);
  EXPECT_EQ(Text(QVX_TYPE_TIME, s32{1}), "Thu Jan  1 00:00:01 1970");
  EXPECT_EQ(Text(QVX_TYPE_TIME, s32{-1}), "Wed Dec 31 23:59:59 1969");
  ASSERT_EQ(setenv("TZ", "XXX-2", 1), 0);  // two hours east
  EXPECT_EQ(Text(QVX_TYPE_TIME, s32{INT32_MAX}), "Tue Jan 19 05:14:07 2038");
}

}  // namespace
}  // namespace qvx
