// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Loops that take many characters at a time, compared with models that take one: texts of runs, at
// any alignment, before a page that nobody may touch. QVX_MODEL_INPUTS sets how many.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "qvxcs/status.h"

#include "tests/reference/text_model.h"
#include "tests/support/guard_buffer.h"
#include "text/transcode.h"
#include "text/uni_string.h"
#include "text/unit_scan.h"
#include "text/wide.h"
#include "text/xml_escape.h"

namespace qvx {
namespace {

using test::Converted;
using test::GuardBuffer;
using test::HostileTexts;

u32 Inputs() {
  const char* const inputs = getenv("QVX_MODEL_INPUTS");
  return inputs == nullptr ? 4000 : static_cast<u32>(strtoul(inputs, nullptr, 10));
}

// Until the end of its scope the loops are those of one of the levels that the processor has.
class AtSomeLevel {
 public:
  explicit AtSomeLevel(HostileTexts* texts) {
    static const int has = AskProcessor();
    processorLevel.store(std::min<int>(has, kWithinText + static_cast<int>(texts->Below(4))));
  }
  ~AtSomeLevel() { processorLevel.store(kNotAsked); }
  AtSomeLevel(const AtSomeLevel&) = delete;
  AtSomeLevel& operator=(const AtSomeLevel&) = delete;
};

u32 LongestFor(HostileTexts* texts) { return texts->Below(100) == 0 ? 6000 : 150; }

// The text with its terminator, up to 63 elements before the page: every alignment occurs.
template <typename Unit>
class Input {
 public:
  template <typename Element>
  Input(const std::vector<Element>& text, HostileTexts* texts)
      : Input(text, texts->Below(2) == 0 ? 0 : texts->Below(64)) {}

  template <typename Element>
  Input(const std::vector<Element>& text, size_t beforePage)
      : units_(text.size() + 1 + beforePage) {
    std::transform(text.begin(), text.end(), units_.data(),
                   [](Element each) { return static_cast<Unit>(each); });
    units_[text.size()] = 0;
  }
  Unit* text() { return units_.data(); }

 private:
  GuardBuffer<Unit> units_;
};

template <typename From, typename To, typename Written, typename Convert>
void ExpectLike(const Converted<Written>& query, const Converted<Written>& model, u32 room,
                HostileTexts* texts, From* text, Convert convert) {
  u32 size = 77;
  ASSERT_EQ(convert(static_cast<To*>(nullptr), &size, text), query.status);
  ASSERT_EQ(size, query.status == SM_STATUS_SUCCESS ? query.size : 77);
  GuardBuffer<To> output(size_t{room} + 1 + (texts->Below(2) == 0 ? 0 : texts->Below(64)));
  size = room;
  ASSERT_EQ(convert(output.data(), &size, text), model.status);
  ASSERT_EQ(size, model.status == SM_STATUS_SUCCESS ? model.size : room);
  for (size_t at = 0; at < model.written.size(); ++at) {
    ASSERT_EQ(output[at], static_cast<To>(model.written[at])) << at;
  }
  ASSERT_TRUE(output.UntouchedFrom(model.written.size()));
  ASSERT_TRUE(output.FrontUntouched());
}

// Room for all, for all but a little, or for any part.
u32 RoomFor(u64 needed, HostileTexts* texts) {
  const u32 most = static_cast<u32>(needed) + 2;
  const u32 kind = texts->Below(3);
  if (kind == 0) return most + texts->Below(40);
  return kind == 1 ? most - std::min(most, texts->Below(40)) : texts->Below(most);
}

TEST(WideModel, RunsOfBytesBecomeUnitsAsTheModelSays) {
  HostileTexts texts(11);
  for (u32 input = Inputs(); input != 0; --input) {
    const AtSomeLevel level(&texts);
    const std::vector<u8> bytes = texts.RunsOfBytes(LongestFor(&texts));
    const u32 room = RoomFor(bytes.size(), &texts);
    Input<astring> text(bytes, &texts);
    ASSERT_NO_FATAL_FAILURE((ExpectLike<astring, ustring>(
        test::ModelUtf8ToUcs2(bytes, 0, true), test::ModelUtf8ToUcs2(bytes, room, false), room,
        &texts, text.text(), &UTF8StrToUCS2Str)))
        << input;
  }
}

TEST(WideModel, RunsOfUnitsBecomeUtf8AsTheModelSays) {
  HostileTexts texts(12);
  for (u32 input = Inputs(); input != 0; --input) {
    const AtSomeLevel level(&texts);
    const std::vector<u32> units = texts.RunsOfUnits(LongestFor(&texts));
    const auto query = test::ModelUcs2ToUtf8(units, 0, true);
    const u32 room = RoomFor(query.status == SM_STATUS_SUCCESS ? query.size : units.size(), &texts);
    Input<ustring> text(units, &texts);
    ASSERT_NO_FATAL_FAILURE(
        (ExpectLike<ustring, astring>(query, test::ModelUcs2ToUtf8(units, room, false), room,
                                      &texts, text.text(), &UCS2StrToUTF8Str)))
        << input;
  }
}

TEST(WideModel, RunsOfBytesAreEscapedAsTheModelSays) {
  HostileTexts texts(13);
  const auto escape = [](astring* out, u32* size, const astring* text) {
    return UTF8StrToXMLUTF8Str(out, size, nullptr, text);
  };
  for (u32 input = Inputs(); input != 0; --input) {
    const AtSomeLevel level(&texts);
    std::vector<u8> bytes = texts.RunsOfBytes(LongestFor(&texts));
    const u32 every = 1 + texts.Below(60);
    for (u8& byte : bytes) {
      if (texts.Below(every) == 0) byte = static_cast<u8>("\"&'<>"[texts.Below(5)]);
    }
    const auto query = test::ModelXmlEscape(bytes, 0, true);
    const u32 room = RoomFor(query.size, &texts);
    Input<astring> text(bytes, &texts);
    ASSERT_NO_FATAL_FAILURE((ExpectLike<astring, astring>(
        query, test::ModelXmlEscape(bytes, room, false), room, &texts, text.text(), escape)))
        << input;
  }
}

TEST(WideModel, UnitsAreFoundAndComparedAsOneByOne) {
  HostileTexts texts(14);
  for (u32 input = Inputs(); input != 0; --input) {
    const AtSomeLevel level(&texts);
    SCOPED_TRACE(input);
    const std::vector<u32> units = texts.RunsOfUnits(LongestFor(&texts));
    const u32 length = static_cast<u32>(units.size());
    Input<ustring> text(units, &texts);
    ASSERT_EQ(UnitCount(text.text()), length);
    const u32 limit = texts.Below(length + 20);
    ASSERT_EQ(UnitCountWithin(text.text(), limit), std::min(limit, length));
    const u32 at = texts.Below(length + 1);
    const ustring unit =
        texts.Below(4) == 0 ? static_cast<ustring>(texts.Below(0x10000)) : text.text()[at];
    const ustring* const end = text.text() + length;
    const ustring* const found = std::find(text.text(), text.text() + length, unit);
    ASSERT_EQ(Uni_strchr(text.text(), unit), found == end && unit != 0 ? nullptr : found);
    std::vector<u32> other = units;
    if (length != 0 && texts.Below(2) == 0) other[texts.Below(length)] = texts.Below(0x10000);
    if (texts.Below(4) == 0) other.resize(texts.Below(length + 1));
    Input<ustring> second(other, &texts);
    size_t equal = 0;
    while (text.text()[equal] == second.text()[equal] && text.text()[equal] != 0) {
      ++equal;
    }
    ASSERT_EQ(EqualUnits(text.text(), second.text()), equal);
    ASSERT_EQ(Uni_strcmp(text.text(), second.text()),
              static_cast<ustring>(text.text()[equal] - second.text()[equal]));
  }
}

// A character repeated, with another one in one place of it or in none.
struct Repeated {
  std::vector<u8> bytes;
  std::vector<u32> units;

  Repeated(u32 codePoint, u32 length, u32 otherPlace, u32 other) {
    for (u32 at = 0; at < length; ++at) {
      units.push_back(at == otherPlace ? other : codePoint);
      const auto utf8 = test::ModelUcs4ToUtf8({units.back()}, 4, false).written;
      bytes.insert(bytes.end(), utf8.begin(), utf8.end() - 1);
    }
  }
};

// Room for all and for one less.
void ExpectBothWays(const Repeated& text, size_t beforePage, HostileTexts* texts) {
  Input<astring> bytes(text.bytes, beforePage);
  Input<ustring> units(text.units, beforePage);
  for (u32 missing = 0; missing < 2; ++missing) {
    const u32 unitRoom = static_cast<u32>(text.units.size()) - missing;
    ExpectLike<astring, ustring>(test::ModelUtf8ToUcs2(text.bytes, 0, true),
                                 test::ModelUtf8ToUcs2(text.bytes, unitRoom, false), unitRoom,
                                 texts, bytes.text(), &UTF8StrToUCS2Str);
    const u32 byteRoom = static_cast<u32>(text.bytes.size()) - missing;
    ExpectLike<ustring, astring>(test::ModelUcs2ToUtf8(text.units, 0, true),
                                 test::ModelUcs2ToUtf8(text.units, byteRoom, false), byteRoom,
                                 texts, units.text(), &UCS2StrToUTF8Str);
  }
}

TEST(WideModel, ShortTextsAreConvertedAtEachPlaceBeforeThePage) {
  HostileTexts texts(16);
  for (const u32 codePoint : {u32{'a'}, 0x7FU, 0x80U, 0xE9U, 0x7FFU, 0x800U, 0x4E2DU, 0xFFFFU}) {
    for (u32 length = 1; length <= 70; ++length) {
      const AtSomeLevel level(&texts);
      const u32 other = std::vector<u32>{'z', 0xF1, 0x65E5, 0xD800}[texts.Below(4)];
      const Repeated text(codePoint, length, texts.Below(length + length / 2 + 1), other);
      for (const size_t beforePage :
           {texts.Below(16), 16 + texts.Below(16), 32 + texts.Below(80)}) {
        SCOPED_TRACE(testing::Message() << codePoint << " " << length << " " << beforePage);
        ASSERT_NO_FATAL_FAILURE(ExpectBothWays(text, beforePage, &texts));
      }
    }
  }
}

TEST(WideModel, EachByteOfABlockIsEscapedByItsOwnEntity) {
  HostileTexts texts(17);
  const auto escape = [](astring* out, u32* size, const astring* text) {
    return UTF8StrToXMLUTF8Str(out, size, nullptr, text);
  };
  for (u32 byte = 1; byte < 256; ++byte) {
    for (const u32 place : {0U, 7U, 15U, 16U, 31U, 39U}) {
      const AtSomeLevel level(&texts);
      std::vector<u8> bytes(40, 'x');
      bytes[place] = static_cast<u8>(byte);
      const auto query = test::ModelXmlEscape(bytes, 0, true);
      const u32 room = static_cast<u32>(query.size);
      Input<astring> text(bytes, size_t{0});
      ASSERT_NO_FATAL_FAILURE((ExpectLike<astring, astring>(
          query, test::ModelXmlEscape(bytes, room, false), room, &texts, text.text(), escape)))
          << byte << " " << place;
    }
  }
}

// A text so long that the growth of its blocks is summed up more than once.
TEST(WideModel, GrowthOfManySpecialsIsExact) {
  for (const int level : {kWithinText, kBaseline, kByteShuffle}) {
    if (AskProcessor() < level) continue;
    processorLevel.store(level);
    const std::string text(20000, '"');
    u32 size = 0;
    EXPECT_EQ(UTF8StrToXMLUTF8Str(nullptr, &size, nullptr, text.c_str()), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 6 * 20000 + 1);
    processorLevel.store(kNotAsked);
  }
}

// Patterns of few units, which repeat themselves and almost match again and again.
TEST(WideModel, PatternsAreFoundWhereTheModelFindsThem) {
  HostileTexts texts(15);
  for (u32 input = Inputs(); input != 0; --input) {
    const u32 kinds = 1 + texts.Below(3);
    const u32 period = 1 + texts.Below(5);
    const auto make = [&](u32 length) {
      std::vector<ustring> units;
      for (u32 at = 0; at < length; ++at) {
        const bool repeat = at >= period && texts.Below(12) != 0;
        units.push_back(repeat ? units[at - period] : static_cast<ustring>(1 + texts.Below(kinds)));
      }
      return units;
    };
    std::vector<ustring> text = make(texts.Below(80));
    std::vector<ustring> pattern = make(texts.Below(16));
    const auto found = std::search(text.begin(), text.end(), pattern.begin(), pattern.end());
    const auto place = found - text.begin();
    const bool none = found == text.end() && !pattern.empty();
    text.push_back(0);
    pattern.push_back(0);
    ASSERT_EQ(Uni_strstr(text.data(), pattern.data()), none ? nullptr : text.data() + place)
        << input;
  }
}

}  // namespace
}  // namespace qvx
