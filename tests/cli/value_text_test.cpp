// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/value_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "qvxcs/cli_value.h"
#include "qvxcs/status.h"

#include "support/alloc_fault.h"
#include "support/long_text.h"

namespace qvx {
namespace {

const ustring* Units(const char16_t* text) { return reinterpret_cast<const ustring*>(text); }

std::string Taken(astring* text) {
  const std::string taken = text == nullptr ? "(null)" : text;
  free(text);
  return taken;
}

std::u16string Taken(ustring* text) {
  std::u16string taken = text == nullptr ? u"(null)" : u"";
  for (const ustring* at = text; at != nullptr && *at != 0; ++at) {
    taken.push_back(static_cast<char16_t>(*at));
  }
  free(text);
  return taken;
}

TEST(ValueText, SixteenBitTextBecomesItsEightBitCopy) {
  u32 status = 7;
  EXPECT_EQ(Taken(NVSuptUstrToAstrD(Units(u"abc"), "fallback", &status)), "abc");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  status = 7;
  EXPECT_EQ(Taken(NVSuptUstrToAstr(Units(u"~\x7F"), &status)), "~\x7F");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(Taken(NVSuptUstrToAstr(Units(u""), &status)), "");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
}

TEST(ValueText, EightBitTextBecomesItsSixteenBitCopy) {
  u32 status = 7;
  EXPECT_EQ(Taken(NVSuptAstrToUstrD("a\xC3\xA9\xE2\x82\xAC", Units(u"f"), &status)),
            u"a\u00E9\u20AC");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  status = 7;
  EXPECT_EQ(Taken(NVSuptAstrToUstr("abc", &status)), u"abc");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_EQ(Taken(NVSuptAstrToUstr("", &status)), u"");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
}

TEST(ValueText, CharactersBeyondAsciiAreBufferTooSmall) {
  for (const char16_t* text :
       {u"\u00E9", u"\u0080", u"a\u00E9", u"\u00E9abc", u"\u20AC", u"\U0001F600"}) {
    u32 status = 0;
    EXPECT_EQ(NVSuptUstrToAstr(Units(text), &status), nullptr);
    EXPECT_EQ(status, SM_STATUS_BUFFER_TOO_SMALL);
  }
}

TEST(ValueText, ASurrogateAfterAPlainFirstCharacterIsThatCharacter) {
  const ustring text[] = {'A', 0xD83D, 0xDE00, 0};
  u32 status = 7;
  astring* const copy = NVSuptUstrToAstr(text, &status);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  EXPECT_STREQ(copy, "AAA");
  free(copy);
}

TEST(ValueText, ConversionFaultIsTheStatus) {
  u32 status = 0;
  const ustring unpaired[] = {0xDC00, 'a', 0};
  EXPECT_EQ(NVSuptUstrToAstrD(unpaired, "fallback", &status), nullptr);
  EXPECT_EQ(status, SM_STATUS_BAD_DATA);
  status = 0;
  EXPECT_EQ(NVSuptAstrToUstrD("a\xFF", Units(u"f"), &status), nullptr);
  EXPECT_EQ(status, SM_STATUS_BAD_DATA);
  status = 0;
  EXPECT_EQ(NVSuptAstrToUstr("\xF4\x90\x80\x80", &status), nullptr);  // 0x110000
  EXPECT_EQ(status, SM_STATUS_BAD_DATA);
}

TEST(ValueText, FallbackIsCopiedWithoutAText) {
  const astring narrow[] = "f\xC3\xA9";
  u32 status = 7;
  astring* const copy = NVSuptUstrToAstrD(nullptr, narrow, &status);
  EXPECT_NE(copy, narrow);
  EXPECT_EQ(Taken(copy), narrow);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
  const ustring* const wide = Units(u"f\u00E9");
  status = 7;
  ustring* const wideCopy = NVSuptAstrToUstrD(nullptr, wide, &status);
  EXPECT_NE(wideCopy, wide);
  EXPECT_EQ(Taken(wideCopy), u"f\u00E9");
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
}

TEST(ValueText, NeitherTextNorFallbackIsAnInvalidParameter) {
  u32 status = 0;
  EXPECT_EQ(NVSuptUstrToAstrD(nullptr, nullptr, &status), nullptr);
  EXPECT_EQ(status, SM_STATUS_INVALID_PARAMETER);
  status = 0;
  EXPECT_EQ(NVSuptUstrToAstr(nullptr, &status), nullptr);
  EXPECT_EQ(status, SM_STATUS_INVALID_PARAMETER);
  status = 0;
  EXPECT_EQ(NVSuptAstrToUstrD(nullptr, nullptr, &status), nullptr);
  EXPECT_EQ(status, SM_STATUS_INVALID_PARAMETER);
  status = 0;
  EXPECT_EQ(NVSuptAstrToUstr(nullptr, &status), nullptr);
  EXPECT_EQ(status, SM_STATUS_INVALID_PARAMETER);
}

TEST(ValueText, NullStatusIsNotStored) {
  EXPECT_EQ(Taken(NVSuptUstrToAstr(Units(u"a"), nullptr)), "a");
  EXPECT_EQ(Taken(NVSuptAstrToUstr("a", nullptr)), u"a");
  EXPECT_EQ(NVSuptUstrToAstr(nullptr, nullptr), nullptr);
  EXPECT_EQ(NVSuptAstrToUstr(nullptr, nullptr), nullptr);
}

TEST(ValueText, WithoutMemoryIsNoMemory) {
  u32 status = 0;
  const auto made = [](void* text) {
    const bool some = text != nullptr;
    free(text);
    return some;
  };
  const auto check = [&status](bool some) {
    EXPECT_FALSE(some);
    EXPECT_EQ(status, SM_STATUS_NO_MEMORY);
  };
  using test::FailEachAllocation;
  const ustring* const wide = Units(u"a");
  EXPECT_EQ(FailEachAllocation([&] { return made(NVSuptUstrToAstr(wide, &status)); }, check), 1u);
  EXPECT_EQ(FailEachAllocation([&] { return made(NVSuptAstrToUstr("a", &status)); }, check), 1u);
  EXPECT_EQ(
      FailEachAllocation([&] { return made(NVSuptUstrToAstrD(nullptr, "a", &status)); }, check),
      1u);
  EXPECT_EQ(
      FailEachAllocation([&] { return made(NVSuptAstrToUstrD(nullptr, wide, &status)); }, check),
      1u);
  EXPECT_EQ(status, SM_STATUS_SUCCESS);
}

TEST(ValueText, ExportedCallsReachTheSameFunctions) {
  u32 status = 7;
  EXPECT_EQ(Taken(PXTNVSUstrToAstr(Units(u"a"), &status)), "a");
  EXPECT_EQ(Taken(PXTNVSUstrToAstrD(nullptr, "b", &status)), "b");
  EXPECT_EQ(Taken(PXTNVSAstrToUstr("c", &status)), u"c");
  EXPECT_EQ(Taken(PXTNVSAstrToUstrD(nullptr, Units(u"d"), &status)), u"d");
  EXPECT_EQ(PXTNVSUstrToAstr(Units(u"\u00E9"), &status), nullptr);
  EXPECT_EQ(status, SM_STATUS_BUFFER_TOO_SMALL);
}

TEST(ValueText, ACopyBeyond32BitsIsNullWithoutAnAllocation) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> text(u64{1} << 31, 'a');  // twice as many bytes in 16 bits
  u32 status = 7;
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(NVSuptAstrToUstr(text.text(), &status), nullptr);
  EXPECT_FALSE(test::FailNthAllocation::Fired());
  EXPECT_EQ(status, SM_STATUS_NO_MEMORY);
}

}  // namespace
}  // namespace qvx
