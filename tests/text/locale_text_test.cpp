// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/locale_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <string>
#include <vector>

#include "qvxcs/status.h"
#include "qvxcs/transcode.h"

#include "tests/support/alloc_fault.h"
#include "tests/support/guard_buffer.h"

namespace qvx {
namespace {

using Units = std::vector<ustring>;

constexpr ustring kMark = 0xEEEE;
constexpr u32 kFailed = 0xFFFFFFFF;
constexpr auto kToBytes = {&UnicodeToASCII, &UnicodeToLocal};
constexpr auto kToUnits = {&ASCIIToUnicode, &LocalToUnicode};

class LocaleText : public testing::Test {
 protected:
  void SetUp() override { UseLocale("C.utf8"); }
  static void UseLocale(const char* name) { ASSERT_NE(setlocale(LC_ALL, name), nullptr) << name; }
};

TEST_F(LocaleText, TheLanguageIsTheSameWhateverLangSays) {
  for (const char* lang : {"de_DE.UTF-8", "C", ""}) {
    ASSERT_EQ(setenv("LANG", lang, 1), 0);
    EXPECT_EQ(PXTGetLocalLanguageID(), 1033u) << lang;
  }
  ASSERT_EQ(unsetenv("LANG"), 0);
  EXPECT_EQ(GetLocalLanguageID(), 1033u);
}

TEST_F(LocaleText, UnitsBecomeTheLocalesEncoding) {
  const ustring text[] = {'a', 0xE9, 0x20AC, 0};
  for (const auto convert : kToBytes) {
    std::string room(8, '#');
    u32 size = 8;
    EXPECT_EQ(convert(room.data(), &size, text), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 7u);  // 1 + 2 + 3 and the NUL
    EXPECT_EQ(room, std::string("a\xC3\xA9\xE2\x82\xAC\0#", 8));
  }
}

TEST_F(LocaleText, UnitsThatTheLocaleCannotHoldFail) {
  UseLocale("C");
  const ustring text[] = {'a', 0x20AC, 0};
  for (const auto convert : kToBytes) {
    astring room[8] = {};
    u32 size = 8;
    EXPECT_EQ(convert(room, &size, text), kFailed);
    EXPECT_EQ(size, 8u);
    size = 0;
    EXPECT_EQ(convert(nullptr, &size, text), kFailed);
    EXPECT_EQ(size, 0u);
  }
}

TEST_F(LocaleText, SurrogatePairsAreNotCombined) {
  const ustring text[] = {0xD83D, 0xDE00, 0};
  for (const auto convert : kToBytes) {
    astring room[8] = {};
    u32 size = 8;
    EXPECT_EQ(convert(room, &size, text), kFailed);
    EXPECT_EQ(size, 8u);
  }
}

TEST_F(LocaleText, AnEmptyTextOfUnitsIsItsNul) {
  const ustring empty[] = {0};
  for (const auto convert : kToBytes) {
    astring byte = '#';
    u32 size = 0;
    EXPECT_EQ(convert(&byte, &size, empty), SM_STATUS_SUCCESS);
    EXPECT_EQ(byte, '\0');
    EXPECT_EQ(size, 1u);
    size = 9;
    EXPECT_EQ(convert(nullptr, &size, empty), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 1u);
    byte = '#';
    EXPECT_EQ(convert(&byte, nullptr, empty), SM_STATUS_SUCCESS);
    EXPECT_EQ(byte, '\0');
    EXPECT_EQ(convert(nullptr, nullptr, empty), SM_STATUS_SUCCESS);
  }
}

TEST_F(LocaleText, BytesThatDoNotFitAreLeftOffWithoutANul) {
  const ustring text[] = {'a', 'b', 'c', 'd', 0};
  for (const auto convert : kToBytes) {
    test::GuardBuffer<astring> room(3);
    u32 size = 3;
    EXPECT_EQ(convert(room.data(), &size, text), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(std::string(room.data(), 3), "abc");
    EXPECT_TRUE(room.FrontUntouched());
  }
}

TEST_F(LocaleText, AResultThatFillsTheSizeHasNoNul) {
  const ustring text[] = {'a', 'b', 'c', 0};
  for (const auto convert : kToBytes) {
    test::GuardBuffer<astring> room(4);
    u32 size = 3;
    EXPECT_EQ(convert(room.data(), &size, text), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 4u);
    EXPECT_TRUE(room.UntouchedFrom(3));
    EXPECT_EQ(convert(room.data(), &size, text), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 4u);
    EXPECT_STREQ(room.data(), "abc");
  }
}

TEST_F(LocaleText, TheCutIsAtAWholeCharacter) {
  const ustring text[] = {'a', 0x20AC, 0};
  for (const auto convert : kToBytes) {
    test::GuardBuffer<astring> room(3);
    u32 size = 3;
    EXPECT_EQ(convert(room.data(), &size, text), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(room[0], 'a');
    EXPECT_TRUE(room.UntouchedFrom(1));
  }
}

TEST_F(LocaleText, AResultWithoutAByteFails) {
  const ustring text[] = {0x20AC, 0};
  for (const auto convert : kToBytes) {
    test::GuardBuffer<astring> room(2);
    u32 size = 2;
    EXPECT_EQ(convert(room.data(), &size, text), kFailed);
    EXPECT_EQ(size, 2u);
    EXPECT_TRUE(room.UntouchedFrom(0));
  }
}

TEST_F(LocaleText, ASizeOfZeroOnlyMeasuresBytes) {
  const ustring text[] = {'a', 0xE9, 0};
  for (const auto convert : kToBytes) {
    astring byte = '#';
    u32 size = 0;
    EXPECT_EQ(convert(&byte, &size, text), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(byte, '#');
  }
}

TEST_F(LocaleText, WithoutAnOutputBytesAreMeasuredWhateverTheSize) {
  const ustring text[] = {'a', 0xE9, 0};
  for (const auto convert : kToBytes) {
    for (const u32 given : {0u, 1u, 100u}) {
      u32 size = given;
      EXPECT_EQ(convert(nullptr, &size, text), SM_STATUS_SUCCESS);
      EXPECT_EQ(size, 4u);
    }
  }
}

TEST_F(LocaleText, NullArgumentsFailAndChangeNothing) {
  const ustring text[] = {'a', 0};
  astring byte = '#';
  ustring unit = kMark;
  u32 size = 9;
  for (const auto convert : kToBytes) {
    EXPECT_EQ(convert(&byte, &size, nullptr), kFailed);
    EXPECT_EQ(convert(&byte, nullptr, text), kFailed);
  }
  for (const auto convert : kToUnits) {
    EXPECT_EQ(convert(&unit, &size, nullptr), kFailed);
    EXPECT_EQ(convert(&unit, nullptr, "a"), kFailed);
  }
  EXPECT_EQ(byte, '#');
  EXPECT_EQ(unit, kMark);
  EXPECT_EQ(size, 9u);
}

TEST_F(LocaleText, TheLocalesEncodingBecomesUnits) {
  for (const auto convert : kToUnits) {
    Units room(6, kMark);
    u32 size = 12;
    EXPECT_EQ(convert(room.data(), &size, "a\xC3\xA9\xE2\x82\xAC"), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(room, (Units{'a', 0xE9, 0x20AC, 0, kMark, kMark}));
  }
}

TEST_F(LocaleText, CharactersBeyondSixteenBitsAreCut) {
  for (const auto convert : kToUnits) {
    Units room(3, kMark);
    u32 size = 6;
    EXPECT_EQ(convert(room.data(), &size, "\xF0\x9F\x98\x80"), SM_STATUS_SUCCESS);  // 0x1F600
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(room, (Units{0xF600, 0, kMark}));
  }
}

TEST_F(LocaleText, AnEmptyTextOfBytesIsItsTerminator) {
  for (const auto convert : kToUnits) {
    ustring unit = kMark;
    u32 size = 0;
    EXPECT_EQ(convert(&unit, &size, ""), SM_STATUS_SUCCESS);
    EXPECT_EQ(unit, 0);
    EXPECT_EQ(size, 2u);
    size = 9;
    EXPECT_EQ(convert(nullptr, &size, ""), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 2u);
    unit = kMark;
    EXPECT_EQ(convert(&unit, nullptr, ""), SM_STATUS_SUCCESS);
    EXPECT_EQ(unit, 0);
    EXPECT_EQ(convert(nullptr, nullptr, ""), SM_STATUS_SUCCESS);
  }
}

TEST_F(LocaleText, FullUnitsPutTheTerminatorPastTheSize) {
  for (const auto convert : kToUnits) {
    test::GuardBuffer<ustring> room(3);
    u32 size = 4;
    EXPECT_EQ(convert(room.data(), &size, "ab"), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(Units(room.data(), room.data() + 3), (Units{'a', 'b', 0}));
    EXPECT_TRUE(room.FrontUntouched());
  }
}

TEST_F(LocaleText, CharactersThatDoNotFitAreLeftOff) {
  for (const auto convert : kToUnits) {
    Units room(4, kMark);
    u32 size = 5;  // two units and a half
    EXPECT_EQ(convert(room.data(), &size, "\xC3\xA9\xC3\xA8\xC3\xA7"), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(room, (Units{0xE9, 0xE8, 0, kMark}));
    room = Units(2, kMark);
    size = 1;
    EXPECT_EQ(convert(room.data(), &size, "ab"), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(room, (Units{0, kMark}));
  }
}

TEST_F(LocaleText, MalformedBytesFailAndStoreNothing) {
  for (const auto convert : kToUnits) {
    for (const char* text : {"a\xFFz", "a\xE2\x82", "a\xC0\x80", "\x80"}) {
      Units room(4, kMark);
      u32 size = 8;
      EXPECT_EQ(convert(room.data(), &size, text), kFailed) << text;
      EXPECT_EQ(size, 8u);
      EXPECT_EQ(room, Units(4, kMark));
      EXPECT_EQ(convert(nullptr, &size, text), kFailed) << text;
      EXPECT_EQ(size, 8u);
    }
  }
}

TEST_F(LocaleText, AFaultBehindWhatFitsIsNotSeen) {
  for (const auto convert : kToUnits) {
    Units room(4, kMark);
    u32 size = 4;
    EXPECT_EQ(convert(room.data(), &size, "ab\xFF"), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(room, (Units{'a', 'b', 0, kMark}));
  }
}

TEST_F(LocaleText, WithoutOutputOrSizeUnitsAreMeasured) {
  for (const auto convert : kToUnits) {
    ustring unit = kMark;
    u32 size = 0;
    EXPECT_EQ(convert(&unit, &size, "a\xC3\xA9"), SM_STATUS_SUCCESS);
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(unit, kMark);
    for (const u32 given : {0u, 2u, 100u}) {
      size = given;
      EXPECT_EQ(convert(nullptr, &size, "a\xC3\xA9"), SM_STATUS_SUCCESS);
      EXPECT_EQ(size, 6u);
    }
  }
}

TEST_F(LocaleText, WithoutMemoryConversionsFailAndLeaveAllAlone) {
  const ustring text[] = {'a', 0};
  for (const auto convert : kToBytes) {
    astring room[4] = {'#'};
    u32 size = 4;
    const u32 met = test::FailEachAllocation([&] { return convert(room, &size, text); },
                                             [&](u32 status) {
                                               EXPECT_EQ(status, kFailed);
                                               EXPECT_EQ(size, 4u);
                                               EXPECT_EQ(room[0], '#');
                                             });
    EXPECT_EQ(met, 1u);
  }
  for (const auto convert : kToUnits) {
    Units room(4, kMark);
    u32 size = 8;
    const u32 met = test::FailEachAllocation([&] { return convert(room.data(), &size, "a"); },
                                             [&](u32 status) {
                                               EXPECT_EQ(status, kFailed);
                                               EXPECT_EQ(size, 8u);
                                               EXPECT_EQ(room, Units(4, kMark));
                                             });
    EXPECT_EQ(met, 1u);
  }
}

}  // namespace
}  // namespace qvx
