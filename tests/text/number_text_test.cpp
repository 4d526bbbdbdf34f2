// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/number_text.h"

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <string>

#include "qvxcs/number_text.h"
#include "qvxcs/status.h"

#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "support/locale_guard.h"
#include "text/scan32.h"

namespace {

using qvx::test::GuardBuffer;

constexpr u32 kInvalid = SM_STATUS_INVALID_PARAMETER;
constexpr u32 kUnset = 0xDEAD;
const astring* const kNull = nullptr;

// What a writer leaves in room that is exact: one byte more would fault.
template <typename Writer>
std::string Written(size_t room, Writer write) {
  GuardBuffer<astring> buffer(room);
  write(buffer.data());
  EXPECT_TRUE(buffer.FrontUntouched());
  return buffer.data();
}

struct Case32 {
  const astring* text;
  u32 base;
  u32 value;
  u32 status;
};

void ExpectBoth32(std::initializer_list<Case32> cases) {
  for (const Case32& each : cases) {
    u32 status = kUnset;
    EXPECT_EQ(qvx::ASCIIToUnSigned32VT(each.text, each.base, &status), each.value) << each.text;
    EXPECT_EQ(status, each.status) << each.text;
    status = kUnset;
    EXPECT_EQ(static_cast<u32>(qvx::ASCIIToSigned32VT(each.text, each.base, &status)), each.value)
        << each.text;
    EXPECT_EQ(status, each.status) << each.text;
  }
}

TEST(NumberText, Plain32BitConversionsReadUpToTheFirstOtherCharacter) {
  const struct {
    const astring* text;
    s32 value;
  } cases[] = {
      {"0", 0},
      {"42", 42},
      {"+42", 42},
      {"-42", -42},
      {" \t\n\v\f\r7", 7},
      {"12abc", 12},
      {"010", 10},
      {"0x10", 0},
      {"1 2", 1},
      {"2147483647", 2147483647},
      {"-2147483648", INT32_MIN},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(qvx::ASCIIToSigned32(each.text), each.value) << each.text;
    EXPECT_EQ(qvx::ASCIIToUnSigned32(each.text), static_cast<u32>(each.value)) << each.text;
  }
}

TEST(NumberText, ATextWithoutANumberIsZero) {
  for (const astring* text : {kNull, "", "x", "-", "+", "- 1", "+-1", " "}) {
    EXPECT_EQ(qvx::ASCIIToSigned32(text), 0);
    EXPECT_EQ(qvx::ASCIIToUnSigned32(text), 0u);
    EXPECT_EQ(qvx::ASCIIToSigned64(text), 0);
    EXPECT_EQ(qvx::ASCIIToUnSigned64(text), 0u);
    EXPECT_EQ(qvx::ASCIIToDouble(text), 0.0);
  }
}

TEST(NumberText, NumbersBeyond32BitsKeepTheirLow32Bits) {
  EXPECT_EQ(qvx::ASCIIToUnSigned32("4294967295"), 0xFFFFFFFFu);
  EXPECT_EQ(qvx::ASCIIToUnSigned32("4294967296"), 0u);
  EXPECT_EQ(qvx::ASCIIToUnSigned32("4294967301"), 5u);
  EXPECT_EQ(qvx::ASCIIToUnSigned32("-4294967291"), 5u);
  EXPECT_EQ(qvx::ASCIIToSigned32("2147483648"), INT32_MIN);
  EXPECT_EQ(qvx::ASCIIToSigned32("4294967301"), 5);
  (void)qvx::ASCIIToSigned32("99999999999999999999999999");  // any value
  ExpectBoth32({{"4294967301", 10, 5, 0},
                {"0x100000005", 16, 5, 0},
                {"40000000005", 8, 5, 0},  // 2 to the 32nd and 5
                {"-4294967291", 10, 5, 0}});
}

TEST(NumberText, ANegativeTextIsAValidUnsignedNumber) {
  u32 status = kUnset;
  EXPECT_EQ(qvx::ASCIIToUnSigned32("-1"), 0xFFFFFFFFu);
  EXPECT_EQ(qvx::ASCIIToUnSigned32VT("-1", QVX_BASE_DECIMAL, &status), 0xFFFFFFFFu);
  EXPECT_EQ(status, 0u);
}

TEST(NumberText, Signed64OfBlanksAndANegativeNumberIsTheNumber) {
  EXPECT_EQ(qvx::ASCIIToSigned64("  -42"), -42);
  EXPECT_EQ(qvx::ASCIIToSigned64("+42x"), 42);
  EXPECT_EQ(qvx::ASCIIToSigned64("\t\n\v\f\r 1"), 1);
  EXPECT_EQ(qvx::ASCIIToSigned64("--1"), 0);
  EXPECT_EQ(qvx::ASCIIToSigned64("9223372036854775807"), INT64_MAX);
  EXPECT_EQ(qvx::ASCIIToSigned64("-9223372036854775808"), INT64_MIN);
}

TEST(NumberText, UnSigned64OfANegativeTextIsZero) {
  EXPECT_EQ(qvx::ASCIIToUnSigned64("-42"), 0u);
  EXPECT_EQ(qvx::ASCIIToUnSigned64(" -42"), 0u);
  EXPECT_EQ(qvx::ASCIIToUnSigned64(" +42"), 42u);
  EXPECT_EQ(qvx::ASCIIToUnSigned64("42-"), 42u);
}

TEST(NumberText, Wide64BitNumbersWrap) {
  EXPECT_EQ(qvx::ASCIIToUnSigned64("18446744073709551615"), UINT64_MAX);
  EXPECT_EQ(qvx::ASCIIToUnSigned64("18446744073709551616"), 0u);
  EXPECT_EQ(qvx::ASCIIToUnSigned64("184467440737095516171"), 11u);  // 10 x 2 to the 64th + 11
  EXPECT_EQ(qvx::ASCIIToSigned64("9223372036854775808"), INT64_MIN);
  EXPECT_EQ(qvx::ASCIIToSigned64("18446744073709551621"), 5);
  EXPECT_EQ(qvx::ASCIIToSigned64("-18446744073709551621"), -5);
}

TEST(NumberText, DoublesAreReadAsStrtodReadsThem) {
  const qvx::test::LocaleGuard locale("C");
  EXPECT_EQ(qvx::ASCIIToDouble(" -1.5e2x"), -150.0);
  EXPECT_EQ(qvx::ASCIIToDouble("0.25"), 0.25);
  EXPECT_EQ(qvx::ASCIIToDouble("0x10"), 16.0);
}

TEST(NumberText, TrueInAnyCaseIsOneAndAllElseZero) {
  for (const astring* text : {"true", "TRUE", "tRuE"})
    EXPECT_EQ(qvx::ASCIIToBooln(text), 1);
  for (const astring* text : {kNull, "", "false", "1", "tru", "truex", " true", "yes"}) {
    EXPECT_EQ(qvx::ASCIIToBooln(text), 0);
  }
}

TEST(NumberText, OnlyTrueAndFalseAreValidBooleans) {
  const struct {
    const astring* text;
    booln value;
    u32 status;
  } cases[] = {
      {"true", 1, 0},          {"True", 1, 0},         {"false", 0, 0},    {"FALSE", 0, 0},
      {kNull, 0, kInvalid},    {"", 0, kInvalid},      {"1", 0, kInvalid}, {"fals", 0, kInvalid},
      {"falsey", 0, kInvalid}, {"true ", 0, kInvalid},
  };
  for (const auto& each : cases) {
    u32 status = kUnset;
    EXPECT_EQ(qvx::ASCIIToBoolnV(each.text, &status), each.value);
    EXPECT_EQ(status, each.status);
  }
}

TEST(NumberText, ANullStatusIsNotStored) {
  EXPECT_EQ(qvx::ASCIIToBoolnV("true", nullptr), 1);
  EXPECT_EQ(qvx::ASCIIToUnSigned32VT("7", QVX_BASE_DECIMAL, nullptr), 7u);
  EXPECT_EQ(qvx::ASCIIToUnSigned32VT("x", QVX_BASE_DECIMAL, nullptr), 0u);
  EXPECT_EQ(qvx::ASCIIToUnSigned32VT("7", 3, nullptr), 0xFFFFFFFFu);
  EXPECT_EQ(qvx::ASCIIToSigned32VT("-7", QVX_BASE_DECIMAL, nullptr), -7);
  EXPECT_EQ(qvx::ASCIIToUnSigned64VT("7", QVX_BASE_DECIMAL, nullptr), 7u);
  EXPECT_EQ(qvx::ASCIIToSigned64VT("-7", QVX_BASE_DECIMAL, nullptr), -7);
}

TEST(NumberText, Base10TakesDigitsAndOneSign) {
  ExpectBoth32({{"0", 10, 0, 0},
                {"42", 10, 42, 0},
                {"+42", 10, 42, 0},
                {"-42", 10, 0xFFFFFFD6, 0},
                {"010", 10, 10, 0},
                {" 1", 10, 0, kInvalid},
                {"1x", 10, 0, kInvalid},
                {"0x1", 10, 0, kInvalid},
                {"", 10, 0, kInvalid},
                {kNull, 10, 0, kInvalid}});
}

TEST(NumberText, ALoneSignIsNo32BitNumber) {
  ExpectBoth32({{"-", 10, 0, kInvalid}, {"+", 10, 0, kInvalid}});
}

TEST(NumberText, Base16TakesTheBaseFromTheText) {
  ExpectBoth32({{"0x1F", 16, 31, 0},
                {"0x1f", 16, 31, 0},
                {"10", 16, 10, 0},
                {"010", 16, 8, 0},
                {"08", 16, 0, 0},    // octal up to the first digit that does not belong
                {"1f", 16, 1, 0},    // decimal, up to its f
                {"0b11", 16, 0, 0},  // no binary prefix
                {"ff", 16, 0, kInvalid},
                {"FF", 16, 0, kInvalid},
                {"0xAb", 16, 0, kInvalid},
                {"0X1F", 16, 0, kInvalid},
                {"-1", 16, 0, kInvalid},
                {" 1", 16, 0, kInvalid},
                {"", 16, 0, kInvalid},
                {kNull, 16, 0, kInvalid},
                {"0xffffffff", 16, 0xFFFFFFFF, 0}});
}

TEST(NumberText, TheHexPrefixAloneIsZero) {
  for (const u32 isSigned : {0u, 1u}) {
    u32 status = kUnset;
    const u32 value =
        isSigned != 0
            ? static_cast<u32>(qvx::ASCIIToSigned32VT("0x", QVX_BASE_HEXADECIMAL, &status))
            : qvx::ASCIIToUnSigned32VT("0x", QVX_BASE_HEXADECIMAL, &status);
    EXPECT_EQ(value, 0u);
    EXPECT_TRUE(status == 0 || status == kInvalid);
  }
}

TEST(NumberText, Base8TakesOctalDigits) {
  ExpectBoth32({{"17", 8, 15, 0},
                {"017", 8, 15, 0},
                {"37777777777", 8, 0xFFFFFFFF, 0},
                {"8", 8, 0, kInvalid},
                {"-7", 8, 0, kInvalid},
                {"", 8, 0, kInvalid},
                {kNull, 8, 0, kInvalid}});
}

TEST(NumberText, AnUnknownBaseGivesAllBitsSetUnsignedAndZeroSigned) {
  for (const u32 base : {3u, 0u, 2u, 11u, 0x1000Au}) {
    u32 status = kUnset;
    EXPECT_EQ(qvx::ASCIIToUnSigned32VT("7", base, &status), 0xFFFFFFFFu);
    EXPECT_EQ(status, kInvalid);
    status = kUnset;
    EXPECT_EQ(qvx::ASCIIToSigned32VT("7", base, &status), 0);
    EXPECT_EQ(status, kInvalid);
    EXPECT_EQ(qvx::ASCIIToUnSigned32VT(nullptr, base, &status), 0xFFFFFFFFu);
  }
}

TEST(NumberText, Wide64ConversionsOnlyCheckBases16And8) {
  const struct {
    const astring* text;
    u32 base;
    s64 asSigned;
    u64 asUnsigned;
    u32 status;
  } cases[] = {
      {"ff", 16, 0, 0, 0},         {"FF", 16, 0, 0, 0},
      {"0x1F", 16, 0, 0, 0},       {"fF", 16, 0, 0, kInvalid},
      {"77", 8, 0, 0, 0},          {"8", 8, 0, 0, kInvalid},
      {"7", 3, 0, 0, kInvalid},    {"-", 10, 0, 0, 0},
      {"+", 10, 0, 0, 0},          {"-42", 10, -42, 0, 0},
      {"+42", 10, 42, 42, 0},      {"18446744073709551615", 10, -1, UINT64_MAX, 0},
      {" 1", 10, 0, 0, kInvalid},  {"", 10, 0, 0, kInvalid},
      {kNull, 10, 0, 0, kInvalid}, {kNull, 16, 0, 0, kInvalid},
      {kNull, 8, 0, 0, kInvalid},
  };
  for (const auto& each : cases) {
    u32 status = kUnset;
    EXPECT_EQ(qvx::ASCIIToSigned64VT(each.text, each.base, &status), each.asSigned);
    EXPECT_EQ(status, each.status);
    status = kUnset;
    EXPECT_EQ(qvx::ASCIIToUnSigned64VT(each.text, each.base, &status), each.asUnsigned);
    EXPECT_EQ(status, each.status);
  }
}

TEST(NumberText, Numbers32BecomeDecimalTextAndItsLength) {
  const struct {
    s32 value;
    const astring* asSigned;
    const astring* asUnsigned;
  } cases[] = {
      {0, "0", "0"},
      {7, "7", "7"},
      {1234567890, "1234567890", "1234567890"},
      {-1, "-1", "4294967295"},
      {INT32_MAX, "2147483647", "2147483647"},
      {INT32_MIN, "-2147483648", "2147483648"},
  };
  for (const auto& each : cases) {
    s32 length = 0;
    EXPECT_EQ(Written(strlen(each.asSigned) + 1,
                      [&](astring* out) { length = qvx::Signed32ToASCII(out, each.value); }),
              each.asSigned);
    EXPECT_EQ(length, static_cast<s32>(strlen(each.asSigned)));
    EXPECT_EQ(Written(strlen(each.asUnsigned) + 1,
                      [&](astring* out) {
                        length = qvx::UnSigned32ToASCII(out, static_cast<u32>(each.value));
                      }),
              each.asUnsigned);
    EXPECT_EQ(length, static_cast<s32>(strlen(each.asUnsigned)));
  }
}

TEST(NumberText, Numbers64BecomeDecimalText) {
  const struct {
    s64 value;
    const astring* asSigned;
    const astring* asUnsigned;
  } cases[] = {
      {0, "0", "0"},
      {10, "10", "10"},
      {-120, "-120", "18446744073709551496"},
      {-1, "-1", "18446744073709551615"},
      {INT64_MAX, "9223372036854775807", "9223372036854775807"},
      {INT64_MIN, "-9223372036854775808", "9223372036854775808"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(Written(strlen(each.asSigned) + 1,
                      [&](astring* out) { qvx::Signed64ToASCII(out, each.value); }),
              each.asSigned);
    EXPECT_EQ(
        Written(strlen(each.asUnsigned) + 1,
                [&](astring* out) { qvx::UnSigned64ToASCII(out, static_cast<u64>(each.value)); }),
        each.asUnsigned);
  }
}

TEST(NumberText, Numbers64NeedNoMemory) {
  const qvx::test::FailNthAllocation fault(1);
  astring text[21];
  qvx::Signed64ToASCII(text, -120);
  EXPECT_STREQ(text, "-120");
  qvx::UnSigned64ToASCII(text, 120);
  EXPECT_STREQ(text, "120");
}

TEST(NumberText, ANullOutputIsNotStored) {
  EXPECT_EQ(qvx::Signed32ToASCII(nullptr, -12), 3);
  EXPECT_EQ(qvx::UnSigned32ToASCII(nullptr, 12), 2);
  qvx::UnSigned64ToASCII(nullptr, 1);
  qvx::Signed64ToASCII(nullptr, -1);
  qvx::DoubleToASCII(nullptr, 1.0);
  qvx::BoolnToASCII(nullptr, 1);
  qvx::ltostr(nullptr, 1, 10);
  qvx::ltostr(nullptr, 1, 2);
  qvx::dec2bin(nullptr, 1);
  qvx::strrev(nullptr);
}

std::string DoubleOver(const astring* standing, d64 value) {
  return Written(strlen(standing) + 1, [&](astring* out) {
    memcpy(out, standing, strlen(standing) + 1);
    qvx::DoubleToASCII(out, value);
  });
}

TEST(NumberText, DoublesHaveEightDecimals) {
  const qvx::test::LocaleGuard locale("C");
  EXPECT_EQ(DoubleOver("................", 1.5), "1.50000000");
  EXPECT_EQ(DoubleOver("................", -0.125), "-0.12500000");
  EXPECT_EQ(DoubleOver("................", 0.000000005), "0.00000001");
}

TEST(NumberText, DoubleIsCutToTheLengthOfTheStandingTextMinusOne) {
  const qvx::test::LocaleGuard locale("C");
  EXPECT_EQ(DoubleOver("...........", 1.5), "1.50000000");  // 11 characters, 10 needed
  EXPECT_EQ(DoubleOver("..........", 1.5), "1.5000000");
  EXPECT_EQ(DoubleOver(".....", 1.5), "1.50");
  EXPECT_EQ(DoubleOver(".", 1.5), "");
  EXPECT_EQ(DoubleOver("..........", 1.7e308), "169999999");  // the nearest double is lower
}

TEST(NumberText, AnEmptyBufferReceivesNoDouble) { EXPECT_EQ(DoubleOver("", 1.5), ""); }

TEST(NumberText, BooleanTextIsTrueForExactlyOne) {
  const auto text = [](size_t room, booln value) {
    return Written(room, [value](astring* out) { qvx::BoolnToASCII(out, value); });
  };
  EXPECT_EQ(text(5, 1), "true");
  EXPECT_EQ(text(6, 0), "false");
  EXPECT_EQ(text(6, 2), "false");
  EXPECT_EQ(text(6, 0xFFFF), "false");
}

TEST(NumberText, HexDigitsHaveTheirValueAndOthersTheirCodeLess0x30) {
  const astring lower[] = "0123456789abcdef";
  const astring upper[] = "0123456789ABCDEF";
  for (s32 value = 0; value < 16; ++value) {
    EXPECT_EQ(qvx::hexToDecimalConvert(lower[value]), value);
    EXPECT_EQ(qvx::hexToDecimalConvert(upper[value]), value);
  }
  EXPECT_EQ(qvx::hexToDecimalConvert('g'), 55);
  EXPECT_EQ(qvx::hexToDecimalConvert('G'), 23);
  EXPECT_EQ(qvx::hexToDecimalConvert(' '), -16);
  EXPECT_EQ(qvx::hexToDecimalConvert(':'), 10);
  EXPECT_EQ(qvx::hexToDecimalConvert('\xFF'), 207);
}

TEST(NumberText, ShortTextKeepsThreeCharacters) {
  const struct {
    u32 value;
    s32 base;
    const astring* text;
  } cases[] = {
      {1234, 16, "4d2"},
      {65535, 16, "fff"},
      {1234, 10, "123"},
      {511, 8, "777"},
      {512, 8, "100"},
      {0, 8, "0"},
      {0, 10, "0"},
      {0, 16, "0"},
      {0xFFFFFFFF, 10, "-1"},
      {0xFFFFFFFF, 8, "377"},
      {0xFFFFFFFF, 16, "fff"},
      {static_cast<u32>(-1234), 10, "-12"},
      {0x80000000, 10, "-21"},
      {99, 0, "99"},
      {255, 7, "255"},
      {255, 36, "255"},
      {255, -16, "255"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(Written(4, [&](astring* out) { qvx::ltostr(out, each.value, each.base); }), each.text)
        << each.value << " in base " << each.base;
  }
}

TEST(NumberText, BinaryTextIsEmptyAndThatOfZeroTheStandingTextReversed) {
  for (const u32 value : {1u, 5u, 0xFFFFFFFFu}) {
    astring text[] = "abc";
    qvx::dec2bin(text, value);
    EXPECT_EQ(std::string(text, 4), std::string("\0bc\0", 4));
  }
  astring text[] = "abc";
  qvx::dec2bin(text, 0);
  EXPECT_STREQ(text, "cba");
  qvx::ltostr(text, 0, 2);
  EXPECT_STREQ(text, "abc");
  qvx::ltostr(text, 6, 2);
  EXPECT_STREQ(text, "");
}

TEST(NumberText, ReversalTurnsTheTextAround) {
  const auto reversed = [](const std::string& given) {
    return Written(given.size() + 1, [&](astring* out) {
      memcpy(out, given.c_str(), given.size() + 1);
      qvx::strrev(out);
    });
  };
  EXPECT_EQ(reversed("abc"), "cba");
  EXPECT_EQ(reversed("abcd"), "dcba");
  EXPECT_EQ(reversed("a"), "a");
  EXPECT_EQ(reversed(""), "");
}

TEST(NumberText, ReversalWithoutMemoryLeavesTheText) {
  astring text[] = "abc";
  const qvx::test::FailNthAllocation fault(1);
  qvx::strrev(text);
  EXPECT_TRUE(qvx::test::FailNthAllocation::Fired());
  EXPECT_STREQ(text, "abc");
}

TEST(NumberText, ScannedNumbersTellSignAndMagnitude) {
  const qvx::ScannedNumber number = qvx::ScanNumber(" -0x1Fg", qvx::kHexBase);
  EXPECT_TRUE(number.found);
  EXPECT_TRUE(number.negative);
  EXPECT_EQ(number.magnitude, 31u);
  EXPECT_FALSE(qvx::ScanNumber("-", qvx::kDecimalBase).found);
  EXPECT_FALSE(qvx::ScanNumber("g", qvx::kHexBase).found);
  EXPECT_EQ(qvx::ScanNumber("0xg", qvx::kHexBase).magnitude, 0u);
  EXPECT_EQ(qvx::ScanNumber("ff", qvx::kHexBase).magnitude, 255u);
  EXPECT_EQ(qvx::ScanNumber("0X1f", qvx::kTextBase).magnitude, 31u);
  EXPECT_EQ(qvx::ScanNumber("-017", qvx::kTextBase).magnitude, 15u);
  EXPECT_EQ(qvx::ScanNumber("18446744073709551615", qvx::kDecimalBase).magnitude, UINT64_MAX);
  EXPECT_EQ(qvx::ScanNumber("18446744073709551616", qvx::kDecimalBase).magnitude, UINT64_MAX);
  EXPECT_EQ(qvx::ScanNumber("184467440737095516160", qvx::kDecimalBase).magnitude, UINT64_MAX);
}

TEST(NumberText, ExportedConversionsGiveTheSameAnswers) {
  const qvx::test::LocaleGuard locale("C");
  u32 status = kUnset;
  EXPECT_EQ(PXTASCIIToSigned32("-3"), -3);
  EXPECT_EQ(PXTASCIIToUnSigned32("3"), 3u);
  EXPECT_EQ(PXTASCIIToSigned64("-3"), -3);
  EXPECT_EQ(PXTASCIIToUnSigned64("-3"), 0u);
  EXPECT_EQ(PXTASCIIToDouble("0.5"), 0.5);
  EXPECT_EQ(PXTASCIIToBooln("TRUE"), 1);
  EXPECT_EQ(PXTASCIIToBoolnV("x", &status), 0);
  EXPECT_EQ(status, kInvalid);
  EXPECT_EQ(PXTASCIIToUnSigned32VT("7", 3, &status), 0xFFFFFFFFu);
  EXPECT_EQ(PXTASCIIToSigned32VT("7", 3, &status), 0);
  EXPECT_EQ(PXTASCIIToUnSigned64VT("7", QVX_BASE_DECIMAL, &status), 7u);
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(PXTASCIIToSigned64VT("-7", QVX_BASE_DECIMAL, &status), -7);
  EXPECT_EQ(Written(3, [](astring* out) { EXPECT_EQ(PXTSigned32ToASCII(out, -1), 2); }), "-1");
  EXPECT_EQ(Written(2, [](astring* out) { EXPECT_EQ(PXTUnSigned32ToASCII(out, 1), 1); }), "1");
  EXPECT_EQ(Written(3, [](astring* out) { PXTSigned64ToASCII(out, -1); }), "-1");
  EXPECT_EQ(Written(2, [](astring* out) { PXTUnSigned64ToASCII(out, 1); }), "1");
  EXPECT_EQ(Written(6, [](astring* out) { PXTBoolnToASCII(out, 2); }), "false");
  astring text[] = "....";
  PXTDoubleToASCII(text, 2.25);
  EXPECT_STREQ(text, "2.2");
}

}  // namespace
