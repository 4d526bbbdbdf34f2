// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/number_model.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

#include "support/guard_buffer.h"
#include "text/char_class.h"
#include "text/number_text.h"
#include "text/time_text.h"
#include "text/uni_number.h"

namespace {

using qvx::test::GuardBuffer;
using qvx::test::HostileNumbers;
using qvx::test::ModelNumber;
using qvx::test::ModelWide;

constexpr u32 kInputs = 5000;
constexpr u32 kUnset = 0xDEAD;

// The text at the end of its room: a read past the terminator faults.
class Guarded {
 public:
  explicit Guarded(const std::string& text) : bytes_(text.size() + 1) {
    memcpy(bytes_.data(), text.c_str(), text.size() + 1);
  }
  const astring* text() { return bytes_.data(); }

 private:
  GuardBuffer<astring> bytes_;
};

TEST(NumberModel, CharacterTestsAgreeWithTheModel) {
  HostileNumbers texts(1);
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string text = texts.Text(12);
    Guarded given(text);
    for (const u32 flag : {0u, 1u}) {
      ASSERT_EQ(qvx::IsASCIIIntNum(given.text(), flag), qvx::test::ModelIsInteger(text, flag != 0))
          << text;
      ASSERT_EQ(qvx::IsASCIIHexNum(given.text(), flag), qvx::test::ModelIsHex(text, flag != 0))
          << text;
    }
    ASSERT_EQ(qvx::IsASCIIOctalNum(given.text()), qvx::test::ModelIsOctal(text)) << text;
  }
}

TEST(NumberModel, ConversionsTo32BitsAgreeWithTheModel) {
  HostileNumbers texts(2);
  const u32 bases[] = {8, 10, 16, 16, 2, 0, 36};
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string text = texts.Text(14);
    const u32 base = bases[texts.Below(7)];
    Guarded given(text);
    u32 status = kUnset;
    const ModelNumber asUnsigned = qvx::test::ModelTo32(text, base, false);
    ASSERT_EQ(qvx::ASCIIToUnSigned32VT(given.text(), base, &status), asUnsigned.value)
        << text << " in base " << base;
    // The prefix alone is 0 with either status.
    const bool prefixAlone = base == 16 && text == "0x";
    if (!prefixAlone) {
      ASSERT_EQ(status, asUnsigned.status) << text << " in base " << base;
    }
    const ModelNumber asSigned = qvx::test::ModelTo32(text, base, true);
    ASSERT_EQ(static_cast<u32>(qvx::ASCIIToSigned32VT(given.text(), base, &status)), asSigned.value)
        << text << " in base " << base;
    if (!prefixAlone) {
      ASSERT_EQ(status, asSigned.status) << text << " in base " << base;
    }
    const u32 plain = static_cast<u32>(qvx::test::ModelDecimal64(text, "+-"));
    ASSERT_EQ(qvx::ASCIIToUnSigned32(given.text()), plain) << text;
    ASSERT_EQ(static_cast<u32>(qvx::ASCIIToSigned32(given.text())), plain) << text;
  }
}

TEST(NumberModel, ConversionsTo64BitsAgreeWithTheModel) {
  HostileNumbers texts(3);
  const u32 bases[] = {8, 10, 10, 16, 2, 0, 36};
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string text = texts.Text(30);
    const u32 base = bases[texts.Below(7)];
    Guarded given(text);
    u32 status = kUnset;
    const ModelNumber asUnsigned = qvx::test::ModelTo64(text, base, false);
    ASSERT_EQ(qvx::ASCIIToUnSigned64VT(given.text(), base, &status), asUnsigned.value) << text;
    ASSERT_EQ(status, asUnsigned.status) << text << " in base " << base;
    const ModelNumber asSigned = qvx::test::ModelTo64(text, base, true);
    status = kUnset;
    ASSERT_EQ(static_cast<u64>(qvx::ASCIIToSigned64VT(given.text(), base, &status)), asSigned.value)
        << text;
    ASSERT_EQ(status, asSigned.status) << text << " in base " << base;
    ASSERT_EQ(qvx::ASCIIToUnSigned64(given.text()), qvx::test::ModelDecimal64(text, "+")) << text;
    ASSERT_EQ(static_cast<u64>(qvx::ASCIIToSigned64(given.text())),
              qvx::test::ModelDecimal64(text, "+-"))
        << text;
  }
}

TEST(NumberModel, BooleansAgreeWithTheModel) {
  HostileNumbers texts(4);
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string text = texts.Text(6);
    const ModelNumber expected = qvx::test::ModelToBoolean(text);
    Guarded given(text);
    u32 status = kUnset;
    ASSERT_EQ(qvx::ASCIIToBoolnV(given.text(), &status), expected.value) << text;
    ASSERT_EQ(status, expected.status) << text;
    ASSERT_EQ(qvx::ASCIIToBooln(given.text()), expected.value) << text;
  }
}

TEST(NumberModel, WideTextsAreReadAsTheModelReadsThem) {
  HostileNumbers texts(5);
  for (u32 input = 0; input < kInputs; ++input) {
    std::string text = texts.Text(14);
    if (text.find('\xC3') != std::string::npos) text.resize(text.find('\xC3'));
    GuardBuffer<ustring> units(text.size() + 1);
    for (size_t at = 0; at <= text.size(); ++at)
      units[at] = static_cast<u8>(text.c_str()[at]);
    const u64 value = qvx::test::ModelDecimal64(text, "+-");
    ASSERT_EQ(static_cast<u32>(qvx::UniToSigned32(units.data())), static_cast<u32>(value)) << text;
    ASSERT_EQ(qvx::UniToUnSigned32(units.data()), static_cast<u32>(value)) << text;
    ASSERT_EQ(static_cast<u64>(qvx::UniToSigned64(units.data())), value) << text;
    ASSERT_EQ(qvx::UniToUnSigned64(units.data()), qvx::test::ModelDecimal64(text, "+")) << text;
    ASSERT_EQ(qvx::UniToDouble(units.data()), strtod(text.c_str(), nullptr)) << text;
  }
}

TEST(NumberModel, WrittenNumbersAgreeWithTheCLibrary) {
  HostileNumbers numbers(6);
  for (u32 input = 0; input < kInputs; ++input) {
    const u64 value = numbers.Bits();
    GuardBuffer<astring> room(24);
    astring* const out = room.data();
    const s32 signedLength = qvx::Signed32ToASCII(out, static_cast<s32>(value));
    ASSERT_EQ(std::string(out), std::to_string(static_cast<s32>(value)));
    ASSERT_EQ(signedLength, static_cast<s32>(strlen(out)));
    const s32 length = qvx::UnSigned32ToASCII(out, static_cast<u32>(value));
    ASSERT_EQ(std::string(out), std::to_string(static_cast<u32>(value)));
    ASSERT_EQ(length, static_cast<s32>(strlen(out)));
    qvx::UnSigned64ToASCII(out, value);
    ASSERT_EQ(std::string(out), std::to_string(value));
    qvx::Signed64ToASCII(out, static_cast<s64>(~value));
    ASSERT_EQ(std::string(out), std::to_string(static_cast<s64>(~value)));
    const s32 base = static_cast<s32>(numbers.Below(40)) - 3;
    if (base == 2) continue;
    GuardBuffer<astring> four(4);
    qvx::ltostr(four.data(), static_cast<u32>(value), base);
    ASSERT_EQ(std::string(four.data()), qvx::test::ModelShortText(static_cast<u32>(value), base));
  }
}

TEST(NumberModel, DoublesAreCutToTheStandingTextAsTheModelCutsThem) {
  HostileNumbers numbers(7);
  for (u32 input = 0; input < kInputs; ++input) {
    const d64 value = numbers.Double();
    const u32 standing = numbers.Below(80);
    GuardBuffer<astring> out(standing + 1);
    memset(out.data(), '.', standing);
    out[standing] = '\0';
    qvx::DoubleToASCII(out.data(), value);
    const std::string whole = qvx::test::ModelDouble(value, 8);
    ASSERT_EQ(std::string(out.data()), standing == 0 ? "" : whole.substr(0, standing - 1));
  }
}

void ExpectWide(GuardBuffer<ustring>& out, u32 size, const ModelWide& expected) {
  ASSERT_EQ(size, expected.size);
  for (size_t at = 0; at < expected.stored.size(); ++at)
    ASSERT_EQ(out[at], static_cast<u8>(expected.stored[at]));
  if (expected.terminated) {
    ASSERT_EQ(out[expected.stored.size()], 0);
  }
  ASSERT_TRUE(out.UntouchedFrom(expected.stored.size() + (expected.terminated ? 1 : 0)));
}

TEST(NumberModel, WideTextsAreCutWithinTheirRoomAsTheModelCutsThem) {
  HostileNumbers numbers(8);
  for (u32 input = 0; input < kInputs; ++input) {
    const d64 value = numbers.Double();
    const s32 precision = static_cast<s32>(numbers.Below(12));
    const u32 given = numbers.Below(90);
    GuardBuffer<ustring> out(given / 2);
    u32 size = given;
    ASSERT_EQ(qvx::UniDoubleToStr(out.data(), &size, value, precision), 0);
    ASSERT_NO_FATAL_FAILURE(ExpectWide(
        out, size, qvx::test::ModelWiden(qvx::test::ModelDouble(value, precision), given)));
    const u32 number = static_cast<u32>(numbers.Bits());
    const s32 base = static_cast<s32>(numbers.Below(20));
    const u32 few = numbers.Below(12);
    GuardBuffer<ustring> small(few / 2);
    size = few;
    ASSERT_EQ(qvx::UniUnSigned32ToStr(small.data(), &size, number, base), 0);
    const std::string text = base == 2 ? "" : qvx::test::ModelShortText(number, base);
    ASSERT_NO_FATAL_FAILURE(ExpectWide(small, size, qvx::test::ModelWiden(text, few)));
  }
}

// The C library's own calendar text serves the years of four digits.
TEST(NumberModel, CalendarTextsAgreeWithTheCLibrary) {
  ASSERT_EQ(setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1), 0);
  tzset();
  HostileNumbers numbers(9);
  for (u32 input = 0; input < kInputs; ++input) {
    const time_t time = static_cast<time_t>(static_cast<s32>(numbers.Bits()));
    const struct tm* local = localtime(&time);
    const bool summer = local->tm_isdst > 0;
    astring expected[26];
    ASSERT_NE(asctime_r(local, expected), nullptr);
    expected[24] = '\0';
    GuardBuffer<astring> out(25);
    ASSERT_EQ(qvx::TimeToAStr(out.data(), time), 0);
    ASSERT_STREQ(out.data(), expected);
    if (time > INT32_MAX - 3600) continue;  // a narrow time_t has no later value
    time_t moved = time;
    qvx::DSTFix(&moved);
    ASSERT_EQ(moved - time, summer ? 3600 : 0);
  }
}

}  // namespace
