// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/time_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <limits>
#include <string>

#include "qvxcs/number_text.h"

#include "support/guard_buffer.h"

namespace {

using qvx::test::GuardBuffer;

constexpr bool kWideTime = sizeof(time_t) == 8;

class TimeText : public testing::Test {
 protected:
  static void SetZone(const char* zone) { ASSERT_EQ(setenv("TZ", zone, 1), 0); }
  void SetUp() override { SetZone("UTC0"); }
};

// The text, in room that ends right after it.
std::string TextOf(s64 time, size_t room) {
  GuardBuffer<astring> out(room);
  EXPECT_EQ(qvx::TimeToAStr(out.data(), static_cast<time_t>(time)), 0) << time;
  return out.data();
}

std::string Narrow(const ustring* units) {
  std::string text;
  for (; *units != 0; ++units)
    text.push_back(static_cast<char>(*units));
  return text;
}

TEST_F(TimeText, TimesHaveTheCalendarFormWithoutANewline) {
  EXPECT_EQ(TextOf(0, 25), "Thu Jan  1 00:00:00 1970");
  EXPECT_EQ(TextOf(-1, 25), "Wed Dec 31 23:59:59 1969");
  EXPECT_EQ(TextOf(1721997296, 25), "Fri Jul 26 12:34:56 2024");
}

TEST_F(TimeText, EveryDayAndMonthHasItsEnglishName) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  const char* days[] = {"Thu", "Fri", "Sat", "Sun", "Mon", "Tue", "Wed"};
  for (s64 day = 0; day < 7; ++day)
    EXPECT_EQ(TextOf(day * 86400, 25).substr(0, 3), days[day]);
  const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                          "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const s64 firstDays[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};  // of 1970
  for (u32 month = 0; month < 12; ++month) {
    EXPECT_EQ(TextOf(firstDays[month] * 86400, 25).substr(4, 6),
              std::string(months[month]) + "  1");
  }
}

TEST_F(TimeText, TimesAreLocal) {
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(TextOf(0, 25), "Thu Jan  1 01:00:00 1970");
  EXPECT_EQ(TextOf(1721997296, 25), "Fri Jul 26 14:34:56 2024");
}

TEST_F(TimeText, AChangedTimeZoneIsSeenByTheNextCall) {
  EXPECT_EQ(TextOf(0, 25), "Thu Jan  1 00:00:00 1970");
  SetZone("EST5");
  EXPECT_EQ(TextOf(0, 25), "Wed Dec 31 19:00:00 1969");
}

TEST_F(TimeText, AYearOfFiveDigitsHas25CharactersAndSucceeds) {
  if constexpr (kWideTime) {
    EXPECT_EQ(TextOf(253402300800, 26), "Sat Jan  1 00:00:00 10000");
    EXPECT_EQ(TextOf(3093527980799, 26), "Fri Dec 31 23:59:59 99999");
  }
}

TEST_F(TimeText, YearsBelow1000HaveNoLeadingZeros) {
  if constexpr (kWideTime) {
    EXPECT_EQ(TextOf(-30610224001, 24), "Tue Dec 31 23:59:59 999");
    EXPECT_EQ(TextOf(-62167219201, 23), "Fri Dec 31 23:59:59 -1");
  }
}

TEST_F(TimeText, TimesWithoutATextWriteNothing) {
  if constexpr (!kWideTime) return;
  for (const s64 time : {s64{3093527980800}, INT64_MAX, INT64_MIN, s64{67767976233532799}}) {
    GuardBuffer<astring> out(26);
    GuardBuffer<ustring> wide(26);
    u32 size = 25;
    EXPECT_EQ(qvx::TimeToAStr(out.data(), static_cast<time_t>(time)), -1) << time;
    EXPECT_TRUE(out.UntouchedFrom(0));
    EXPECT_EQ(qvx::UniTimeToStr(wide.data(), &size, static_cast<time_t>(time)), -1) << time;
    EXPECT_TRUE(wide.UntouchedFrom(0));
    EXPECT_EQ(size, 25u);
  }
}

TEST_F(TimeText, ANullOutputIsRefused) { EXPECT_EQ(qvx::TimeToAStr(nullptr, 0), -1); }

TEST_F(TimeText, SixteenBitTextReadsUnitsAndWritesBytes) {
  GuardBuffer<ustring> out(25);
  u32 size = 25;
  EXPECT_EQ(qvx::UniTimeToStr(out.data(), &size, 0), 0);
  EXPECT_EQ(size, 50u);
  EXPECT_EQ(Narrow(out.data()), "Thu Jan  1 00:00:00 1970");
}

TEST_F(TimeText, Exactly24UnitsSucceedAndTheTerminatorIsThe25th) {
  GuardBuffer<ustring> out(25);
  u32 size = 24;
  EXPECT_EQ(qvx::UniTimeToStr(out.data(), &size, 0), 0);
  EXPECT_EQ(size, 50u);
  EXPECT_EQ(out[24], 0);
  EXPECT_EQ(Narrow(out.data()), "Thu Jan  1 00:00:00 1970");
}

TEST_F(TimeText, OneUnitTooFewFailsBehindWhatFits) {
  GuardBuffer<ustring> out(23);
  u32 size = 23;
  EXPECT_EQ(qvx::UniTimeToStr(out.data(), &size, 0), -1);
  EXPECT_EQ(out[0], 'T');
  EXPECT_EQ(out[22], '7');
  GuardBuffer<ustring> none(1);
  size = 0;
  EXPECT_EQ(qvx::UniTimeToStr(none.data(), &size, 0), -1);
  EXPECT_TRUE(none.UntouchedFrom(0));
}

TEST_F(TimeText, ANullWideOutputMeasuresAndANullSizeIsRefused) {
  u32 size = 0;
  EXPECT_EQ(qvx::UniTimeToStr(nullptr, &size, 0), 0);
  EXPECT_EQ(size, 50u);
  GuardBuffer<ustring> out(25);
  EXPECT_EQ(qvx::UniTimeToStr(out.data(), nullptr, 0), -1);
  EXPECT_TRUE(out.UntouchedFrom(0));
}

TEST_F(TimeText, DaylightSavingTimeMovesByAnHour) {
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  time_t summer = 1721997296;
  qvx::DSTFix(&summer);
  EXPECT_EQ(summer, 1721997296 + 3600);
  time_t winter = 0;
  qvx::DSTFix(&winter);
  EXPECT_EQ(winter, 0);
}

TEST_F(TimeText, WithoutDaylightSavingTimeNothingMoves) {
  time_t summer = 1721997296;
  qvx::DSTFix(&summer);
  EXPECT_EQ(summer, 1721997296);
}

TEST_F(TimeText, TimesThatCannotBeBrokenDownAreLeftAlone) {
  qvx::DSTFix(nullptr);
  if constexpr (!kWideTime) return;
  time_t greatest = std::numeric_limits<time_t>::max();
  qvx::DSTFix(&greatest);
  EXPECT_EQ(greatest, std::numeric_limits<time_t>::max());
}

TEST_F(TimeText, ExportedConversionsGiveTheSameAnswers) {
  astring text[26];
  EXPECT_EQ(PXTTimeToAStr(text, 0), 0);
  EXPECT_STREQ(text, "Thu Jan  1 00:00:00 1970");
  u32 size = 0;
  EXPECT_EQ(PXTUniTimeToStr(nullptr, &size, 0), 0);
  EXPECT_EQ(size, 50u);
  SetZone("CET-1CEST,M3.5.0,M10.5.0/3");
  time_t summer = 1721997296;
  PXTDSTFix(&summer);
  EXPECT_EQ(summer, 1721997296 + 3600);
}

}  // namespace
