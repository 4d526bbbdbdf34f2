// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/char_class.h"

#include <gtest/gtest.h>

#include "qvxcs/number_text.h"
#include "qvxcs/status.h"

namespace {

constexpr u32 kYes = 0;
constexpr u32 kNo = 0x010F;

TEST(CharClass, NullAndEmptyTextsFailEveryTest) {
  for (const astring* text : {static_cast<const astring*>(nullptr), ""}) {
    EXPECT_EQ(qvx::IsASCIIIntNum(text, 0), kNo);
    EXPECT_EQ(qvx::IsASCIIIntNum(text, 1), kNo);
    EXPECT_EQ(qvx::IsASCIIHexNum(text, 0), kNo);
    EXPECT_EQ(qvx::IsASCIIHexNum(text, 1), kNo);
    EXPECT_EQ(qvx::IsASCIIOctalNum(text), kNo);
    EXPECT_EQ(qvx::IsASCIIAlpha(text), kNo);
    EXPECT_EQ(qvx::IsASCIIAlphaNumeric(text), kNo);
    EXPECT_EQ(qvx::IsASCIIAlphaNumericPlus(text, nullptr), kNo);
    EXPECT_EQ(qvx::IsASCIIAlphaNumericPlus(text, "-"), kNo);
  }
}

TEST(CharClass, IntegersAreDigitsBehindOneSignWhereAllowed) {
  const struct {
    const astring* text;
    u32 allowSign;
    u32 expected;
  } cases[] = {
      {"0123456789", 0, kYes}, {"0123456789", 1, kYes}, {"-5", 0, kNo},  {"+5", 0, kNo},
      {"-5", 1, kYes},         {"+5", 1, kYes},         {"+5", 2, kYes}, {"-5", 0x100, kYes},
      {"--5", 1, kNo},         {"5-", 1, kNo},          {" 5", 1, kNo},  {"5 ", 1, kNo},
      {"5/", 1, kNo},          {"5:", 1, kNo},          {"1.0", 1, kNo}, {"-", 0, kNo},
      {"\xB2", 1, kNo},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(qvx::IsASCIIIntNum(each.text, each.allowSign), each.expected) << each.text;
  }
}

TEST(CharClass, ALoneSignIsAnIntegerWhereSignsAreAllowed) {
  EXPECT_EQ(qvx::IsASCIIIntNum("-", 1), kYes);
  EXPECT_EQ(qvx::IsASCIIIntNum("+", 1), kYes);
}

TEST(CharClass, HexNumbersHaveDigitsOfTheCaseAskedFor) {
  const struct {
    const astring* text;
    u32 lower;
    u32 upper;
  } cases[] = {
      {"0123456789", kYes, kYes},
      {"abcdef", kYes, kNo},
      {"ABCDEF", kNo, kYes},
      {"0x1f", kYes, kNo},
      {"0x1F", kNo, kYes},
      {"0X1F", kNo, kNo},
      {"g", kNo, kNo},
      {"G", kNo, kNo},
      {"`", kNo, kNo},
      {"@", kNo, kNo},
      {"-1", kNo, kNo},
      {"x1", kNo, kNo},
      {"0x0x1", kNo, kNo},
      {"10x", kNo, kNo},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(qvx::IsASCIIHexNum(each.text, 1), each.lower) << each.text;
    EXPECT_EQ(qvx::IsASCIIHexNum(each.text, 7), each.lower) << each.text;
    EXPECT_EQ(qvx::IsASCIIHexNum(each.text, 0), each.upper) << each.text;
  }
}

TEST(CharClass, TheHexPrefixAloneIsANumber) {
  EXPECT_EQ(qvx::IsASCIIHexNum("0x", 0), kYes);
  EXPECT_EQ(qvx::IsASCIIHexNum("0x", 1), kYes);
  EXPECT_EQ(qvx::IsASCIIHexNum("0X", 1), kNo);
}

TEST(CharClass, HexDigitsOfMixedCaseFailBothWays) {
  EXPECT_EQ(qvx::IsASCIIHexNum("0xAb", 0), kNo);
  EXPECT_EQ(qvx::IsASCIIHexNum("0xAb", 1), kNo);
}

TEST(CharClass, OctalNumbersHaveDigitsUpToSeven) {
  EXPECT_EQ(qvx::IsASCIIOctalNum("01234567"), kYes);
  EXPECT_EQ(qvx::IsASCIIOctalNum("8"), kNo);
  EXPECT_EQ(qvx::IsASCIIOctalNum("/"), kNo);
  EXPECT_EQ(qvx::IsASCIIOctalNum("-1"), kNo);
}

TEST(CharClass, LettersAreThoseOfAscii) {
  EXPECT_EQ(qvx::IsASCIIAlpha("azAZ"), kYes);
  for (const astring* text : {"a1", "@", "[", "`", "{", "a b", "\xE9"}) {
    EXPECT_EQ(qvx::IsASCIIAlpha(text), kNo) << text;
  }
}

TEST(CharClass, LettersAndDigitsAreThoseOfAscii) {
  EXPECT_EQ(qvx::IsASCIIAlphaNumeric("azAZ09"), kYes);
  for (const astring* text : {"a-1", "/", ":", "a b", "\xE9"}) {
    EXPECT_EQ(qvx::IsASCIIAlphaNumeric(text), kNo) << text;
  }
}

TEST(CharClass, ExtraCharactersAreAcceptedBesides) {
  EXPECT_EQ(qvx::IsASCIIAlphaNumericPlus("a-1_Z", "_-"), kYes);
  EXPECT_EQ(qvx::IsASCIIAlphaNumericPlus("-", "-"), kYes);
  EXPECT_EQ(qvx::IsASCIIAlphaNumericPlus("a-1.", "_-"), kNo);
  EXPECT_EQ(qvx::IsASCIIAlphaNumericPlus("\xE9", "\xE9"), kYes);
}

TEST(CharClass, NoExtraCharactersAcceptNoneBesides) {
  for (const astring* extra : {static_cast<const astring*>(nullptr), ""}) {
    EXPECT_EQ(qvx::IsASCIIAlphaNumericPlus("aZ9", extra), kYes);
    EXPECT_EQ(qvx::IsASCIIAlphaNumericPlus("aZ-9", extra), kNo);
  }
}

TEST(CharClass, ExportedTestsGiveTheSameAnswers) {
  EXPECT_EQ(PXTIsASCIIIntNum("-1", 1), kYes);
  EXPECT_EQ(PXTIsASCIIIntNum("-1", 0), kNo);
  EXPECT_EQ(PXTIsASCIIHexNum("0xab", 1), kYes);
  EXPECT_EQ(PXTIsASCIIHexNum("0xab", 0), kNo);
  EXPECT_EQ(PXTIsASCIIOctalNum("8"), kNo);
  EXPECT_EQ(PXTIsASCIIAlpha("a1"), kNo);
  EXPECT_EQ(PXTIsASCIIAlphaNumeric("a1"), kYes);
  EXPECT_EQ(PXTIsASCIIAlphaNumericPlus("a-1", "-"), kYes);
}

}  // namespace
