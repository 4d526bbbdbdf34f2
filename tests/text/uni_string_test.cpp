// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/uni_string.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "qvxcs/uni_string.h"

#include "tests/reference/text_model.h"
#include "tests/support/guard_buffer.h"
#include "tests/support/long_text.h"
#include "text/unit_scan.h"

namespace qvx {
namespace {

using Units = std::vector<ustring>;

constexpr ustring kMark = 0xEEEE;

// A text of the ASCII characters given, terminator included.
Units Text(const char* characters) {
  Units units;
  for (; *characters != '\0'; ++characters) {
    units.push_back(static_cast<ustring>(*characters));
  }
  units.push_back(0);
  return units;
}

// The text first in a buffer of `size` units whose rest is marked.
Units Marked(const char* characters, size_t size) {
  Units units = Text(characters);
  units.resize(size, kMark);
  return units;
}

TEST(UniString, StrlenCountsUnitsBeforeTheTerminator) {
  EXPECT_EQ(Uni_strlen(Text("").data()), 0u);
  EXPECT_EQ(Uni_strlen(Text("abc").data()), 3u);
  const ustring pair[] = {0xD83D, 0xDE00, 0};
  EXPECT_EQ(Uni_strlen(pair), 2u);
}

// Only where an address has more than 32 bits is there such a text.
TEST(UniString, AUnitCountBeyond32BitsIsTheLargestThatASizeHolds) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<ustring> text((u64{1} << 32) + 3, 'a');
  EXPECT_EQ(UnitCount(text.text()), (u64{1} << 32) + 3);
  EXPECT_EQ(PXTUniStrlen(text.text()), 0xFFFFFFFFu);
}

TEST(UniString, StrcpyCopiesTheTerminatorAndNothingBehindIt) {
  Units room(5, kMark);
  Uni_strcpy(room.data(), Text("abc").data());
  EXPECT_EQ(room, (Units{'a', 'b', 'c', 0, kMark}));
  Uni_strcpy(room.data(), Text("").data());
  EXPECT_EQ(room, (Units{0, 'b', 'c', 0, kMark}));
}

TEST(UniString, StrncpyLeavesALongerSourceUnterminated) {
  Units room(4, kMark);
  Uni_strncpy(room.data(), Text("abc").data(), 2);
  EXPECT_EQ(room, (Units{'a', 'b', kMark, kMark}));
}

TEST(UniString, StrncpyNeitherPadsNorTerminates) {
  Units room(5, kMark);
  Uni_strncpy(room.data(), Text("a").data(), 4);
  EXPECT_EQ(room, (Units{'a', 0, kMark, kMark, kMark}));
  Units exact(4, kMark);
  Uni_strncpy(exact.data(), Text("abc").data(), 3);
  EXPECT_EQ(exact, (Units{'a', 'b', 'c', kMark}));
}

TEST(UniString, StrncpyWithCountZeroDoesNothing) {
  Units room(2, kMark);
  Uni_strncpy(room.data(), Text("a").data(), 0);
  EXPECT_EQ(room, (Units{kMark, kMark}));
}

TEST(UniString, StrncpyTakesItsCountOverTheWholeUnsignedRange) {
  Units room(4, kMark);
  Uni_strncpy(room.data(), Text("ab").data(), 0xFFFFFFFF);
  EXPECT_EQ(room, (Units{'a', 'b', 0, kMark}));
}

TEST(UniString, StrcatAppendsBehindTheText) {
  Units room = Marked("ab", 6);
  Uni_strcat(room.data(), Text("cd").data());
  EXPECT_EQ(room, (Units{'a', 'b', 'c', 'd', 0, kMark}));
  Uni_strcat(room.data(), Text("").data());
  EXPECT_EQ(room, (Units{'a', 'b', 'c', 'd', 0, kMark}));
}

TEST(UniString, StrncatWithCountTwoAppendsTwoUnitsAndATerminator) {
  Units room = Marked("x", 6);
  Uni_strncat(room.data(), Text("abcd").data(), 2);
  EXPECT_EQ(room, (Units{'x', 'a', 'b', 0, kMark, kMark}));
}

TEST(UniString, StrncatStopsAtTheSourcesTerminator) {
  Units room = Marked("x", 5);
  Uni_strncat(room.data(), Text("ab").data(), 0xFFFFFFFF);
  EXPECT_EQ(room, (Units{'x', 'a', 'b', 0, kMark}));
}

TEST(UniString, StrncatWithCountZeroDoesNotEvenLookForTheEnd) {
  Units room(3, kMark);  // no terminator to find
  Uni_strncat(room.data(), Text("ab").data(), 0);
  EXPECT_EQ(room, (Units{kMark, kMark, kMark}));
}

TEST(UniString, StrcmpIsNeverNegative) {
  EXPECT_EQ(PXTUniStrcmp(Text("a").data(), Text("b").data()), 65535);
  EXPECT_EQ(PXTUniStrcmp(Text("b").data(), Text("a").data()), 1);
  EXPECT_EQ(PXTUniStrcmp(Text("a").data(), Text("a").data()), 0);
}

TEST(UniString, StrcmpComparesTheTerminatorToo) {
  EXPECT_EQ(Uni_strcmp(Text("").data(), Text("").data()), 0);
  EXPECT_EQ(Uni_strcmp(Text("ab").data(), Text("a").data()), 'b');
  EXPECT_EQ(Uni_strcmp(Text("a").data(), Text("ab").data()), 65536 - 'b');
}

TEST(UniString, StrcmpTakesUnitsAsUnsigned) {
  const ustring high[] = {0xFFFF, 0};
  const ustring low[] = {0x0001, 0};
  EXPECT_EQ(Uni_strcmp(high, low), 0xFFFE);
  EXPECT_EQ(Uni_strcmp(low, high), 2);
}

TEST(UniString, MemcmpComparesBeyondTerminators) {
  const ustring first[] = {'a', 0, 'b'};
  const ustring second[] = {'a', 0, 'c'};
  EXPECT_EQ(Uni_memcmp(first, second, 0), 0);
  EXPECT_EQ(Uni_memcmp(first, second, 2), 0);
  EXPECT_EQ(Uni_memcmp(first, second, 3), 65535);
  EXPECT_EQ(Uni_memcmp(second, first, 3), 1);
}

TEST(UniString, StrncasecmpFoldsAsciiAndIsSigned) {
  const Units first = Text("abc");
  const Units second = Text("ABD");
  EXPECT_EQ(Uni_strncasecmp(first.data(), second.data(), 3), -1);
  EXPECT_EQ(Uni_strncasecmp(second.data(), first.data(), 3), 1);
  EXPECT_EQ(Uni_strncasecmp(first.data(), second.data(), 2), 0);
}

TEST(UniString, StrncasecmpFoldsOnlyTheTwentySixLetters) {
  // The neighbours of a-z, and a letter with an accent in both cases.
  const ustring pairs[][2] = {{0x60, 0x40}, {0x7B, 0x5B}, {0xE9, 0xC9}};
  for (const auto& pair : pairs) {
    const ustring lower[] = {pair[0], 0};
    const ustring upper[] = {pair[1], 0};
    EXPECT_EQ(Uni_strncasecmp(lower, upper, 1), 0x20) << pair[0];
  }
  EXPECT_EQ(Uni_strncasecmp(Text("az").data(), Text("AZ").data(), 2), 0);
}

TEST(UniString, StrncasecmpWithACountBelowOneIsZero) {
  EXPECT_EQ(Uni_strncasecmp(Text("a").data(), Text("b").data(), 0), 0);
  EXPECT_EQ(Uni_strncasecmp(Text("a").data(), Text("b").data(), -1), 0);
}

TEST(UniString, StrncasecmpStopsAtATerminator) {
  const ustring first[] = {'a', 0, 'x'};
  const ustring second[] = {'A', 0, 'y'};
  EXPECT_EQ(Uni_strncasecmp(first, second, 3), 0);
  EXPECT_EQ(Uni_strncasecmp(Text("a").data(), Text("ab").data(), 9), -'B');
  const ustring highest[] = {0xFFFF, 0};
  EXPECT_EQ(Uni_strncasecmp(highest, Text("").data(), 1), 65535);
}

TEST(UniString, StrchrFindsTheFirstOccurrenceOrTheTerminator) {
  const Units text = Text("abcb");
  EXPECT_EQ(Uni_strchr(text.data(), 'b'), &text[1]);
  EXPECT_EQ(Uni_strchr(text.data(), 0), &text[4]);
  EXPECT_EQ(Uni_strchr(text.data(), 'x'), nullptr);
  EXPECT_EQ(Uni_strchr(Text("").data(), 'x'), nullptr);
}

TEST(UniString, StrstrOfAnEmptyPatternIsTheStart) {
  const Units text = Text("abc");
  EXPECT_EQ(Uni_strstr(text.data(), Text("").data()), text.data());
  const Units empty = Text("");
  EXPECT_EQ(Uni_strstr(empty.data(), Text("").data()), empty.data());
}

TEST(UniString, StrstrFindsTheFirstMatch) {
  const Units text = Text("aabaab");
  EXPECT_EQ(Uni_strstr(text.data(), Text("ab").data()), &text[1]);
  EXPECT_EQ(Uni_strstr(text.data(), Text("baab").data()), &text[2]);
  EXPECT_EQ(Uni_strstr(text.data(), Text("aabaab").data()), text.data());
}

TEST(UniString, StrstrOfAnAbsentOrLongerPatternIsNull) {
  const Units text = Text("abc");
  EXPECT_EQ(Uni_strstr(text.data(), Text("bd").data()), nullptr);
  EXPECT_EQ(Uni_strstr(text.data(), Text("cd").data()), nullptr);
  EXPECT_EQ(Uni_strstr(text.data(), Text("abcd").data()), nullptr);
  EXPECT_EQ(Uni_strstr(Text("").data(), Text("a").data()), nullptr);
}

TEST(UniString, StrspnMeasuresTheRunOfTheSet) {
  EXPECT_EQ(Uni_strspn(Text("abacd").data(), Text("ba").data()), 3u);
  EXPECT_EQ(Uni_strspn(Text("ab").data(), Text("ab").data()), 2u);
  EXPECT_EQ(Uni_strspn(Text("xab").data(), Text("ab").data()), 0u);
  EXPECT_EQ(Uni_strspn(Text("").data(), Text("ab").data()), 0u);
  EXPECT_EQ(Uni_strspn(Text("ab").data(), Text("").data()), 0u);
}

TEST(UniString, StrcspnMeasuresTheRunOutsideTheSet) {
  EXPECT_EQ(Uni_strcspn(Text("abxcy").data(), Text("yx").data()), 2u);
  EXPECT_EQ(Uni_strcspn(Text("xab").data(), Text("x").data()), 0u);
  EXPECT_EQ(Uni_strcspn(Text("abc").data(), Text("x").data()), 3u);
  EXPECT_EQ(Uni_strcspn(Text("abc").data(), Text("").data()), 3u);
  EXPECT_EQ(Uni_strcspn(Text("").data(), Text("x").data()), 0u);
}

TEST(UniString, StrpbrkFindsTheFirstUnitOfTheSet) {
  const Units text = Text("abxcy");
  EXPECT_EQ(Uni_strpbrk(text.data(), Text("yx").data()), &text[2]);
  EXPECT_EQ(Uni_strpbrk(text.data(), Text("z").data()), nullptr);
  EXPECT_EQ(Uni_strpbrk(text.data(), Text("").data()), nullptr);
  EXPECT_EQ(Uni_strpbrk(Text("").data(), Text("x").data()), nullptr);
}

TEST(UniString, StrtokSplitsAtRunsOfDelimiters) {
  Units text = Text(",;ab,;c,");
  const Units delimiters = Text(",;");
  EXPECT_EQ(Uni_strtok(text.data(), delimiters.data()), &text[2]);
  EXPECT_EQ(Uni_strtok(nullptr, delimiters.data()), &text[6]);
  EXPECT_EQ(Uni_strtok(nullptr, delimiters.data()), nullptr);
  EXPECT_EQ(Uni_strtok(nullptr, delimiters.data()), nullptr);
  EXPECT_EQ(text, (Units{',', ';', 'a', 'b', 0, ';', 'c', 0, 0}));
}

TEST(UniString, StrtokWithoutDelimitersInTheTextGivesItOnce) {
  Units text = Text("abc");
  EXPECT_EQ(Uni_strtok(text.data(), Text(",").data()), text.data());
  EXPECT_EQ(Uni_strtok(nullptr, Text(",").data()), nullptr);
  EXPECT_EQ(text, Text("abc"));
}

TEST(UniString, StrtokOfDelimitersAloneForgetsTheSplitBefore) {
  Units before = Text("a,b");
  Units text = Text(",,");
  EXPECT_EQ(Uni_strtok(before.data(), Text(",").data()), before.data());
  EXPECT_EQ(Uni_strtok(text.data(), Text(",").data()), nullptr);
  EXPECT_EQ(Uni_strtok(nullptr, Text(",").data()), nullptr);
  EXPECT_EQ(text, Text(",,"));
}

TEST(UniString, StrtokGivesNullBeforeAnyTextWasNamed) {
  EXPECT_EQ(Uni_strtok(nullptr, Text(",").data()), nullptr);
}

TEST(UniString, StrtokTakesOtherDelimitersEachCall) {
  Units text = Text("a,b;c");
  EXPECT_EQ(Uni_strtok(text.data(), Text(",").data()), &text[0]);
  EXPECT_EQ(Uni_strtok(nullptr, Text(";").data()), &text[2]);
  EXPECT_EQ(Uni_strtok(nullptr, Text(",").data()), &text[4]);
}

TEST(UniString, StrtokKeepsOnePositionForAllItsNames) {
  Units text = Text("a,b,c");
  EXPECT_EQ(PXTUniStrtok(text.data(), Text(",").data()), &text[0]);
  EXPECT_EQ(UniStrtok(nullptr, Text(",").data()), &text[2]);
  EXPECT_EQ(Uni_strtok(nullptr, Text(",").data()), &text[4]);
}

TEST(UniString, StrsetOverwritesUpToTheTerminator) {
  // Odd and even lengths, from an even and an odd place in the buffer.
  for (u32 start = 0; start < 2; ++start) {
    for (u32 length = 0; length < 6; ++length) {
      Units room(9, kMark);
      Units expected(9, kMark);
      for (u32 at = 0; at < length; ++at) {
        room[start + at] = 'a';
        expected[start + at] = 0xABCD;
      }
      room[start + length] = expected[start + length] = 0;
      EXPECT_EQ(Uni_strset(&room[start], 0xABCD), &room[start]);
      EXPECT_EQ(room, expected) << start << ' ' << length;
    }
  }
}

TEST(UniString, StrsetWithZeroEmptiesTheWholeText) {
  Units room = Marked("abc", 5);
  Uni_strset(room.data(), 0);
  EXPECT_EQ(room, (Units{0, 0, 0, 0, kMark}));
}

TEST(UniString, StrnsetWritesBeyondTheTerminator) {
  Units room = Marked("ab", 7);
  Uni_strnset(room.data(), 'x', 5);
  EXPECT_EQ(room, (Units{'x', 'x', 'x', 'x', 'x', kMark, kMark}));
}

TEST(UniString, StrnsetWithAShorterCountLeavesTheRest) {
  Units room = Text("abc");
  Uni_strnset(room.data(), 'x', 0);
  EXPECT_EQ(room, Text("abc"));
  Uni_strnset(room.data(), 'x', 2);
  EXPECT_EQ(room, Text("xxc"));
}

TEST(UniString, StrrevReversesInPlace) {
  const char* const cases[][2] = {
      {"", ""}, {"a", "a"}, {"ab", "ba"}, {"abc", "cba"}, {"abcd", "dcba"}};
  for (const auto& [text, reversed] : cases) {
    Units room = Marked(text, 7);
    EXPECT_EQ(Uni_strrev(room.data()), room.data());
    EXPECT_EQ(room, Marked(reversed, 7));
  }
}

TEST(UniString, StrrevSwapsTheHalvesOfAPair) {
  Units room = {0xD83D, 0xDE00, 0};
  Uni_strrev(room.data());
  EXPECT_EQ(room, (Units{0xDE00, 0xD83D, 0}));
}

// Copies a text to the very end of the readable memory.
class AtTheEdge {
 public:
  explicit AtTheEdge(const Units& units) : room_(units.size()) {
    for (size_t at = 0; at < units.size(); ++at) {
      room_[at] = units[at];
    }
  }
  ustring* data() { return room_.data(); }

 private:
  test::GuardBuffer<ustring> room_;
};

TEST(UniString, NothingIsReadBehindATerminator) {
  AtTheEdge text(Text("abcabd"));
  AtTheEdge same(Text("abcabd"));
  AtTheEdge longer(Text("abcabda"));
  AtTheEdge none(Text("x"));
  EXPECT_EQ(Uni_strlen(text.data()), 6u);
  EXPECT_EQ(Uni_strcmp(text.data(), same.data()), 0);
  EXPECT_EQ(Uni_strcmp(text.data(), longer.data()), 65536 - 'a');
  EXPECT_EQ(Uni_strncasecmp(text.data(), same.data(), 99), 0);
  EXPECT_EQ(Uni_strchr(text.data(), 'x'), nullptr);
  EXPECT_EQ(Uni_strstr(text.data(), none.data()), nullptr);
  EXPECT_EQ(Uni_strstr(text.data(), longer.data()), nullptr);
  EXPECT_EQ(Uni_strspn(text.data(), same.data()), 6u);
  EXPECT_EQ(Uni_strcspn(text.data(), none.data()), 6u);
  EXPECT_EQ(Uni_strpbrk(text.data(), none.data()), nullptr);
  EXPECT_EQ(Uni_strtok(text.data(), none.data()), text.data());
  EXPECT_EQ(Uni_strset(text.data(), 'y'), text.data());
  EXPECT_EQ(Uni_strrev(text.data()), text.data());
}

TEST(UniString, CountedCopiesReadNoUnitBehindTheirCount) {
  AtTheEdge source({'a', 'b'});  // no terminator
  Units room(4, kMark);
  Uni_strncpy(room.data(), source.data(), 2);
  EXPECT_EQ(room, (Units{'a', 'b', kMark, kMark}));
  room[0] = 0;
  Uni_strncat(room.data(), source.data(), 2);
  EXPECT_EQ(room, (Units{'a', 'b', 0, kMark}));
  EXPECT_EQ(Uni_memcmp(room.data(), source.data(), 2), 0);
  EXPECT_EQ(Uni_strncasecmp(room.data(), source.data(), 2), 0);
}

TEST(UniString, ResultsEndAtTheLastUnitOfTheirRoom) {
  test::GuardBuffer<ustring> room(4);
  Uni_strcpy(room.data(), Text("abc").data());
  Uni_strcpy(room.data(), Text("a").data());
  Uni_strcat(room.data(), Text("bc").data());
  Uni_strcpy(room.data(), Text("a").data());
  Uni_strncat(room.data(), Text("bcdef").data(), 2);
  EXPECT_EQ(Uni_strcmp(room.data(), Text("abc").data()), 0);
  Uni_strncpy(room.data(), Text("wxyz").data(), 4);
  EXPECT_EQ(Uni_memcmp(room.data(), Text("wxyz").data(), 4), 0);
  Uni_strnset(room.data(), 'n', 4);
  EXPECT_EQ(Uni_memcmp(room.data(), Text("nnnn").data(), 4), 0);
  EXPECT_TRUE(room.FrontUntouched());
}

// Every second name and every exported name does what its routine does.
struct Names {
  decltype(&Uni_strlen) strlen;
  decltype(&Uni_strcpy) strcpy;
  decltype(&Uni_strncpy) strncpy;
  decltype(&Uni_strcat) strcat;
  decltype(&Uni_strncat) strncat;
  decltype(&Uni_strcmp) strcmp;
  decltype(&Uni_strchr) strchr;
  decltype(&Uni_strstr) strstr;
  decltype(&Uni_strspn) strspn;
  decltype(&Uni_strcspn) strcspn;
  decltype(&Uni_strtok) strtok;
  decltype(&Uni_strset) strset;
  decltype(&Uni_strnset) strnset;
  decltype(&Uni_strrev) strrev;
};

void ExpectTheFamily(const Names& names) {
  Units room(12, kMark);
  names.strcpy(room.data(), Text("ab").data());
  names.strcat(room.data(), Text(",cd").data());
  EXPECT_EQ(room, Marked("ab,cd", 12));
  names.strncat(room.data(), Text("efg").data(), 1);
  EXPECT_EQ(room, Marked("ab,cde", 12));
  EXPECT_EQ(names.strlen(room.data()), 6u);
  EXPECT_EQ(names.strcmp(room.data(), Text("ab,cdf").data()), 65535);
  EXPECT_EQ(names.strchr(room.data(), 'c'), &room[3]);
  EXPECT_EQ(names.strstr(room.data(), Text("de").data()), &room[4]);
  EXPECT_EQ(names.strspn(room.data(), Text("bxa").data()), 2u);
  EXPECT_EQ(names.strcspn(room.data(), Text("d").data()), 4u);
  EXPECT_EQ(names.strtok(room.data(), Text(",").data()), &room[0]);
  EXPECT_EQ(names.strtok(nullptr, Text(",").data()), &room[3]);
  EXPECT_EQ(names.strrev(&room[3]), &room[3]);
  EXPECT_EQ(names.strcmp(&room[3], Text("edc").data()), 0);
  names.strncpy(&room[3], Text("xyz").data(), 2);
  EXPECT_EQ(names.strcmp(&room[3], Text("xyc").data()), 0);
  names.strnset(&room[3], 'n', 1);
  EXPECT_EQ(names.strcmp(&room[3], Text("nyc").data()), 0);
  EXPECT_EQ(names.strset(room.data(), 's'), room.data());
  EXPECT_EQ(names.strcmp(room.data(), Text("ss").data()), 0);
}

TEST(UniString, TheSecondNamesAreTheSameFamily) {
  ExpectTheFamily({&UniStrlen, &UniStrcpy, &UniStrncpy, &UniStrcat, &UniStrncat, &UniStrcmp,
                   &UniStrchr, &UniStrstr, &UniStrspn, &UniStrcspn, &UniStrtok, &UniStrset,
                   &UniStrnset, &UniStrrev});
}

TEST(UniString, TheExportedNamesAreTheSameFamily) {
  ExpectTheFamily({&PXTUniStrlen, &PXTUniStrcpy, &PXTUniStrncpy, &PXTUniStrcat, &PXTUniStrncat,
                   &PXTUniStrcmp, &PXTUniStrchr, &PXTUniStrstr, &PXTUniStrspn, &PXTUniStrcspn,
                   &PXTUniStrtok, &PXTUniStrset, &PXTUniStrnset, &PXTUniStrrev});
}

// The same through the standard library's strings of 16-bit characters.
std::u16string Random(test::HostileTexts* texts, u32 longest) {
  static constexpr char16_t kUnits[] = {u'a', u'b', u'A', u'B', u'z', 0xD83D, 0xDE00, 0xFFFF};
  std::u16string text(texts->Below(longest + 1), u' ');
  for (char16_t& unit : text) {
    unit = kUnits[texts->Below(8)];
  }
  return text;
}

Units Plain(const std::u16string& text) {
  Units units(text.begin(), text.end());
  units.push_back(0);
  return units;
}

char16_t Upper(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
}

TEST(UniString, HostileTextsAreSearchedAsTheStandardLibraryDoes) {
  test::HostileTexts texts(7);
  for (u32 input = 0; input < 5000; ++input) {
    SCOPED_TRACE(input);
    const std::u16string text = Random(&texts, 8);
    const std::u16string other = Random(&texts, 3);
    AtTheEdge first(Plain(text));
    AtTheEdge second(Plain(other));
    const auto place = [&](size_t found) {
      return found == std::u16string::npos ? nullptr : first.data() + found;
    };
    const auto run = [&](size_t found) {
      return found == std::u16string::npos ? text.size() : found;
    };
    ASSERT_EQ(Uni_strlen(first.data()), text.size());
    ASSERT_EQ(Uni_strcmp(first.data(), second.data()) == 0, text == other);
    ASSERT_GE(Uni_strcmp(first.data(), second.data()), 0);
    ASSERT_EQ(Uni_strstr(first.data(), second.data()), place(text.find(other)));
    ASSERT_EQ(Uni_strspn(first.data(), second.data()), run(text.find_first_not_of(other)));
    ASSERT_EQ(Uni_strcspn(first.data(), second.data()), run(text.find_first_of(other)));
    ASSERT_EQ(Uni_strpbrk(first.data(), second.data()), place(text.find_first_of(other)));
    ASSERT_EQ(Uni_strchr(first.data(), 'b'), place(text.find(u'b')));
    const u32 count = texts.Below(5);
    s32 difference = 0;
    for (u32 at = 0; at < count && difference == 0 && at <= text.size() && at <= other.size();
         ++at) {
      difference = Upper(text.c_str()[at]) - Upper(other.c_str()[at]);
    }
    ASSERT_EQ(Uni_strncasecmp(first.data(), second.data(), static_cast<s32>(count)), difference);
  }
}

TEST(UniString, HostileTextsAreWrittenAsTheStandardLibraryDoes) {
  test::HostileTexts texts(8);
  for (u32 input = 0; input < 5000; ++input) {
    SCOPED_TRACE(input);
    const std::u16string text = Random(&texts, 6);
    const std::u16string other = Random(&texts, 6);
    const u32 count = texts.Below(8);
    AtTheEdge source(Plain(other));
    Units room(16, kMark);
    const auto expect = [&](const Units& start) {
      Units expected(16, kMark);
      std::copy(start.begin(), start.end(), expected.begin());
      ASSERT_EQ(room, expected);
      room = Units(16, kMark);
    };
    Uni_strcpy(room.data(), Plain(text).data());
    Uni_strcat(room.data(), source.data());
    ASSERT_NO_FATAL_FAILURE(expect(Plain(text + other)));
    Uni_strcpy(room.data(), Plain(text).data());
    Uni_strncat(room.data(), source.data(), count);
    ASSERT_NO_FATAL_FAILURE(expect(Plain(text + other.substr(0, count))));
    Units copied = Plain(other);
    if (copied.size() > count) copied.resize(count);
    Uni_strncpy(room.data(), source.data(), count);
    ASSERT_NO_FATAL_FAILURE(expect(copied));
    Uni_strcpy(room.data(), Plain(text).data());
    Uni_strrev(room.data());
    ASSERT_NO_FATAL_FAILURE(expect(Plain({text.rbegin(), text.rend()})));
    Uni_strcpy(room.data(), Plain(text).data());
    Uni_strset(room.data(), 0xDC00);
    ASSERT_NO_FATAL_FAILURE(expect(Plain(std::u16string(text.size(), 0xDC00))));
  }
}

TEST(UniString, HostileTextsAreSplitIntoTheirTokens) {
  test::HostileTexts texts(9);
  for (u32 input = 0; input < 5000; ++input) {
    const std::u16string text = Random(&texts, 10);
    const std::u16string set = Random(&texts, 3);
    std::vector<std::u16string> expected(1);
    for (const char16_t unit : text) {
      if (set.find(unit) == std::u16string::npos) {
        expected.back() += unit;
      } else {
        expected.emplace_back();
      }
    }
    std::erase(expected, std::u16string());
    AtTheEdge split(Plain(text));
    AtTheEdge delimiters(Plain(set));
    std::vector<std::u16string> tokens;
    for (const ustring* token = Uni_strtok(split.data(), delimiters.data()); token != nullptr;
         token = Uni_strtok(nullptr, delimiters.data())) {
      tokens.emplace_back(token, token + Uni_strlen(token));
    }
    ASSERT_EQ(tokens, expected) << input;
  }
}

}  // namespace
}  // namespace qvx
