// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/code_point.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvxcs/status.h"

namespace qvx {
namespace {

using Units = std::vector<ustring>;

struct Utf8Case {
  u32 codePoint;
  std::string bytes;
};

// The first and the last code point of each length, and some between.
const std::vector<Utf8Case>& Utf8Cases() {
  static const std::vector<Utf8Case> cases = {
      {0x0, std::string(1, '\0')},
      {0x41, "A"},
      {0x7F, "\x7F"},
      {0x80, "\xC2\x80"},
      {0xE9, "\xC3\xA9"},
      {0x7FF, "\xDF\xBF"},
      {0x800, "\xE0\xA0\x80"},
      {0x20AC, "\xE2\x82\xAC"},
      {0xD800, "\xED\xA0\x80"},
      {0xDFFF, "\xED\xBF\xBF"},
      {0xFFFF, "\xEF\xBF\xBF"},
      {0x10000, "\xF0\x90\x80\x80"},
      {0x1F600, "\xF0\x9F\x98\x80"},
      {0x10FFFF, "\xF4\x8F\xBF\xBF"},
      {0x1FFFFF, "\xF7\xBF\xBF\xBF"},
      {0x200000, "\xF8\x88\x80\x80\x80"},
      {0x3FFFFFF, "\xFB\xBF\xBF\xBF\xBF"},
      {0x4000000, "\xFC\x84\x80\x80\x80\x80"},
      {0x7FFFFFFF, "\xFD\xBF\xBF\xBF\xBF\xBF"},
  };
  return cases;
}

TEST(CodePoint, EncodesEachRangeOfUtf8) {
  for (const Utf8Case& each : Utf8Cases()) {
    std::string room(8, '#');
    u32 size = 8;
    EXPECT_EQ(UCS4CharToUTF8Chars(room.data(), &size, each.codePoint), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, each.bytes.size()) << each.codePoint;
    EXPECT_EQ(room, each.bytes + std::string(8 - each.bytes.size(), '#')) << each.codePoint;
  }
}

TEST(CodePoint, EncodesIntoExactlyTheBytesNeededAndNoFewer) {
  for (const Utf8Case& each : Utf8Cases()) {
    const u32 needed = static_cast<u32>(each.bytes.size());
    std::string room(8, '#');
    u32 size = needed - 1;
    EXPECT_EQ(UCS4CharToUTF8Chars(room.data(), &size, each.codePoint), SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, needed - 1);
    EXPECT_EQ(room, std::string(8, '#'));
    size = needed;
    EXPECT_EQ(UCS4CharToUTF8Chars(room.data(), &size, each.codePoint), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, needed);
  }
}

TEST(CodePoint, AQueryGivesTheBytesNeededWhateverTheSize) {
  for (const Utf8Case& each : Utf8Cases()) {
    u32 size = 0;
    EXPECT_EQ(UCS4CharToUTF8Chars(nullptr, &size, each.codePoint), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, each.bytes.size());
  }
}

TEST(CodePoint, TheLargestCodePointHasSixBytesAndTheNextIsBad) {
  std::string room(6, '#');
  u32 size = 6;
  EXPECT_EQ(UCS4CharToUTF8Chars(room.data(), &size, 0x7FFFFFFF), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 6u);
  EXPECT_EQ(room[0], '\xFD');
  EXPECT_EQ(UCS4CharToUTF8Chars(room.data(), &size, 0x80000000), SM_STATUS_BAD_DATA);
  EXPECT_EQ(UCS4CharToUTF8Chars(nullptr, &size, 0xFFFFFFFF), SM_STATUS_BAD_DATA);
  EXPECT_EQ(size, 6u);
}

TEST(CodePoint, AnImpossibleCodePointIsBadBeforeTheRoomIsSmall) {
  astring none[1] = {'#'};
  u32 size = 0;
  EXPECT_EQ(UCS4CharToUTF8Chars(none, &size, 0x80000000), SM_STATUS_BAD_DATA);
  EXPECT_EQ(UCS4CharToXMLUTF8Chars(none, &size, nullptr, 0x80000000), SM_STATUS_BAD_DATA);
  ustring unit[1] = {'#'};
  EXPECT_EQ(UCS4CharToUTF16Chars(unit, &size, 0x110000), SM_STATUS_BAD_DATA);
  EXPECT_EQ(size, 0u);
}

TEST(CodePoint, DecodesEachRangeOfUtf8) {
  for (const Utf8Case& each : Utf8Cases()) {
    u32 codePoint = 0xAAAAAAAA;
    u32 length = 0xAAAAAAAA;
    EXPECT_EQ(UTF8CharsToUCS4Char(&codePoint, each.bytes.c_str(), &length), SM_STATUS_SUCCESS);
    EXPECT_EQ(codePoint, each.codePoint);
    EXPECT_EQ(length, each.bytes.size());
  }
}

TEST(CodePoint, ATextsEndHasLengthOne) {
  u32 codePoint = 9;
  u32 length = 9;
  EXPECT_EQ(UTF8CharsToUCS4Char(&codePoint, "", &length), SM_STATUS_SUCCESS);
  EXPECT_EQ(codePoint, 0u);
  EXPECT_EQ(length, 1u);
}

TEST(CodePoint, TheOverlongZeroIsZeroWithLengthTwo) {
  u32 codePoint = 9;
  u32 length = 9;
  EXPECT_EQ(UTF8CharsToUCS4Char(&codePoint, "\xC0\x80", &length), SM_STATUS_SUCCESS);
  EXPECT_EQ(codePoint, 0u);
  EXPECT_EQ(length, 2u);
}

TEST(CodePoint, FollowingBytesAndOverlongFormsAreNotChecked) {
  // Worked by hand: payload of the lead, then the low six bits of each byte.
  const Utf8Case cases[] = {
      {0x001, "\xC0\xC1"},                       // overlong, and 0xC1 does not continue
      {0x041, "\xC1\x41"},                       // "A" in place of a continuation
      {0x02F, "\xE0\x80\xAF"},                   // overlong "/"
      {0x02F, "\xFC\x80\x80\x80\x80\xAF"},       // the longest "/"
      {0xD83D, "\xED\xA0\xBD"},                  // a surrogate
      {0x0FFF, "\xE0\xFF\xFF"},                  // 0xFF gives six bits like any other
      {0x1FFFFF, "\xF7\xBF\xBF\xBF"},            // above the last code point of UTF-16
      {0x7FFFFFFF, "\xFD\xFF\xFF\xFF\xFF\xFF"},  // all bits
      {0x40000000, "\xFD\x80\x80\x80\x80\x80"},  // the lead's only payload bit
  };
  for (const Utf8Case& each : cases) {
    u32 codePoint = 0xAAAAAAAA;
    u32 length = 0;
    EXPECT_EQ(UTF8CharsToUCS4Char(&codePoint, each.bytes.c_str(), &length), SM_STATUS_SUCCESS);
    EXPECT_EQ(codePoint, each.codePoint);
    EXPECT_EQ(length, each.bytes.size());
  }
}

TEST(CodePoint, ALeadThatBeginsNothingIsBad) {
  for (const char* text : {"\x80xxxxx", "\xBFxxxxx", "\xFExxxxx", "\xFFxxxxx", "\x80", "\xFF"}) {
    u32 codePoint = 9;
    u32 length = 9;
    EXPECT_EQ(UTF8CharsToUCS4Char(&codePoint, text, &length), SM_STATUS_BAD_DATA) << text;
    EXPECT_EQ(codePoint, 0u);
    EXPECT_EQ(length, 9u);
  }
}

TEST(CodePoint, ATextThatEndsInsideACharacterIsBad) {
  for (const Utf8Case& each : Utf8Cases()) {
    for (size_t cut = 1; cut < each.bytes.size(); ++cut) {
      u32 codePoint = 9;
      u32 length = 9;
      const std::string start = each.bytes.substr(0, cut);
      EXPECT_EQ(UTF8CharsToUCS4Char(&codePoint, start.c_str(), &length), SM_STATUS_BAD_DATA);
      EXPECT_EQ(codePoint, 0u);
      EXPECT_EQ(length, 9u);
    }
  }
}

TEST(CodePoint, EncodesOneUnitBelowTheFirstPair) {
  for (const u32 codePoint : {0x0u, 0x41u, 0xD800u, 0xDFFFu, 0xFFFFu}) {
    Units room(2, 0xEEEE);
    u32 size = 1;
    EXPECT_EQ(UCS4CharToUTF16Chars(room.data(), &size, codePoint), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(room, (Units{static_cast<ustring>(codePoint), 0xEEEE}));
  }
}

TEST(CodePoint, APairIsFormedWithoutSubtracting) {
  struct {
    u32 codePoint;
    ustring high;
    ustring low;
  } const cases[] = {
      {0x10000, 0xD840, 0xDC00},   // the bit 0x10000 is 0x40 in the high half
      {0x103FF, 0xD840, 0xDFFF},   // all ten low bits
      {0x1F600, 0xD87D, 0xDE00},   // 0x1F400 >> 10 is 0x7D
      {0xFFFFF, 0xDBFF, 0xDFFF},   // all twenty bits that are kept
      {0x100000, 0xD800, 0xDC00},  // the twenty-first bit is lost
      {0x10FFFF, 0xD83F, 0xDFFF},
  };
  for (const auto& each : cases) {
    Units room(3, 0xEEEE);
    u32 size = 2;
    EXPECT_EQ(UCS4CharToUTF16Chars(room.data(), &size, each.codePoint), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(room, (Units{each.high, each.low, 0xEEEE})) << each.codePoint;
  }
}

TEST(CodePoint, TheLastCodePointOfUtf16Is10FFFF) {
  u32 size = 7;
  EXPECT_EQ(UCS4CharToUTF16Chars(nullptr, &size, 0x10FFFF), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 2u);
  EXPECT_EQ(UCS4CharToUTF16Chars(nullptr, &size, 0x110000), SM_STATUS_BAD_DATA);
  EXPECT_EQ(UCS4CharToUTF16Chars(nullptr, &size, 0xFFFFFFFF), SM_STATUS_BAD_DATA);
  EXPECT_EQ(size, 2u);
}

TEST(CodePoint, TooFewUnitsLeaveRoomAndSizeAlone) {
  Units room(2, 0xEEEE);
  u32 size = 0;
  EXPECT_EQ(UCS4CharToUTF16Chars(room.data(), &size, 0x41), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(UCS4CharToUTF16Chars(room.data(), &size, 0x10000), SM_STATUS_BUFFER_TOO_SMALL);
  size = 1;
  EXPECT_EQ(UCS4CharToUTF16Chars(room.data(), &size, 0x10000), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 1u);
  EXPECT_EQ(room, (Units{0xEEEE, 0xEEEE}));
}

TEST(CodePoint, AQueryGivesTheUnitsNeeded) {
  u32 size = 0;
  EXPECT_EQ(UCS4CharToUTF16Chars(nullptr, &size, 0xFFFF), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 1u);
  EXPECT_EQ(UCS4CharToUTF16Chars(nullptr, &size, 0x10000), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 2u);
}

TEST(CodePoint, DecodesUnitsAndPairs) {
  struct {
    ustring units[2];
    u32 codePoint;
  } const cases[] = {
      {{0, 0xDC00}, 0},
      {{0xD7FF, 0xDC00}, 0xD7FF},
      {{0xE000, 0xDC00}, 0xE000},
      {{0xFFFF, 0xDC00}, 0xFFFF},
      {{0xD800, 0xDC00}, 0x10000},
      {{0xD83D, 0xDE00}, 0x1F600},
      {{0xDBFF, 0xDFFF}, 0x10FFFF},
      {{0xD840, 0xDC00}, 0x20000},  // what the encoder makes of 0x10000 comes back as another
  };
  for (const auto& each : cases) {
    u32 codePoint = 0xAAAAAAAA;
    EXPECT_EQ(UTF16CharsToUCS4Char(&codePoint, each.units), SM_STATUS_SUCCESS);
    EXPECT_EQ(codePoint, each.codePoint);
  }
}

TEST(CodePoint, AnUnpairedSurrogateIsStoredAndBad) {
  const ustring cases[][2] = {{0xD800, 0},      {0xDBFF, 'a'},    {0xD800, 0xDBFF},
                              {0xD800, 0xE000}, {0xDC00, 0xD800}, {0xDFFF, 0xDC00}};
  for (const auto& units : cases) {
    u32 codePoint = 0xAAAAAAAA;
    EXPECT_EQ(UTF16CharsToUCS4Char(&codePoint, units), SM_STATUS_BAD_DATA);
    EXPECT_EQ(codePoint, units[0]);
  }
}

struct EntityCase {
  u32 codePoint;
  std::string entity;
};
const std::vector<EntityCase>& EntityCases() {
  static const std::vector<EntityCase> cases = {
      {0x22, "&quot;"}, {0x26, "&amp;"}, {0x27, "&apos;"}, {0x3C, "&lt;"}, {0x3E, "&gt;"}};
  return cases;
}

TEST(CodePoint, AnEntityCarriesANulBeyondTheSize) {
  for (const EntityCase& each : EntityCases()) {
    std::string room(8, '#');
    u32 size = static_cast<u32>(each.entity.size());
    booln escaped = 7;
    EXPECT_EQ(UCS4CharToXMLUTF8Chars(room.data(), &size, &escaped, each.codePoint),
              SM_STATUS_SUCCESS);
    EXPECT_EQ(size, each.entity.size());
    EXPECT_EQ(escaped, 1);
    EXPECT_EQ(room, each.entity + '\0' + std::string(7 - each.entity.size(), '#'));
  }
}

TEST(CodePoint, AnEntityOneByteTooLongLeavesAllAlone) {
  for (const EntityCase& each : EntityCases()) {
    std::string room(8, '#');
    const u32 small = static_cast<u32>(each.entity.size()) - 1;
    u32 size = small;
    booln escaped = 7;
    EXPECT_EQ(UCS4CharToXMLUTF8Chars(room.data(), &size, &escaped, each.codePoint),
              SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, small);
    EXPECT_EQ(escaped, 7);
    EXPECT_EQ(room, std::string(8, '#'));
  }
}

TEST(CodePoint, AnEntityIsMeasuredWithoutAnOutput) {
  for (const EntityCase& each : EntityCases()) {
    u32 size = 0;
    booln escaped = 7;
    EXPECT_EQ(UCS4CharToXMLUTF8Chars(nullptr, &size, &escaped, each.codePoint), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, each.entity.size());
    EXPECT_EQ(escaped, 1);
  }
}

TEST(CodePoint, EveryOtherCodePointIsPlainUtf8AndNotEscaped) {
  for (const Utf8Case& each : Utf8Cases()) {
    std::string room(8, '#');
    u32 size = 6;
    booln escaped = 7;
    EXPECT_EQ(UCS4CharToXMLUTF8Chars(room.data(), &size, &escaped, each.codePoint),
              SM_STATUS_SUCCESS);
    EXPECT_EQ(size, each.bytes.size());
    EXPECT_EQ(escaped, 0);
    EXPECT_EQ(room, each.bytes + std::string(8 - each.bytes.size(), '#'));
  }
}

TEST(CodePoint, OnlyTheFiveCharactersOfAsciiAreEscaped) {
  std::string found;
  for (u32 codePoint = 0; codePoint < 0x200; ++codePoint) {
    if (FindXmlEntity(codePoint) != nullptr) found += static_cast<char>(codePoint);
  }
  EXPECT_EQ(found, "\"&'<>");
  EXPECT_EQ(found, kXmlCharacters);
}

TEST(CodePoint, ThePlainCoderClearsTheFlagBeforeItFails) {
  astring room[1] = {'#'};
  u32 size = 0;
  booln escaped = 1;
  EXPECT_EQ(UCS4CharToXMLUTF8Chars(room, &size, &escaped, 'a'), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(escaped, 0);
}

TEST(CodePoint, TheFlagMayBeNull) {
  astring room[8];
  u32 size = 8;
  EXPECT_EQ(UCS4CharToXMLUTF8Chars(room, &size, nullptr, '<'), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(UCS4CharToXMLUTF8Chars(room, &size, nullptr, 'a'), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 1u);
}

TEST(CodePoint, NullArgumentsAreInvalid) {
  astring bytes[8];
  ustring units[2] = {'a', 0};
  u32 number = 5;
  booln escaped = 7;
  EXPECT_EQ(UCS4CharToUTF8Chars(bytes, nullptr, 'a'), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UTF8CharsToUCS4Char(nullptr, "a", &number), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UTF8CharsToUCS4Char(&number, nullptr, &number), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UTF8CharsToUCS4Char(&number, "a", nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UCS4CharToUTF16Chars(units, nullptr, 'a'), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UTF16CharsToUCS4Char(nullptr, units), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UTF16CharsToUCS4Char(&number, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UCS4CharToXMLUTF8Chars(bytes, nullptr, &escaped, '<'), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(number, 5u);
  EXPECT_EQ(escaped, 7);
}

}  // namespace
}  // namespace qvx
