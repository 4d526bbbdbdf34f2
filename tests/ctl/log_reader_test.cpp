// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "tests/ctl/log_texts.h"
#include "tests/ctl/text_source.h"

namespace qvx::ctl {
namespace {

using test::Entry;
using test::kLogClosing;
using test::kLogHead;
using test::Log;
using test::TextSource;

// "e" for an entry, "d" for damage, "c" closed, "." the end.
std::string PartsOf(const std::string& text) {
  TextSource source;
  source.text = text;
  LogReader reader(&source);
  std::string parts;
  for (;;) {
    switch (reader.Next()) {
      case LogPart::kEntry:
        parts += 'e';
        break;
      case LogPart::kDamage:
        parts += 'd';
        break;
      case LogPart::kClosed:
        return parts + 'c';
      case LogPart::kEnd:
        return parts + '.';
    }
  }
}

TEST(LogReader, AWholeLogIsItsEntriesAndTheClosingTag) {
  EXPECT_EQ(PartsOf(Log("")), "c");
  EXPECT_EQ(PartsOf(Log(Entry(1, "a") + Entry(2, "b"))), "eec");
}

TEST(LogReader, AnEntryIsTakenApart) {
  TextSource source;
  source.text = Log(Entry(-7, "<P name=\"line\" value=\"3\"/>", "R&amp;D &lt;x&gt;", 5911, "0x00"));
  LogReader reader(&source);
  ASSERT_EQ(reader.Next(), LogPart::kEntry);
  const LogRecord& record = reader.Record();
  EXPECT_EQ(record.time, -7);
  EXPECT_EQ(record.host, "srv1");
  EXPECT_EQ(record.type, 2u);
  EXPECT_EQ(record.id, 5911u);
  EXPECT_EQ(record.user, "R&D <x>");
  EXPECT_EQ(record.description, "<P name=\"line\" value=\"3\"/>");
  EXPECT_EQ(record.data, "0x00");
  EXPECT_EQ(reader.Begin(), 75u);
}

TEST(LogReader, AnEntryCountsOnlyWithWhatTheLibraryWritesAfterIt) {
  const std::string head = kLogHead;
  EXPECT_EQ(PartsOf(head + Entry(1, "a")), ".");
  EXPECT_EQ(PartsOf(head + Entry(1, "a") + "</EventLo"), ".");
  EXPECT_EQ(PartsOf(head + Entry(1, "a") + Entry(2, "b").substr(0, 30)), "e.");
}

TEST(LogReader, AnEntryWithoutItsClosingTagIsTold) {
  TextSource source;
  source.text = kLogHead + Entry(1, "a");
  LogReader reader(&source);
  EXPECT_EQ(reader.Next(), LogPart::kEnd);
  EXPECT_EQ(reader.EndOfUnclosed(), source.text.size());
  EXPECT_EQ(reader.Record().description, "a");
  source.text += "</EventLog>";
  EXPECT_EQ(reader.Next(), LogPart::kEntry);
  EXPECT_EQ(reader.EndOfUnclosed(), 0u);
}

TEST(LogReader, ReadingGoesOnAfterDamage) {
  EXPECT_EQ(PartsOf(Log(Entry(1, "a") + "garbage" + Entry(2, "b"))), "edec");
  EXPECT_EQ(PartsOf(Log(Entry(1, "a").substr(0, 60) + Entry(2, "b"))), "dec");
  EXPECT_EQ(PartsOf(Log(Entry(1, "a") + std::string(5000, '\0'))), "edc");
  EXPECT_EQ(PartsOf("no head" + Entry(1, "a") + kLogClosing), "dec");
  EXPECT_EQ(PartsOf(Log(Entry(1, "a")) + Entry(2, "b") + kLogClosing), "edec");
}

TEST(LogReader, TheFirstEntryOfALogWithoutItsHeadIsRead) {
  EXPECT_EQ(PartsOf(Entry(1, "a") + Entry(2, "b") + kLogClosing), "eec");
  EXPECT_EQ(PartsOf(Entry(1, "a").substr(0, 60) + Entry(2, "b") + kLogClosing), "dec");
}

TEST(LogReader, BytesAtTheEndAreNotPassed) {
  EXPECT_EQ(PartsOf(kLogHead + Entry(1, "a") + "garbage"), "e.");
  EXPECT_EQ(PartsOf("no log at all"), ".");
  EXPECT_EQ(PartsOf(""), ".");
}

TEST(LogReader, WhatComesLaterIsSeenByTheNextCall) {
  TextSource source;
  source.text = Log(Entry(1, "a"));
  LogReader reader(&source);
  ASSERT_EQ(reader.Next(), LogPart::kEntry);
  EXPECT_EQ(reader.Next(), LogPart::kClosed);
  source.text = Log(Entry(1, "a") + Entry(2, "b"));
  ASSERT_EQ(reader.Next(), LogPart::kEntry);
  EXPECT_EQ(reader.Record().description, "b");
  EXPECT_EQ(reader.Next(), LogPart::kClosed);
}

// Writes over the closing tag between two reads, as another process may.
class GrowingSource : public TextSource {
 public:
  size_t Read(u64 offset, char* room, size_t size) override {
    const size_t got = TextSource::Read(offset, room, size);
    if (!later.empty()) text = std::exchange(later, "");
    return got;
  }
  std::string later;
};

TEST(LogReader, AnEntryWrittenOverTheTagBetweenTwoReadsIsNoDamage) {
  GrowingSource source;
  source.text = Log(Entry(1, "a"));
  source.later = Log(Entry(1, "a") + Entry(2, "b"));
  LogReader reader(&source);
  EXPECT_EQ(reader.Next(), LogPart::kEntry);
  EXPECT_EQ(reader.Next(), LogPart::kEntry);
  EXPECT_EQ(reader.Next(), LogPart::kClosed);
}

TEST(LogReader, AClosingTagHalfWrittenOverIsNoDamage) {
  const std::string before = Log(Entry(1, "a"));
  const std::string after = Log(Entry(1, "a") + Entry(2, "b"));
  const size_t tag = before.size() - strlen(kLogClosing);
  for (size_t at = tag; at <= before.size(); ++at) {
    for (const bool isEndNew : {false, true}) {
      GrowingSource source;
      source.text = before;
      LogReader reader(&source);
      ASSERT_EQ(reader.Next(), LogPart::kEntry);
      ASSERT_EQ(reader.Next(), LogPart::kClosed);
      source.text = (isEndNew ? before : after).substr(0, at) +
                    (isEndNew ? after : before).substr(at, before.size() - at);
      source.later = after;
      LogPart part = reader.Next();
      if (part == LogPart::kClosed) part = reader.Next();
      EXPECT_EQ(part, LogPart::kEntry) << at << isEndNew;
      EXPECT_EQ(reader.Record().description, "b") << at << isEndNew;
      EXPECT_EQ(reader.Next(), LogPart::kClosed) << at << isEndNew;
    }
  }
}

// Another entry comes after every read.
class BusySource : public TextSource {
 public:
  size_t Read(u64 offset, char* room, size_t size) override {
    const size_t got = TextSource::Read(offset, room, size);
    if (entries < 50) text = Log(all += Entry(++entries, "b"));
    return got;
  }
  std::string all;
  int entries = 0;
};

TEST(LogReader, AppendsAfterEveryReadLoseNoEntry) {
  BusySource source;
  source.text = Log("");
  LogReader reader(&source);
  s64 expected = 0;
  for (int calls = 0; calls < 200 && expected < 50; ++calls) {
    const LogPart part = reader.Next();
    ASSERT_NE(part, LogPart::kDamage);
    if (part == LogPart::kEntry) {
      EXPECT_EQ(reader.Record().time, ++expected);
    }
  }
  EXPECT_EQ(expected, 50);
}

TEST(LogReader, EndlessDamageIsPassedInPieces) {
  TextSource source;
  source.text = Log(Entry(1, "a") + std::string(size_t{5} << 20, 'x') + Entry(2, "b"));
  LogReader reader(&source);
  ASSERT_EQ(reader.Next(), LogPart::kEntry);
  u64 end = reader.End();
  while (reader.Next() == LogPart::kDamage) {
    EXPECT_EQ(reader.Begin(), end);
    EXPECT_LE(reader.Text().size(), size_t{1} << 20);
    end = reader.End();
  }
  EXPECT_EQ(reader.Record().description, "b");
}

TEST(LogReader, TheLongestEntryOfTheLibraryIsRead) {
  const std::string data(size_t{2048} * 82, ' ');
  EXPECT_EQ(PartsOf(Log(Entry(1, std::string(16383, 'd'), "u", 1, data))), "ec");
}

TEST(LogReader, MarkupInADumpEndsNoEntry) {
  EXPECT_EQ(PartsOf(Log(Entry(1, "a", "u", 1, "0x: </LogEntry>\r\n0x: </EventLog>\r\n"))), "ec");
}

}  // namespace
}  // namespace qvx::ctl
