// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/transcode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "qvxcs/status.h"
#include "qvxcs/transcode.h"

#include "tests/reference/text_model.h"
#include "tests/support/guard_buffer.h"
#include "tests/support/long_text.h"

namespace qvx {
namespace {

using Units = std::vector<ustring>;

constexpr ustring kMark = 0xEEEE;
constexpr u32 kRoom = 64;

// The UTF-8 of a 16-bit text, by a size query and a conversion into exactly that room.
std::string Utf8Of(const ustring* text) {
  u32 needed = 0;
  if (UCS2StrToUTF8Str(nullptr, &needed, text) != SM_STATUS_SUCCESS) return "(failed)";
  std::string room(needed, '#');
  u32 size = needed;
  EXPECT_EQ(UCS2StrToUTF8Str(room.data(), &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, needed);
  EXPECT_EQ(room.back(), '\0');
  room.pop_back();
  return room;
}

// The units of a UTF-8 text, its terminator included.
Units UnitsOf(const astring* text) {
  u32 bytes = 0;
  if (UTF8StrToUCS2Str(nullptr, &bytes, text) != SM_STATUS_SUCCESS) return {};
  Units room(bytes / 2, kMark);
  u32 size = bytes / 2;
  EXPECT_EQ(UTF8StrToUCS2Str(room.data(), &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, bytes);
  return room;
}

TEST(Transcode, ConvertsEachLengthOfUtf8) {
  const ustring text[] = {0x41, 0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0};
  EXPECT_EQ(Utf8Of(text), "A\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
}

TEST(Transcode, SurrogatesRepeatTheCodePointTheTextBeginsWith) {
  const ustring text[] = {'A', 0xD83D, 0xDE00, 0};
  std::string room(kRoom, '#');
  u32 size = kRoom;
  EXPECT_EQ(UCS2StrToUTF8Str(room.data(), &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(room.substr(0, 5), std::string("AAA\0#", 5));
}

TEST(Transcode, ALoneSurrogateBehindAnotherCharacterIsNoFault) {
  const ustring high[] = {0xE9, 0xD83D, 0};
  EXPECT_EQ(Utf8Of(high), "\xC3\xA9\xC3\xA9");
  const ustring low[] = {0xE9, 'x', 0xDFFF, 0};
  EXPECT_EQ(Utf8Of(low), "\xC3\xA9x\xC3\xA9");
}

TEST(Transcode, ALeadingPairIsWrittenForEachSurrogate) {
  const ustring pair[] = {0xD83D, 0xDE00, 0};
  EXPECT_EQ(Utf8Of(pair), "\xF0\x9F\x98\x80\xF0\x9F\x98\x80");
  // A later pair and a later lone half become the first pair too.
  const ustring more[] = {0xD83D, 0xDE00, 'x', 0xD800, 0xDC00, 0xDFFF, 0};
  const std::string face = "\xF0\x9F\x98\x80";
  EXPECT_EQ(Utf8Of(more), face + face + "x" + face + face + face);
}

TEST(Transcode, ALeadingUnpairedSurrogateFailsAtOnce) {
  const Units cases[] = {{0xD83D, 0}, {0xD83D, 'a', 0}, {0xDE00, 0xD83D, 0}, {0xDE00, 0}};
  for (const Units& text : cases) {
    std::string room(kRoom, '#');
    u32 size = kRoom;
    EXPECT_EQ(UCS2StrToUTF8Str(room.data(), &size, text.data()), SM_STATUS_BAD_DATA);
    EXPECT_EQ(size, kRoom);
    EXPECT_EQ(room, std::string(kRoom, '#'));
    EXPECT_EQ(UCS2StrToUTF8Str(nullptr, &size, text.data()), SM_STATUS_BAD_DATA);
    EXPECT_EQ(size, kRoom);
  }
}

TEST(Transcode, AnEmptyTextIsItsTerminator) {
  const ustring units[] = {0};
  const u32 codePoints[] = {0};
  u32 size = 0;
  EXPECT_EQ(UCS2StrToUTF8Str(nullptr, &size, units), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 1u);
  size = 0;
  EXPECT_EQ(UCS4StrToUTF8Str(nullptr, &size, codePoints), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 1u);
  astring byte = '#';
  size = 0;  // the terminator is not checked against the size
  EXPECT_EQ(UCS2StrToUTF8Str(&byte, &size, units), SM_STATUS_SUCCESS);
  EXPECT_EQ(byte, '\0');
  EXPECT_EQ(size, 1u);
  byte = '#';
  size = 0;
  EXPECT_EQ(UCS4StrToUTF8Str(&byte, &size, codePoints), SM_STATUS_SUCCESS);
  EXPECT_EQ(byte, '\0');
  EXPECT_EQ(size, 1u);
  ustring unit = kMark;
  size = 0;
  EXPECT_EQ(UTF8StrToUCS2Str(nullptr, &size, ""), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 2u);
  size = 0;
  EXPECT_EQ(UTF8StrToUCS2Str(&unit, &size, ""), SM_STATUS_SUCCESS);
  EXPECT_EQ(unit, 0);
  EXPECT_EQ(size, 2u);
}

TEST(Transcode, AFullBufferPutsTheTerminatorPastIt) {
  // The room ends where nobody may write, one element after the size.
  const ustring units[] = {'a', 0xE9, 0};
  test::GuardBuffer<astring> bytes(4);
  u32 size = 3;
  EXPECT_EQ(UCS2StrToUTF8Str(bytes.data(), &size, units), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(std::string(bytes.data(), 4), std::string("a\xC3\xA9\0", 4));
  const u32 codePoints[] = {'b', 0xE8, 0};
  size = 3;
  EXPECT_EQ(UCS4StrToUTF8Str(bytes.data(), &size, codePoints), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(std::string(bytes.data(), 4), std::string("b\xC3\xA8\0", 4));
  test::GuardBuffer<ustring> room(3);
  size = 2;
  EXPECT_EQ(UTF8StrToUCS2Str(room.data(), &size, "ab"), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 6u);
  EXPECT_EQ(Units(room.data(), room.data() + 3), (Units{'a', 'b', 0}));
  EXPECT_TRUE(bytes.FrontUntouched());
  EXPECT_TRUE(room.FrontUntouched());
}

TEST(Transcode, OneElementTooFewLeavesWhatWasWrittenWithoutATerminator) {
  const ustring units[] = {'a', 0x20AC, 'b', 0};  // 1 + 3 + 1 bytes
  for (u32 room = 0; room < 5; ++room) {
    test::GuardBuffer<astring> bytes(room);
    u32 size = room;
    EXPECT_EQ(UCS2StrToUTF8Str(bytes.data(), &size, units), SM_STATUS_BUFFER_TOO_SMALL) << room;
    EXPECT_EQ(size, room);
    const u32 written = room == 0 ? 0 : room < 4 ? 1 : 4;  // whole characters only
    EXPECT_EQ(std::string(bytes.data(), written), std::string("a\xE2\x82\xAC").substr(0, written));
    EXPECT_TRUE(bytes.UntouchedFrom(written)) << room;
    EXPECT_TRUE(bytes.FrontUntouched());
  }
}

TEST(Transcode, CodePointsAreConvertedEachByItself) {
  const u32 text[] = {'A', 0xD83D, 0xDE00, 0x10FFFF, 0x7FFFFFFF, 0};
  std::string room(kRoom, '#');
  u32 size = kRoom;
  EXPECT_EQ(UCS4StrToUTF8Str(room.data(), &size, text), SM_STATUS_SUCCESS);
  // 1 + 3 + 3 + 4 + 6 bytes and the NUL.
  EXPECT_EQ(size, 18u);
  EXPECT_EQ(room.substr(0, 18),
            std::string("A\xED\xA0\xBD\xED\xB8\x80\xF4\x8F\xBF\xBF\xFD\xBF\xBF\xBF\xBF\xBF\0", 18));
  EXPECT_EQ(room.substr(18), std::string(kRoom - 18, '#'));
}

TEST(Transcode, ACodePointBeyondUtf8StopsTheConversion) {
  const u32 text[] = {'A', 0x80000000, 'B', 0};
  std::string room(kRoom, '#');
  u32 size = kRoom;
  EXPECT_EQ(UCS4StrToUTF8Str(room.data(), &size, text), SM_STATUS_BAD_DATA);
  EXPECT_EQ(size, kRoom);
  EXPECT_EQ(room, "A" + std::string(kRoom - 1, '#'));
}

TEST(Transcode, CodePointsThatDoNotFitLeaveTheSize) {
  const u32 text[] = {'a', 0x10000, 0};
  for (u32 room = 0; room < 5; ++room) {
    test::GuardBuffer<astring> bytes(room);
    u32 size = room;
    EXPECT_EQ(UCS4StrToUTF8Str(bytes.data(), &size, text), SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, room);
    EXPECT_TRUE(bytes.UntouchedFrom(room == 0 ? 0 : 1));
  }
}

TEST(Transcode, AQueryOfTwoCharactersNeedsSixBytesOfUnits) {
  u32 size = 0;
  EXPECT_EQ(UTF8StrToUCS2Str(nullptr, &size, "ab"), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 6u);
}

TEST(Transcode, Ucs2SizesAreReadInUnitsAndWrittenInBytes) {
  Units room(4, kMark);
  u32 size = 3;
  EXPECT_EQ(UTF8StrToUCS2Str(room.data(), &size, "abc"), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 8u);
  EXPECT_EQ(room, (Units{'a', 'b', 'c', 0}));
  // Two units of room hold no third, though two units are four bytes.
  room = Units(4, kMark);
  size = 2;
  EXPECT_EQ(UTF8StrToUCS2Str(room.data(), &size, "abc"), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 2u);
  EXPECT_EQ(room, (Units{'a', 'b', kMark, kMark}));
}

TEST(Transcode, DecodesEachLengthOfUtf8ToUnits) {
  EXPECT_EQ(UnitsOf("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"),
            (Units{'A', 0xE9, 0x20AC, 0xD87D, 0xDE00, 0}));
}

TEST(Transcode, APairNeedsTwoUnitsOfRoom) {
  test::GuardBuffer<ustring> room(2);
  u32 size = 2;
  EXPECT_EQ(UTF8StrToUCS2Str(room.data(), &size, "a\xF0\x90\x80\x80"), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 2u);
  EXPECT_EQ(room[0], 'a');
  EXPECT_TRUE(room.UntouchedFrom(1));
}

TEST(Transcode, AnOverlongZeroIsAUnitInsideTheResult) {
  EXPECT_EQ(UnitsOf("a\xC0\x80z"), (Units{'a', 0, 'z', 0}));
}

TEST(Transcode, MalformedUtf8StopsTheConversion) {
  const char* const cases[] = {
      "ab\x80z",             // a continuation byte first
      "ab\xFFzzzzzz",        // never a lead
      "ab\xFEzzzzzz",        // nor this
      "ab\xE2\x82",          // the text ends inside a character
      "ab\xF4\x90\x80\x80",  // 0x110000, the first that UTF-16 cannot hold
      "ab\xFD\xBF\xBF\xBF\xBF\xBF",
  };
  for (const char* text : cases) {
    Units room(8, kMark);
    u32 size = 7;
    EXPECT_EQ(UTF8StrToUCS2Str(room.data(), &size, text), SM_STATUS_BAD_DATA) << text;
    EXPECT_EQ(size, 7u);
    EXPECT_EQ(room, (Units{'a', 'b', kMark, kMark, kMark, kMark, kMark, kMark}));
    EXPECT_EQ(UTF8StrToUCS2Str(nullptr, &size, text), SM_STATUS_BAD_DATA) << text;
    EXPECT_EQ(size, 7u);
  }
}

TEST(Transcode, AFaultComesBeforeMissingRoom) {
  ustring unit = kMark;
  for (const char* text : {"\x80", "\xC3", "\xF4\x90\x80\x80"}) {
    u32 size = 0;
    EXPECT_EQ(UTF8StrToUCS2Str(&unit, &size, text), SM_STATUS_BAD_DATA) << text;
    EXPECT_EQ(size, 0u);
  }
  const u32 impossible[] = {0x80000000, 0};
  astring byte = '#';
  u32 size = 0;
  EXPECT_EQ(UCS4StrToUTF8Str(&byte, &size, impossible), SM_STATUS_BAD_DATA);
  EXPECT_EQ(unit, kMark);
  EXPECT_EQ(byte, '#');
}

TEST(Transcode, NothingIsReadBehindATerminator) {
  test::GuardBuffer<astring> truncated(4);
  memcpy(truncated.data(), "ab\xFD", 4);  // five more bytes would follow
  u32 size = 0;
  EXPECT_EQ(UTF8StrToUCS2Str(nullptr, &size, truncated.data()), SM_STATUS_BAD_DATA);
  test::GuardBuffer<ustring> units(2);
  units[0] = 0xD800;  // its other half would follow the terminator
  units[1] = 0;
  EXPECT_EQ(UCS2StrToUTF8Str(nullptr, &size, units.data()), SM_STATUS_BAD_DATA);
  test::GuardBuffer<u32> codePoints(2);
  codePoints[0] = 'a';
  codePoints[1] = 0;
  EXPECT_EQ(UCS4StrToUTF8Str(nullptr, &size, codePoints.data()), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 2u);
}

TEST(Transcode, NullArgumentsAreInvalidAndChangeNothing) {
  const ustring units[] = {'a', 0};
  const u32 codePoints[] = {'a', 0};
  astring byte = '#';
  ustring unit = kMark;
  u32 size = 9;
  EXPECT_EQ(UCS2StrToUTF8Str(&byte, nullptr, units), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UCS2StrToUTF8Str(&byte, &size, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UCS4StrToUTF8Str(&byte, nullptr, codePoints), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UCS4StrToUTF8Str(&byte, &size, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UTF8StrToUCS2Str(&unit, nullptr, "a"), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UTF8StrToUCS2Str(&unit, &size, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(byte, '#');
  EXPECT_EQ(unit, kMark);
  EXPECT_EQ(size, 9u);
}

TEST(Transcode, TheExportedNamesOfUtf8AreOneConverter) {
  const ustring text[] = {0xE9, 0xD83D, 0};
  for (const auto convert : {&PXTUCS2StrToUTF8Str, &PXTUnicodeToASCII, &PXTUnicodeToLocal}) {
    astring room[8] = {};
    u32 size = 8;
    EXPECT_EQ(convert(room, &size, text), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 5u);
    EXPECT_STREQ(room, "\xC3\xA9\xC3\xA9");
    EXPECT_EQ(convert(room, &size, nullptr), SM_STATUS_INVALID_PARAMETER);
  }
}

TEST(Transcode, TheExportedNamesOfUnitsAreOneConverter) {
  for (const auto convert : {&PXTUTF8StrToUCS2Str, &PXTASCIIToUnicode, &PXTLocalToUnicode}) {
    Units room(4, kMark);
    u32 size = 2;
    EXPECT_EQ(convert(room.data(), &size, "\xF0\x90\x80\x80"), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(room, (Units{0xD840, 0xDC00, 0, kMark}));
    EXPECT_EQ(convert(room.data(), &size, "\xFF"), SM_STATUS_BAD_DATA);
  }
}

TEST(Transcode, TheExportedConverterOfCodePointsIsThisOne) {
  const u32 text[] = {0xE9, 0};
  astring room[4] = {};
  u32 size = 4;
  EXPECT_EQ(PXTUCS4StrToUTF8Str(room, &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 3u);
  EXPECT_STREQ(room, "\xC3\xA9");
}

constexpr u32 kInputs = 5000;

// Runs the converter with `room` elements offered and one more after them, and compares status,
// size, what was stored and what was left untouched.
template <typename To, typename From, typename Convert>
void ExpectLikeTheModel(Convert convert, const std::vector<From>& text, u32 room,
                        const std::vector<To>& written, u32 status, u64 sizeAfter) {
  test::GuardBuffer<From> input(text.size());  // nothing readable after the terminator
  std::copy(text.begin(), text.end(), input.data());
  test::GuardBuffer<To> output(size_t{room} + 1);
  u32 size = room;
  ASSERT_EQ(convert(output.data(), &size, input.data()), status);
  ASSERT_EQ(size, status == SM_STATUS_SUCCESS ? sizeAfter : room);
  ASSERT_EQ(std::vector<To>(output.data(), output.data() + written.size()), written);
  ASSERT_TRUE(output.UntouchedFrom(written.size()));
  ASSERT_TRUE(output.FrontUntouched());
}

template <typename From, typename Convert>
void ExpectTheQueryLikeTheModel(Convert convert, const std::vector<From>& text, u32 status,
                                u64 sizeAfter) {
  u32 size = 77;
  ASSERT_EQ(convert(nullptr, &size, text.data()), status);
  ASSERT_EQ(size, status == SM_STATUS_SUCCESS ? sizeAfter : 77);
}

// The model's text as the converter takes it, terminated.
template <typename To, typename From>
std::vector<To> Terminated(const std::vector<From>& text) {
  std::vector<To> result;
  for (const From each : text) {
    result.push_back(static_cast<To>(each));
  }
  result.push_back(0);
  return result;
}

std::vector<astring> AsText(const std::vector<u8>& bytes) { return {bytes.begin(), bytes.end()}; }

TEST(Transcode, TheModelKnowsTheWorkedExamples) {
  const auto triple = test::ModelUcs2ToUtf8({'A', 0xD83D, 0xDE00}, 9, false);
  EXPECT_EQ(triple.written, (std::vector<u8>{'A', 'A', 'A', 0}));
  EXPECT_EQ(triple.size, 4u);
  EXPECT_EQ(test::ModelUcs2ToUtf8({0xD83D}, 9, true).status, SM_STATUS_BAD_DATA);
  EXPECT_EQ(test::ModelUcs4ToUtf8({0x80000000}, 9, true).status, SM_STATUS_BAD_DATA);
  EXPECT_EQ(test::ModelUcs4ToUtf8({0x7FFFFFFF}, 9, false).written,
            (std::vector<u8>{0xFD, 0xBF, 0xBF, 0xBF, 0xBF, 0xBF, 0}));
  EXPECT_EQ(test::ModelUtf8ToUcs2({'a', 'b'}, 0, true).size, 6u);
  EXPECT_EQ(test::ModelUtf8ToUcs2({0xF0, 0x90, 0x80, 0x80}, 2, false).written,
            (Units{0xD840, 0xDC00, 0}));
  EXPECT_EQ(test::ModelUtf8ToUcs2({0xC0, 0x80}, 1, false).written, (Units{0, 0}));
}

TEST(Transcode, HostileUnitsBecomeUtf8AsTheModelSays) {
  test::HostileTexts texts(1);
  for (u32 input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    const std::vector<u32> units = texts.Units(10);
    const auto text = Terminated<ustring>(units);
    const auto query = test::ModelUcs2ToUtf8(units, 0, true);
    ASSERT_NO_FATAL_FAILURE(
        ExpectTheQueryLikeTheModel(&UCS2StrToUTF8Str, text, query.status, query.size));
    const u32 room = texts.Below(30);
    const auto model = test::ModelUcs2ToUtf8(units, room, false);
    ASSERT_NO_FATAL_FAILURE(ExpectLikeTheModel(&UCS2StrToUTF8Str, text, room, AsText(model.written),
                                               model.status, model.size));
  }
}

TEST(Transcode, HostileCodePointsBecomeUtf8AsTheModelSays) {
  test::HostileTexts texts(2);
  for (u32 input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    const std::vector<u32> codePoints = texts.CodePoints(8);
    const auto text = Terminated<u32>(codePoints);
    const auto query = test::ModelUcs4ToUtf8(codePoints, 0, true);
    ASSERT_NO_FATAL_FAILURE(
        ExpectTheQueryLikeTheModel(&UCS4StrToUTF8Str, text, query.status, query.size));
    const u32 room = texts.Below(45);
    const auto model = test::ModelUcs4ToUtf8(codePoints, room, false);
    ASSERT_NO_FATAL_FAILURE(ExpectLikeTheModel(&UCS4StrToUTF8Str, text, room, AsText(model.written),
                                               model.status, model.size));
  }
}

TEST(Transcode, HostileBytesBecomeUnitsAsTheModelSays) {
  test::HostileTexts texts(3);
  u32 successes = 0;
  for (u32 input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    const std::vector<u8> bytes = texts.Bytes(8);
    const auto text = Terminated<astring>(bytes);
    const auto query = test::ModelUtf8ToUcs2(bytes, 0, true);
    ASSERT_NO_FATAL_FAILURE(
        ExpectTheQueryLikeTheModel(&UTF8StrToUCS2Str, text, query.status, query.size));
    const u32 room = texts.Below(12);
    const auto model = test::ModelUtf8ToUcs2(bytes, room, false);
    ASSERT_NO_FATAL_FAILURE(
        ExpectLikeTheModel(&UTF8StrToUCS2Str, text, room, model.written, model.status, model.size));
    if (model.status == SM_STATUS_SUCCESS) ++successes;
  }
  EXPECT_GT(successes, kInputs / 10);  // the inputs reach more than their first fault
}

TEST(Transcode, AResultBeyond32BitsIsTooLargeForAnyBuffer) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> text(u64{1} << 31, 'a');
  u32 size = 77;
  EXPECT_EQ(UTF8StrToUCS2Str(nullptr, &size, text.text()), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 77u);
}

}  // namespace
}  // namespace qvx
