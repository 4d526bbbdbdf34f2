// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/xml_escape.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvxcs/memory.h"
#include "qvxcs/status.h"
#include "qvxcs/transcode.h"

#include "base/heap.h"
#include "tests/reference/text_model.h"
#include "tests/support/alloc_fault.h"
#include "tests/support/guard_buffer.h"
#include "tests/support/long_text.h"

namespace qvx {
namespace {

using Units = std::vector<ustring>;

constexpr u32 kRoom = 64;
constexpr u32 kEscapeFailed = 0xFFFFFFFF;

// Takes a heap text over and frees it.
std::string Taken(astring* text) {
  if (text == nullptr) return "(null)";
  std::string copy = text;
  PXTFreeMem(text);
  return copy;
}

// The backslash escapes of a text that fits 64 bytes.
std::string Escaped(const Units& text) {
  astring room[kRoom] = {};
  u32 size = kRoom;
  EXPECT_EQ(UnicodeToEscape(room, &size, text.data()), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, std::string(room).size() + 1);
  return room;
}

TEST(XmlEscape, ALessThanNeedsSevenBytesAndSetsTheFlag) {
  u32 size = 0;
  booln escaped = 7;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(nullptr, &size, &escaped, "a<b"), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(escaped, 1);
  test::GuardBuffer<astring> room(7);
  escaped = 7;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(room.data(), &size, &escaped, "a<b"), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 7u);
  EXPECT_EQ(escaped, 1);
  EXPECT_STREQ(room.data(), "a&lt;b");
  EXPECT_TRUE(room.FrontUntouched());
}

TEST(XmlEscape, TheFiveCharactersBecomeTheirEntities) {
  std::string room(kRoom, '#');
  u32 size = kRoom;
  booln escaped = 0;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(room.data(), &size, &escaped, "\"&'<>"), SM_STATUS_SUCCESS);
  const std::string expected = "&quot;&amp;&apos;&lt;&gt;";  // 6 + 5 + 6 + 4 + 4
  EXPECT_EQ(size, 26u);
  EXPECT_EQ(escaped, 1);
  EXPECT_EQ(room, expected + '\0' + std::string(kRoom - 26, '#'));
}

TEST(XmlEscape, EveryOtherByteIsCopiedAsItIs) {
  std::string text;
  for (int byte = 1; byte < 256; ++byte) {
    if (std::string("\"&'<>").find(static_cast<char>(byte)) == std::string::npos) {
      text += static_cast<char>(byte);
    }
  }
  ASSERT_EQ(text.size(), 250u);
  std::string room(251, '#');
  u32 size = 251;
  booln escaped = 7;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(room.data(), &size, &escaped, text.c_str()), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 251u);
  EXPECT_EQ(escaped, 0);
  EXPECT_EQ(room, text + '\0');
}

TEST(XmlEscape, AnEmptyTextNeedsRoomForItsNul) {
  u32 size = 0;
  booln escaped = 7;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(nullptr, &size, &escaped, ""), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 1u);
  EXPECT_EQ(escaped, 0);
  astring byte = '#';
  size = 0;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(&byte, &size, &escaped, ""), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(byte, '#');
  EXPECT_EQ(size, 0u);
  size = 1;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(&byte, &size, &escaped, ""), SM_STATUS_SUCCESS);
  EXPECT_EQ(byte, '\0');
  EXPECT_EQ(size, 1u);
}

TEST(XmlEscape, TooLittleRoomWritesWholePiecesOnly) {
  const std::string whole = "a&lt;b";
  for (u32 given = 0; given < 7; ++given) {
    test::GuardBuffer<astring> room(given);
    u32 size = given;
    booln escaped = 7;
    EXPECT_EQ(UTF8StrToXMLUTF8Str(room.data(), &size, &escaped, "a<b"), SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, given);
    const u32 written = given < 1 ? 0 : given < 5 ? 1 : given;  // "a", then "&lt;", then "b"
    EXPECT_EQ(std::string(room.data(), written), whole.substr(0, written)) << given;
    EXPECT_TRUE(room.UntouchedFrom(written)) << given;
    EXPECT_TRUE(room.FrontUntouched());
  }
}

TEST(XmlEscape, TheFlagIsSetByACharacterThatDoesNotFit) {
  astring room[2] = {};
  u32 size = 1;
  booln escaped = 0;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(room, &size, &escaped, "a<"), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(escaped, 1);
  // Cut before the character is met: nothing was escaped.
  size = 1;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(room, &size, &escaped, "ab<"), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(escaped, 0);
}

TEST(XmlEscape, TheFlagMayBeNull) {
  u32 size = 0;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(nullptr, &size, nullptr, "<"), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 5u);
}

TEST(XmlEscape, NullArgumentsAreInvalidAndLeaveTheFlag) {
  astring byte = '#';
  u32 size = 9;
  booln escaped = 7;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(&byte, nullptr, &escaped, "<"), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(UTF8StrToXMLUTF8Str(&byte, &size, &escaped, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(byte, '#');
  EXPECT_EQ(size, 9u);
  EXPECT_EQ(escaped, 7);
}

TEST(XmlEscape, ATabAndAnAccentBecomeEscapes) {
  const ustring text[] = {0x0009, 0x00E9, 0};
  test::GuardBuffer<astring> room(9);
  u32 size = 9;
  EXPECT_EQ(UnicodeToEscape(room.data(), &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 9u);
  EXPECT_STREQ(room.data(), "\\t\\u00e9");
  EXPECT_TRUE(room.FrontUntouched());
}

TEST(XmlEscape, EachKindOfUnitHasItsEscape) {
  EXPECT_EQ(Escaped({0}), "");
  EXPECT_EQ(Escaped({'\t', '\n', '\r', '\\', 0}), "\\t\\n\\r\\\\");
  EXPECT_EQ(Escaped({' ', 'a', '~', 0}), " a~");
  EXPECT_EQ(Escaped({0x01, 0x1F, 0x80, 0xFFFF, 0}), "\\u0001\\u001f\\u0080\\uffff");
  EXPECT_EQ(Escaped({0x08, 0x0B, 0x0C, 0x1B, 0}), "\\u0008\\u000b\\u000c\\u001b");
  EXPECT_EQ(Escaped({0xD83D, 0xDE00, 0}), "\\ud83d\\ude00");
}

TEST(XmlEscape, DeleteAndDoubleQuoteAreNotBackslashEscaped) {
  EXPECT_EQ(Escaped({0x7F, '"', '\'', 0}), "\x7F\"'");
}

TEST(XmlEscape, UnitsAreNotTakenForTheirLowByte) {
  EXPECT_EQ(Escaped({0x0109, 0x010A, 0x015C, 0x0141, 0}), "\\u0109\\u010a\\u015c\\u0141");
}

TEST(XmlEscape, AnEscapeSizeQueryPassesZeroAndIsTooSmall) {
  const ustring text[] = {'a', 0x80, 0};
  u32 size = 0;
  EXPECT_EQ(UnicodeToEscape(nullptr, &size, text), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 8u);
  // With a size that would do, a null output is a success.
  EXPECT_EQ(UnicodeToEscape(nullptr, &size, text), SM_STATUS_SUCCESS);
  size = 100;
  EXPECT_EQ(UnicodeToEscape(nullptr, &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 8u);
}

TEST(XmlEscape, TooLittleRoomForEscapesGivesTheSizeNeededAndWritesNothing) {
  const ustring text[] = {'a', 0x80, 0};
  test::GuardBuffer<astring> room(7);
  u32 size = 7;
  EXPECT_EQ(UnicodeToEscape(room.data(), &size, text), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 8u);
  EXPECT_TRUE(room.UntouchedFrom(0));
  EXPECT_TRUE(room.FrontUntouched());
}

TEST(XmlEscape, WithoutASizeTheRoomIsNotChecked) {
  const ustring text[] = {'a', '\n', 0};
  test::GuardBuffer<astring> room(4);
  EXPECT_EQ(UnicodeToEscape(room.data(), nullptr, text), SM_STATUS_SUCCESS);
  EXPECT_STREQ(room.data(), "a\\n");
  EXPECT_EQ(UnicodeToEscape(nullptr, nullptr, text), SM_STATUS_SUCCESS);
}

TEST(XmlEscape, ANullTextToEscapeIsABadArgument) {
  astring byte = '#';
  u32 size = 9;
  EXPECT_EQ(UnicodeToEscape(&byte, &size, nullptr), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(byte, '#');
  EXPECT_EQ(size, 9u);
}

TEST(XmlEscape, ALongTextIsEscapedWhole) {
  const Units text = [] {
    Units units(3000, 0xE9);
    units.push_back(0);
    return units;
  }();
  std::string room(18001, '#');
  u32 size = 18001;
  EXPECT_EQ(UnicodeToEscape(room.data(), &size, text.data()), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 18001u);
  for (size_t at = 0; at < 18000; at += 6) {
    ASSERT_EQ(room.substr(at, 6), "\\u00e9") << at;
  }
  EXPECT_EQ(room[18000], '\0');
}

TEST(XmlEscape, EscapesWithoutMemoryLeaveOutputAndSize) {
  // 1,500 escapes of 6 bytes: the first block of 6,144 bytes must grow once.
  Units text(1500, 0xE9);
  text.push_back(0);
  std::string room(9001, '#');
  u32 size = 9001;
  const u32 met =
      test::FailEachAllocation([&] { return UnicodeToEscape(room.data(), &size, text.data()); },
                               [&](u32 status) {
                                 EXPECT_EQ(status, kEscapeFailed);
                                 EXPECT_EQ(size, 9001u);
                                 EXPECT_EQ(room, std::string(9001, '#'));
                               });
  EXPECT_EQ(met, 2u);
  EXPECT_EQ(size, 9001u);
  EXPECT_EQ(room.substr(8994), std::string("\\u00e9\0", 7));
}

// How many blocks the escapes of so many plain characters ask for.
u32 BlocksForEscapesOf(size_t characters) {
  Units text(characters, 'a');
  text.push_back(0);
  return test::FailEachAllocation([&] { return UnicodeToEscape(nullptr, nullptr, text.data()); },
                                  [](u32 status) { EXPECT_EQ(status, kEscapeFailed); });
}

TEST(XmlEscape, TheFirstBlockForEscapesHolds6144Bytes) {
  EXPECT_EQ(BlocksForEscapesOf(6143), 1u);  // and the NUL
  EXPECT_EQ(BlocksForEscapesOf(6144), 2u);
}

TEST(XmlEscape, EachPassEscapesTheAmpersandsOfTheOneBefore) {
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromAStr("a&b", 1)), "a&amp;b");
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromAStr("a&b", 2)), "a&amp;amp;b");
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromAStr("a&b", 3)), "a&amp;amp;amp;b");
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromAStr("<\"", 2)), "&amp;lt;&amp;quot;");
}

TEST(XmlEscape, ZeroPassesAreOne) {
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromAStr("a&b", 0)), "a&amp;b");
}

TEST(XmlEscape, APassThatEscapesNothingIsTheLast) {
  const astring text[] = "abc";
  astring* copy = PXTGetXMLUTF8StrFromAStr(text, 3);
  EXPECT_NE(copy, text);
  EXPECT_EQ(Taken(copy), "abc");
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromAStr("", 0xFFFFFFFF)), "");
}

TEST(XmlEscape, ThousandsOfPassesAreWrittenAtOnce) {
  constexpr u32 kPasses = 200000;
  std::string expected = "a&";
  for (u32 pass = 1; pass < kPasses; ++pass) {
    expected += "amp;";
  }
  expected += "lt;";
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromAStr("a<", kPasses)), expected);
}

// Each of the passes adds 4 bytes: 2^30 of them are beyond 32 bits.
TEST(XmlEscape, PassesWhoseTextIsBeyond32BitsGiveNull) {
  for (const u32 passes : {0x40000000u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(PXTGetXMLUTF8StrFromAStr("&", passes), nullptr);
    const ustring text[] = {'<', '>', 0};
    EXPECT_EQ(PXTGetXMLUTF8StrFromUStr(text, passes), nullptr);
    EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromAStr("abc", passes)), "abc");
  }
}

TEST(XmlEscape, ANullTextGivesNull) {
  EXPECT_EQ(PXTGetXMLUTF8StrFromAStr(nullptr, 1), nullptr);
  EXPECT_EQ(PXTGetXMLUTF8StrFromUStr(nullptr, 1), nullptr);
}

TEST(XmlEscape, UnitsAreConvertedFirst) {
  const ustring text[] = {0xE9, '&', 0};
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromUStr(text, 1)), "\xC3\xA9&amp;");
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromUStr(text, 2)), "\xC3\xA9&amp;amp;");
  const ustring empty[] = {0};
  EXPECT_EQ(Taken(PXTGetXMLUTF8StrFromUStr(empty, 1)), "");
}

TEST(XmlEscape, UnitsThatCannotBeConvertedGiveNull) {
  const ustring text[] = {0xD83D, 'a', 0};
  EXPECT_EQ(PXTGetXMLUTF8StrFromUStr(text, 1), nullptr);
}

TEST(XmlEscape, WithoutMemoryForAPassTheResultIsNull) {
  const u32 met = test::FailEachAllocation(
      [&] { return HeapArray<astring>(SUPTIntfGetXMLUTF8StrFromAStr("&", 3)); },
      [](const HeapArray<astring>& text) { EXPECT_EQ(text, nullptr); });
  EXPECT_EQ(met, 2u);  // the first pass, and all others
}

TEST(XmlEscape, WithoutMemoryForTheConversionTheResultIsNull) {
  const ustring units[] = {'&', 0};
  const u32 met = test::FailEachAllocation(
      [&] { return HeapArray<astring>(SUPTIntfGetXMLUTF8StrFromUStr(units, 1)); },
      [](const HeapArray<astring>& text) { EXPECT_EQ(text, nullptr); });
  EXPECT_EQ(met, 2u);
}

TEST(XmlEscape, TheExportedNamesAreTheseFunctions) {
  astring room[8] = {};
  u32 size = 8;
  booln escaped = 0;
  EXPECT_EQ(PXTUTF8StrToXMLUTF8Str(room, &size, &escaped, ">"), SM_STATUS_SUCCESS);
  EXPECT_STREQ(room, "&gt;");
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(escaped, 1);
  const ustring text[] = {'\r', 0};
  size = 8;
  EXPECT_EQ(PXTUnicodeToEscape(room, &size, text), SM_STATUS_SUCCESS);
  EXPECT_STREQ(room, "\\r");
  EXPECT_EQ(size, 3u);
}

constexpr u32 kInputs = 5000;

TEST(XmlEscape, TheModelKnowsTheWorkedExamples) {
  const auto model = test::ModelXmlEscape({'a', '<', 'b'}, 7, false);
  EXPECT_EQ(model.written, (std::vector<u8>{'a', '&', 'l', 't', ';', 'b', 0}));
  EXPECT_EQ(model.size, 7u);
  EXPECT_EQ(test::ModelXmlEscape({'a', '<', 'b'}, 6, false).status, SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(test::ModelXml(test::ModelXml("a&b")), "a&amp;amp;b");
  EXPECT_EQ(test::ModelBackslashEscape({0x09, 0xE9}), "\\t\\u00e9");
}

TEST(XmlEscape, HostileBytesAreEscapedAsTheModelSays) {
  test::HostileTexts texts(4);
  for (u32 input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    const std::vector<u8> bytes = texts.Bytes(8);
    const std::string text(bytes.begin(), bytes.end());
    const auto query = test::ModelXmlEscape(bytes, 0, true);
    u32 size = 77;
    booln escaped = 7;
    ASSERT_EQ(UTF8StrToXMLUTF8Str(nullptr, &size, &escaped, text.c_str()), SM_STATUS_SUCCESS);
    ASSERT_EQ(size, query.size);
    ASSERT_EQ(escaped, test::ModelXml(text) == text ? 0 : 1);
    const u32 room = texts.Below(50);
    const auto model = test::ModelXmlEscape(bytes, room, false);
    test::GuardBuffer<astring> output(room);
    size = room;
    ASSERT_EQ(UTF8StrToXMLUTF8Str(output.data(), &size, nullptr, text.c_str()), model.status);
    ASSERT_EQ(size, model.status == SM_STATUS_SUCCESS ? model.size : room);
    ASSERT_EQ(std::string(output.data(), model.written.size()),
              std::string(model.written.begin(), model.written.end()));
    ASSERT_TRUE(output.UntouchedFrom(model.written.size()));
    ASSERT_TRUE(output.FrontUntouched());
  }
}

TEST(XmlEscape, HostileBytesAreEscapedOverAgainAsTheModelSays) {
  test::HostileTexts texts(5);
  for (u32 input = 0; input < kInputs; ++input) {
    const std::vector<u8> bytes = texts.Bytes(6);
    const std::string text(bytes.begin(), bytes.end());
    const u32 passes = texts.Below(5);
    std::string expected = test::ModelXml(text);
    for (u32 pass = 1; pass < passes; ++pass) {
      expected = test::ModelXml(expected);
    }
    ASSERT_EQ(Taken(SUPTIntfGetXMLUTF8StrFromAStr(text.c_str(), passes)), expected) << input;
  }
}

TEST(XmlEscape, HostileUnitsAreBackslashEscapedAsTheModelSays) {
  test::HostileTexts texts(6);
  for (u32 input = 0; input < kInputs; ++input) {
    SCOPED_TRACE(input);
    const std::vector<u32> units = texts.Units(10);
    Units text(units.begin(), units.end());
    text.push_back(0);
    const std::string expected = test::ModelBackslashEscape(units);
    const u32 needed = static_cast<u32>(expected.size()) + 1;
    const u32 room = texts.Below(60);
    test::GuardBuffer<astring> output(room);
    u32 size = room;
    const u32 status = UnicodeToEscape(output.data(), &size, text.data());
    ASSERT_EQ(size, needed);
    if (room < needed) {
      ASSERT_EQ(status, SM_STATUS_BUFFER_TOO_SMALL);
      ASSERT_TRUE(output.UntouchedFrom(0));
    } else {
      ASSERT_EQ(status, SM_STATUS_SUCCESS);
      ASSERT_EQ(std::string(output.data(), needed), expected + '\0');
      ASSERT_TRUE(output.UntouchedFrom(needed));
    }
    ASSERT_TRUE(output.FrontUntouched());
  }
}

// Each quotation mark becomes the six bytes of its entity.
TEST(XmlEscape, AResultBeyond32BitsIsRefused) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> text((u64{1} << 32) / 6 + 1, '"');
  u32 size = 77;
  EXPECT_EQ(UTF8StrToXMLUTF8Str(nullptr, &size, nullptr, text.text()), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 77u);
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(SUPTIntfGetXMLUTF8StrFromAStr(text.text(), 1), nullptr);
  EXPECT_FALSE(test::FailNthAllocation::Fired()) << "nothing is tried to be allocated";
}

}  // namespace
}  // namespace qvx
