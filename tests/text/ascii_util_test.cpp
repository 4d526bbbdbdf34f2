// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/ascii_util.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "qvxcs/status.h"

#include "base/results.h"
#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "support/locale_guard.h"
#include "support/long_text.h"

namespace qvx {
namespace {

using test::FailNthAllocation;
using test::GuardBuffer;

struct Replaced {
  u32 status;
  u32 size;
  std::string text;
};

// Replaces into exactly `room` bytes, which already hold `standing`.
Replaced Replace(const astring* text, const astring* find, const astring* replace, u32 room,
                 const std::string& standing = "") {
  GuardBuffer<astring> out(room);
  memcpy(out.data(), standing.c_str(), std::min<size_t>(room, standing.size() + 1));
  u32 size = room;
  const u32 status = ASCIIReplaceSubstr(text, find, replace, &size, out.data());
  EXPECT_TRUE(out.FrontUntouched());
  return {status, size, std::string(out.data(), strnlen(out.data(), room))};
}

TEST(AsciiUtil, AppendNodeJoinsTwoTexts) {
  astring* out = nullptr;
  AppendNode("abc", "de", &out);
  ASSERT_NE(out, nullptr);
  EXPECT_STREQ(out, "abcde");
  free(out);
  AppendNode("", "", &out);
  ASSERT_NE(out, nullptr);
  EXPECT_STREQ(out, "");
  free(out);
}

TEST(AsciiUtil, AppendNodeOfANullTextLeavesTheOutputAlone) {
  astring standing[] = "x";
  astring* out = standing;
  AppendNode(nullptr, "de", &out);
  EXPECT_EQ(out, standing);
  AppendNode("abc", nullptr, &out);
  EXPECT_EQ(out, standing);
  AppendNode("abc", "de", nullptr);
}

TEST(AsciiUtil, AppendNodeWithoutMemorySetsTheOutputToNull) {
  astring standing[] = "x";
  astring* out = standing;
  {
    const FailNthAllocation fault(1);
    AppendNode("abc", "de", &out);
  }
  EXPECT_EQ(out, nullptr);
}

TEST(AsciiUtil, DoubleQuotesAreRemovedAndTheGapsClosed) {
  astring first[] = "\"a\"b\"\"c\"";
  astring second[] = "plain";
  astring third[] = "\"\"\"";
  astring fourth[] = "\"kept\"";
  astring* strings[] = {first, nullptr, second, third, fourth};
  RemoveDQuotesInStrArr(4, strings);
  EXPECT_STREQ(first, "abc");
  EXPECT_STREQ(second, "plain");
  EXPECT_STREQ(third, "");
  EXPECT_STREQ(fourth, "\"kept\"");
  RemoveDQuotesInStrArr(0, strings);
  RemoveDQuotesInStrArr(4, nullptr);
}

TEST(AsciiUtil, AStrnicmpComparesUpToTheCount) {
  EXPECT_EQ(AStrnicmp("ABC", "abd", 2), 0);
  EXPECT_EQ(AStrnicmp("ABC", "abd", 3), -1);
  EXPECT_EQ(AStrnicmp("abd", "ABC", 3), 1);
  EXPECT_EQ(AStrnicmp("a", "b", 0), 0);
}

TEST(AsciiUtil, AStrnicmpStopsAtATerminator) {
  EXPECT_EQ(AStrnicmp("ab", "AB", 100), 0);
  EXPECT_EQ(AStrnicmp("ab", "abc", 100), -'c');
  EXPECT_EQ(AStrnicmp("abc", "ab", 100), 'c');
  EXPECT_EQ(AStrnicmp("", "", 1), 0);
}

TEST(AsciiUtil, AStrnicmpReadsNothingBehindTheCount) {
  GuardBuffer<astring> text(2);
  memcpy(text.data(), "ab", 2);
  EXPECT_EQ(AStrnicmp(text.data(), "abc", 2), 0);
  EXPECT_EQ(AStrnicmp("aBc", text.data(), 2), 0);
}

TEST(AsciiUtil, AStrnicmpFoldsLettersOnly) {
  EXPECT_EQ(AStrnicmp("AZ", "az", 2), 0);
  EXPECT_EQ(AStrnicmp("@", "`", 1), 0x40 - 0x60);
  EXPECT_EQ(AStrnicmp("[", "{", 1), 0x5B - 0x7B);
  EXPECT_EQ(AStrnicmp("_", "A", 1), '_' - 'a');
}

TEST(AsciiUtil, AStrnicmpTakesBytesAsUnsigned) {
  EXPECT_EQ(AStrnicmp("\xE9", "a", 1), 0xE9 - 0x61);
  EXPECT_EQ(AStrnicmp("\xC9", "\xE9", 1), 0xC9 - 0xE9);
}

TEST(AsciiUtil, AStrnicmpOfANullTextIsZero) {
  EXPECT_EQ(AStrnicmp(nullptr, "a", 1), 0);
  EXPECT_EQ(AStrnicmp("a", nullptr, 1), 0);
  EXPECT_EQ(AStrnicmp(nullptr, nullptr, 1), 0);
}

TEST(AsciiUtil, ReplacedSpanEndsAtTheCharacterThatCompletesTheMatch) {
  const Replaced result = Replace("abcdef", "bd", "X", 6);
  EXPECT_EQ(result.status, SM_STATUS_SUCCESS);
  EXPECT_EQ(result.text, "abXef");
  EXPECT_EQ(result.size, 6u);
}

TEST(AsciiUtil, ReplacementMayBeLongerOrEmpty) {
  EXPECT_EQ(Replace("abcdef", "cd", "12345", 10).text, "ab12345ef");
  EXPECT_EQ(Replace("abcdef", "cd", "", 5).text, "abef");
  EXPECT_EQ(Replace("abcdef", "ab", "X", 6).text, "Xcdef");
  EXPECT_EQ(Replace("abcdef", "ef", "X", 6).text, "abcdX");
  EXPECT_EQ(Replace("abc", "abc", "", 1).text, "");
}

TEST(AsciiUtil, OnlyTheFirstOccurrenceIsReplaced) {
  EXPECT_EQ(Replace("ababab", "ab", "X", 6).text, "Xabab");
  // The "a" in front begins the match, and the "b" completes it.
  EXPECT_EQ(Replace("aab", "ab", "X", 4).text, "aX");
}

TEST(AsciiUtil, TooSmallOutputIsToldTheNeededSize) {
  const Replaced result = Replace("abcdef", "bd", "X", 5, "old");
  EXPECT_EQ(result.status, SM_STATUS_SIZE_REQUIRED);
  EXPECT_EQ(result.size, 6u);
  EXPECT_EQ(result.text, "old");
  u32 size = 100;
  EXPECT_EQ(ASCIIReplaceSubstr("abcdef", "bd", "X", &size, nullptr), SM_STATUS_SIZE_REQUIRED);
  EXPECT_EQ(size, 6u);
  size = 0;
  astring out[8] = "old";
  EXPECT_EQ(ASCIIReplaceSubstr("abcdef", "bd", "X", &size, out), SM_STATUS_SIZE_REQUIRED);
  EXPECT_EQ(size, 6u);
  EXPECT_STREQ(out, "old");
}

TEST(AsciiUtil, BadArgumentsAreInvalidParameters) {
  u32 size = 100;
  astring out[100] = "old";
  EXPECT_EQ(ASCIIReplaceSubstr(nullptr, "b", "X", &size, out), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ASCIIReplaceSubstr("abc", nullptr, "X", &size, out), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ASCIIReplaceSubstr("abc", "b", nullptr, &size, out), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ASCIIReplaceSubstr("abc", "b", "X", nullptr, out), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ASCIIReplaceSubstr("abc", "", "X", &size, out), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ASCIIReplaceSubstr("", "b", "X", &size, out), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ASCIIReplaceSubstr("abc", "abcd", "X", &size, out), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(ASCIIReplaceSubstr("", "b", "X", &size, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(size, 100u);
  EXPECT_STREQ(out, "old");
}

TEST(AsciiUtil, TextIsReplacedWithinItself) {
  GuardBuffer<astring> text(9);
  memcpy(text.data(), "abcdef", 7);
  u32 size = 9;
  EXPECT_EQ(ASCIIReplaceSubstr(text.data(), "cd", "1234", &size, text.data()), SM_STATUS_SUCCESS);
  EXPECT_STREQ(text.data(), "ab1234ef");
  EXPECT_EQ(ASCIIReplaceSubstr(text.data(), "1234", "", &size, text.data()), SM_STATUS_SUCCESS);
  EXPECT_STREQ(text.data(), "abef");
}

TEST(AsciiUtil, WithoutAMatchTheStandingTextsLengthIsCopied) {
  const Replaced shorter = Replace("abcdef", "xy", "", 9, "123");
  EXPECT_EQ(shorter.status, kMinusOne);
  EXPECT_EQ(shorter.text, "abc");
  EXPECT_EQ(shorter.size, 9u);

  GuardBuffer<astring> out(9);
  memcpy(out.data(), "12345678", 9);
  u32 size = 9;
  EXPECT_EQ(ASCIIReplaceSubstr("abcdef", "fe", "", &size, out.data()), kMinusOne);
  EXPECT_EQ(memcmp(out.data(), "abcdef\0\0", 9), 0);

  const Replaced empty = Replace("abcdef", "xy", "", 9, "");
  EXPECT_EQ(empty.status, kMinusOne);
  EXPECT_EQ(empty.text, "");
}

TEST(AsciiUtil, WithoutAMatchAnUnterminatedOutputIsFilledUpToItsSize) {
  GuardBuffer<astring> out(5);
  memset(out.data(), 'o', 5);
  u32 size = 5;
  EXPECT_EQ(ASCIIReplaceSubstr("abcdef", "xy", "", &size, out.data()), kMinusOne);
  EXPECT_EQ(std::string(out.data(), 5), "abcde");
  EXPECT_TRUE(out.FrontUntouched());
}

TEST(AsciiUtil, CaseIsMappedInPlace) {
  astring text[] = "aB1z";
  EXPECT_EQ(strupr(text), text);
  EXPECT_STREQ(text, "AB1Z");
  EXPECT_EQ(strlwr(text), text);
  EXPECT_STREQ(text, "ab1z");
  EXPECT_EQ(strupr(nullptr), nullptr);
  EXPECT_EQ(strlwr(nullptr), nullptr);
}

TEST(AsciiUtil, StrToUpperCaseCountsTheCharacters) {
  const test::LocaleGuard locale("C");
  astring text[] = "aB1\xE9";
  EXPECT_EQ(strToUpperCase(text), 4u);
  EXPECT_STREQ(text, "AB1\xE9");
  EXPECT_EQ(strToUpperCase(nullptr), 0u);
}

TEST(AsciiUtil, ExportedCallsReachTheSameFunctions) {
  astring* joined = nullptr;
  PXTAppendDNode("a", "b", &joined);
  ASSERT_NE(joined, nullptr);
  EXPECT_STREQ(joined, "ab");
  free(joined);
  astring quoted[] = "\"q\"";
  astring* strings[] = {quoted};
  PXTRemoveDQuotesInStrArr(1, strings);
  EXPECT_STREQ(quoted, "q");
  EXPECT_EQ(PXTAStrnicmp("B", "a", 1), 1);
  astring out[8] = "";
  u32 size = sizeof(out);
  EXPECT_EQ(PXTASCIIReplaceSubstr("abc", "b", "X", &size, out), SM_STATUS_SUCCESS);
  EXPECT_STREQ(out, "aXc");
}

TEST(AsciiUtil, ANodeBeyond32BitsIsNullWithoutAnAllocation) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> half(u64{1} << 31, 'a');
  astring standing[] = "x";
  astring* out = standing;
  const FailNthAllocation fault(1);
  AppendNode(half.text(), half.text(), &out);
  EXPECT_FALSE(FailNthAllocation::Fired());
  EXPECT_EQ(out, nullptr);
}

TEST(AsciiUtil, AReplacementBeyond32BitsNeedsTheLargestSize) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> half(u64{1} << 31, 'a');
  u32 size = 8;
  EXPECT_EQ(ASCIIReplaceSubstr(half.text(), "a", half.text(), &size, nullptr),
            SM_STATUS_SIZE_REQUIRED);
  EXPECT_EQ(size, 0xFFFFFFFFu);
}

}  // namespace
}  // namespace qvx
