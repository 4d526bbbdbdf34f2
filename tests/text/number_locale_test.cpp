// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Numbers and case tables follow the current locale where they say so.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "qvxcs/status.h"

#include "support/locale_guard.h"
#include "text/ascii_util.h"
#include "text/char_class.h"
#include "text/number_text.h"
#include "text/param_vector.h"
#include "text/uni_number.h"

namespace qvx {
namespace {

using test::LocaleGuard;

std::vector<ustring> Units(const std::u16string& text) {
  std::vector<ustring> units(text.begin(), text.end());
  units.push_back(0);
  return units;
}

std::string TextOf(d64 value) {
  astring text[32];
  memset(text, 'x', 31);
  text[31] = '\0';
  DoubleToASCII(text, value);
  return text;
}

std::u16string WideTextOf(d64 value, s32 precision) {
  ustring text[32] = {};
  u32 size = sizeof(text);
  if (UniDoubleToStr(text, &size, value, precision) != 0) return u"(failed)";
  return {text, text + size / 2 - 1};
}

TEST(NumberLocale, DoublesHaveTheLocalesDecimalPoint) {
  {
    const LocaleGuard locale("C");
    EXPECT_EQ(TextOf(-1.5), "-1.50000000");
    EXPECT_EQ(WideTextOf(-1.5, 2), u"-1.50");
    EXPECT_EQ(ASCIIToDouble("1,5"), 1.0);
    EXPECT_EQ(ASCIIToDouble("1.5"), 1.5);
  }
  const LocaleGuard locale(test::kDecimalComma);
  ASSERT_TRUE(locale);
  EXPECT_EQ(TextOf(-1.5), "-1,50000000");
  EXPECT_EQ(WideTextOf(-1.5, 2), u"-1,50");
  EXPECT_EQ(ASCIIToDouble("1,5"), 1.5);
  EXPECT_EQ(ASCIIToDouble("1.5"), 1.0);
  EXPECT_EQ(UniToDouble(Units(u"1,5").data()), 1.5);
  EXPECT_EQ(UniToDouble(Units(u"1.5").data()), 1.0);
}

// A block of that many bytes that the heap hands out next, full of nines.
void DirtyHeap(size_t bytes) {
  void* const block = malloc(bytes);
  memset(block, '9', bytes);
  asm volatile("" : : "r"(block) : "memory");
  free(block);
}

// Sixteen units have room for seventeen bytes, and the locale's decimal point takes two of them:
// the text fills the room, and what ends it is the zero byte after the room. The heap keeps its own
// marks in the first sixteen bytes of a free block, so the nines come after those.
TEST(NumberLocale, ATextThatFillsItsRoomEndsWithTheZeroByteAfterIt) {
  const LocaleGuard locale(test::kWidePoint);
  ASSERT_TRUE(locale);
  const std::vector<ustring> text = Units(u"1\u066B25000000000000");
  DirtyHeap(24);
  EXPECT_EQ(UniToDouble(text.data()), 1.25);
}

TEST(NumberLocale, CaseIsMappedByTheLocalesTables) {
  struct Case {
    const char* locale;
    const char* lower;
    const char* upper;
  };
  for (const Case& each : {Case{"C", "i\xE9", "I\xE9"}, Case{test::kLatin1, "i\xE9", "I\xC9"},
                           Case{test::kTurkish8Bit, "i\xE9", "\xDD\xC9"}}) {
    const LocaleGuard locale(each.locale);
    ASSERT_TRUE(locale) << each.locale;
    astring text[] = "i\xE9";
    EXPECT_STREQ(strupr(text), each.upper) << each.locale;
    astring counted[] = "i\xE9";
    EXPECT_EQ(strToUpperCase(counted), 2u);
    EXPECT_STREQ(counted, each.upper) << each.locale;
    if (strcmp(each.locale, "C") != 0) {
      EXPECT_STREQ(strlwr(text), each.lower) << each.locale;
    }
  }
}

TEST(NumberLocale, ParametersAreFoundByTheLocalesLowerCase) {
  astring entry[] = "\xE9I=1";
  astring* entries[] = {entry};
  {
    const LocaleGuard locale("C");
    EXPECT_EQ(GetParamIndexByAStrName(1, entries, "\xC9i", 1), -1);
    EXPECT_EQ(GetParamIndexByAStrName(1, entries, "\xE9i", 1), 0);
  }
  {
    const LocaleGuard locale(test::kLatin1);
    ASSERT_TRUE(locale);
    EXPECT_EQ(GetParamIndexByAStrName(1, entries, "\xC9i", 1), 0);
    EXPECT_EQ(GetParamIndexByAStrName(1, entries, "\xC9i", 0), -1);
  }
  const LocaleGuard locale(test::kTurkish8Bit);
  ASSERT_TRUE(locale);
  EXPECT_EQ(GetParamIndexByAStrName(1, entries, "\xC9i", 1), -1);    // I and i are two letters
  EXPECT_EQ(GetParamIndexByAStrName(1, entries, "\xC9\xFD", 1), 0);  // a small I without its dot
}

// Integers, booleans and character tests know ASCII only.
TEST(NumberLocale, IntegersBooleansAndClassesAreTheSameInEveryLocale) {
  for (const char* name :
       {"C", test::kDecimalComma, test::kLatin1, test::kTurkishUtf8, test::kTurkish8Bit}) {
    SCOPED_TRACE(name);
    const LocaleGuard locale(name);
    ASSERT_TRUE(locale);
    EXPECT_EQ(ASCIIToBooln("TRUE"), 1);
    u32 status = 7;
    EXPECT_EQ(ASCIIToBoolnV("FALSE", &status), 0);
    EXPECT_EQ(status, SM_STATUS_SUCCESS);
    EXPECT_EQ(AStrnicmp("TITLE", "title", 5), 0);
    EXPECT_EQ(AStrnicmp("\xC9", "\xE9", 1), 0xC9 - 0xE9);
    EXPECT_EQ(ASCIIToSigned32("1234567"), 1234567);
    EXPECT_EQ(UniToSigned64(Units(u"-1234567").data()), -1234567);
    EXPECT_EQ(IsASCIIAlpha("iI"), SM_STATUS_SUCCESS);
    EXPECT_EQ(IsASCIIAlpha("\xE9"), SM_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(IsASCIIAlphaNumeric("\xFD"), SM_STATUS_INVALID_PARAMETER);
  }
}

}  // namespace
}  // namespace qvx
