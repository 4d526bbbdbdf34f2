// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_entry.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <ctime>
#include <string>
#include <vector>

#include "qvxcs/status.h"

#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "xml/log_files.h"

namespace qvx {
namespace {

using test::EntryOf;
using test::WithoutTimes;

constexpr LogEvent kPlain = {4, 7, "user", "source", "text", nullptr, 0};

std::string Built(const LogEvent& event) {
  LogEntry entry;
  const u32 status = entry.Build(event);
  if (status != SM_STATUS_SUCCESS) return "status " + std::to_string(status);
  EXPECT_EQ(entry.Length(), std::string(entry.Text()).size());
  return entry.Text();
}

std::string Attached(const LogEvent& event) {
  test::RequireSandbox();
  EXPECT_EQ(ModuleAttach(), 1);
  return Built(event);
}

std::string OnlyElement(const std::string& entry, const std::string& name) {
  const std::vector<std::string> found = test::ElementsOf(entry, name);
  return found.size() == 1 ? found[0] : "(not one element)";
}

TEST(LogEntry, AllChildrenStandInTheirOrder) {
  const std::string entry = Attached(kPlain);
  const std::string stamp = OnlyElement(entry, "TimeStamp");
  const std::string date = OnlyElement(entry, "DateTime");
  EXPECT_EQ(entry,
            "<LogEntry><TimeStamp>" + stamp + "</TimeStamp><DateTime>" + date +
                "</DateTime><ComputerName>qvxtest</ComputerName><Type>4</Type><ID>7</ID>"
                "<UserInfo>user</UserInfo><Source>source</Source><Description>text</Description>"
                "<Data></Data></LogEntry>");
}

TEST(LogEntry, OneTimeIsToldInSecondsAndInLocalTime) {
  setenv("TZ", "XYZ-03:30", 1);
  const time_t before = time(nullptr);
  const std::string entry = Attached(kPlain);
  const time_t after = time(nullptr);
  const time_t stamp = std::stol(OnlyElement(entry, "TimeStamp"));
  EXPECT_GE(stamp, before);
  EXPECT_LE(stamp, after);
  const time_t east = stamp + 3 * 3600 + 30 * 60;
  struct tm parts = {};
  char text[64];
  ASSERT_NE(strftime(text, sizeof(text), "%a %b %e %H:%M:%S %Y", gmtime_r(&east, &parts)), 0u);
  EXPECT_EQ(OnlyElement(entry, "DateTime"), text);
}

TEST(LogEntry, NullTextsGiveEmptyElements) {
  EXPECT_EQ(WithoutTimes(Attached({4, 0, nullptr, nullptr, nullptr, nullptr, 0})),
            EntryOf(4, 0, "", "", ""));
}

TEST(LogEntry, TypeAndIdentifierAreUnsigned) {
  EXPECT_EQ(WithoutTimes(Attached({65535, 4294967295u, "u", "s", "d", nullptr, 0})),
            "<LogEntry><ComputerName>qvxtest</ComputerName><Type>65535</Type><ID>4294967295</ID>"
            "<UserInfo>u</UserInfo><Source>s</Source><Description>d</Description><Data></Data>"
            "</LogEntry>");
}

// They end no entry; the tool escapes them where it prints them.
TEST(LogEntry, ControlCharactersOfEachTextStayAsTheyAre) {
  const char user[] = "a\n\x1B[2J\x7F";
  const char source[] = "b\r\t\x01";
  const char description[] = "c\n\x1B]0;t\a";
  EXPECT_EQ(WithoutTimes(Attached({4, 7, user, source, description, nullptr, 0})),
            EntryOf(4, 7, user, source, description));
}

TEST(LogEntry, UserAndSourceAreEscapedOnce) {
  EXPECT_EQ(WithoutTimes(Attached({1, 2, "a<b", "\"&'>&amp;", "d", nullptr, 0})),
            EntryOf(1, 2, "a&lt;b", "&quot;&amp;&apos;&gt;&amp;amp;", "d"));
}

TEST(LogEntry, TextsOfSeveralBytesACharacterKeepTheirBytes) {
  EXPECT_EQ(
      WithoutTimes(Attached({1, 2, "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", nullptr, 0})),
      EntryOf(1, 2, "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80"));
}

TEST(LogEntry, DescriptionIsWrittenAsItStands) {
  EXPECT_EQ(WithoutTimes(Attached({1, 2, "u", "s", "a<b & \"c\"", nullptr, 0})),
            EntryOf(1, 2, "u", "s", "a<b & \"c\""));
}

TEST(LogEntry, DataIsTheDumpWithItsLineEnds) {
  EXPECT_EQ(WithoutTimes(Attached({1, 2, "u", "s", "d", "<BCDEFGHIJKLMN&PQRS~", 20})),
            EntryOf(1, 2, "u", "s", "d",
                    "0x00000000: 3C 42 43 44:45 46 47 48:49 4A 4B 4C:4D 4E 26 50    "
                    "<BCDEFGHIJKLMN&P \r\n"
                    "0x00000010: 51 52 53 7E                                        "
                    "QRS.             \r\n"));
}

TEST(LogEntry, DataWithoutASizeIsNoData) {
  EXPECT_EQ(WithoutTimes(Attached({1, 2, "u", "s", "d", "bytes", 0})),
            EntryOf(1, 2, "u", "s", "d"));
}

TEST(LogEntry, LargestDataIsDumpedWholeAndReadNoFurther) {
  test::GuardBuffer<u8> data(32768);
  const std::string dump = OnlyElement(Attached({1, 2, "u", "s", "d", data.data(), 32768}), "Data");
  EXPECT_EQ(dump.size(), 2048u * 82);
  EXPECT_EQ(dump.substr(2047 * 82, 12), "0x00007FF0: ");
}

TEST(LogEntry, LongestTextsAreWrittenWhole) {
  const std::string user(1023, '<');
  const std::string source(1023, 's');
  const std::string description(16383, 'd');
  std::string escaped;
  for (int i = 0; i < 1023; ++i) {
    escaped += "&lt;";
  }
  EXPECT_EQ(
      WithoutTimes(Attached({1, 2, user.c_str(), source.c_str(), description.c_str(), nullptr, 0})),
      EntryOf(1, 2, escaped, source, description));
}

TEST(LogEntry, HostWithoutANameGivesAnEmptyElement) {
  test::RequireSandbox();
  ASSERT_EQ(sethostname("", 0), 0);
  EXPECT_EQ(OnlyElement(Attached(kPlain), "ComputerName"), "");
}

TEST(LogEntry, WithoutAnAttachTheHostNamesStatusIsReturned) {
  LogEntry entry;
  EXPECT_EQ(entry.Build(kPlain), SM_STATUS_NOT_LOADED);
  EXPECT_EQ(entry.Length(), 0u);
}

TEST(LogEntry, AnEntryIsBuiltWholeOrNotAtAll) {
  ASSERT_EQ(ModuleAttach(), 1);
  const std::string description(5000, 'd');
  const std::vector<u8> data(3000, 0x41);
  const LogEvent event = {4, 7, "a<b", "a&b", description.c_str(), data.data(), 3000};
  const u32 met = test::FailEachAllocation(
      [&event] {
        LogEntry entry;
        return entry.Build(event);
      },
      [](u32 status) { EXPECT_EQ(status, kMinusOne); });
  EXPECT_GE(met, 3u) << "two escaped texts and the entry";
}

TEST(LogEntry, LimitsCountBytesAndRefuseEmptyTexts) {
  const std::string longest(1023, 'u');
  const std::string tooLong(1024, 'u');
  const std::string longestText(16383, 'd');
  const std::string tooLongText(16384, 'd');
  const std::vector<u8> data(32769);
  const struct {
    LogEvent event;
    bool loggable;
  } cases[] = {
      {{0, 0, nullptr, nullptr, nullptr, nullptr, 0}, true},
      {{0, 0, "u", "s", "d", nullptr, 0}, true},
      {{0, 0, longest.c_str(), longest.c_str(), longestText.c_str(), nullptr, 0}, true},
      {{0, 0, tooLong.c_str(), nullptr, nullptr, nullptr, 0}, false},
      {{0, 0, nullptr, tooLong.c_str(), nullptr, nullptr, 0}, false},
      {{0, 0, nullptr, nullptr, tooLongText.c_str(), nullptr, 0}, false},
      {{0, 0, "", nullptr, nullptr, nullptr, 0}, false},
      {{0, 0, nullptr, "", nullptr, nullptr, 0}, false},
      {{0, 0, nullptr, nullptr, "", nullptr, 0}, false},
      {{0, 0, nullptr, nullptr, nullptr, data.data(), 32768}, true},
      {{0, 0, nullptr, nullptr, nullptr, data.data(), 32769}, false},
      {{0, 0, nullptr, nullptr, nullptr, nullptr, 1}, false},
  };
  int at = 0;
  for (const auto& each : cases) {
    EXPECT_EQ(IsLoggable(each.event), each.loggable) << "case " << at;
    ++at;
  }
}

}  // namespace
}  // namespace qvx
