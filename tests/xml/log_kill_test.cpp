// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// An append to an XML log that is killed at any moment loses no entry that stood before.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "tests/xml/log_files.h"

namespace qvx {
namespace {

constexpr char kLog[] = "/tmp/kill/log.xml";
constexpr char kBackup[] = "/tmp/kill/log.xm_";

u32 Append(u32 id, u32 maxSize = test::kNoMaximum) {
  return PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, id, "user", "source", "text", nullptr, 0,
                           maxSize);
}

std::string Entry(u32 id) { return test::EntryOf(4, id, "user", "source", "text"); }

// More entries than one block of the search for the closing tag.
std::string ManyEntries() {
  std::string entries;
  for (u32 id = 100; id < 140; ++id) {
    entries += Entry(id);
  }
  return entries;
}

std::string FileOrNothing(const char* path) {
  return test::Exists(path) ? test::WithoutTimes(test::ReadFile(path)) : "(missing)";
}

class LogKill : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ModuleAttach(), 1);
    ASSERT_EQ(mkdir("/tmp/kill", 0755), 0);
  }
};

TEST_F(LogKill, AnAppendIsThereWholeOrNotAtAll) {
  const std::string standing = test::LogOf(ManyEntries());
  u32 unchanged = 0;
  const u32 stops = test::KillAtEachStop(
      [&standing] { test::WriteFile(kLog, standing); }, [] { return Append(1) == 0; },
      [&](u32 nth) {
        SCOPED_TRACE(nth);
        const std::string found = FileOrNothing(kLog);
        if (found == standing) {
          ++unchanged;
        } else {
          EXPECT_EQ(found, test::LogOf(ManyEntries() + Entry(1)));
        }
        EXPECT_TRUE(test::LockIsFree());
        const std::string before = found.substr(0, found.size() - sizeof "</EventLog>" + 1);
        EXPECT_EQ(Append(2), SM_STATUS_SUCCESS);
        EXPECT_EQ(FileOrNothing(kLog), before + Entry(2) + "</EventLog>");
      });
  EXPECT_GE(unchanged, 10u);
  EXPECT_GE(stops + 1 - unchanged, 2u) << "killed after the write, and not at all";
}

TEST_F(LogKill, WhatStandsBehindTheTagCostsNoEntry) {
  // Longer than an entry: the log is cut after the new closing tag.
  const std::string standing = test::LogOf(ManyEntries()) + std::string(2000, ' ');
  (void)test::KillAtEachStop([&standing] { test::WriteFile(kLog, standing); },
                             [] { return Append(1) == 0; },
                             [&](u32 nth) {
                               SCOPED_TRACE(nth);
                               std::string found = FileOrNothing(kLog);
                               found.erase(found.find_last_not_of(' ') + 1);
                               const bool unchanged = found == test::LogOf(ManyEntries());
                               const std::string kept = ManyEntries() + (unchanged ? "" : Entry(1));
                               EXPECT_EQ(found, test::LogOf(kept));
                               EXPECT_TRUE(test::LockIsFree());
                               EXPECT_EQ(Append(2), SM_STATUS_SUCCESS);
                               EXPECT_EQ(FileOrNothing(kLog), test::LogOf(kept + Entry(2)));
                             });
}

TEST_F(LogKill, ANewLogIsMissingEmptyOrWhole) {
  const u32 stops = test::KillAtEachStop(
      [] { (void)unlink(kLog); }, [] { return Append(1) == 0; },
      [](u32 nth) {
        SCOPED_TRACE(nth);
        const std::string found = FileOrNothing(kLog);
        const bool whole = found == test::LogOf(Entry(1));
        EXPECT_TRUE(whole || found.empty() || found == "(missing)") << found;
        EXPECT_TRUE(test::LockIsFree());
        EXPECT_EQ(Append(2), SM_STATUS_SUCCESS);
        EXPECT_EQ(FileOrNothing(kLog), test::LogOf((whole ? Entry(1) : "") + Entry(2)));
      });
  EXPECT_GE(stops, 10u);
}

TEST_F(LogKill, AMoveToTheBackupLosesNoEntryOfTheLog) {
  const std::string standing = test::LogOf(ManyEntries());
  const std::string begun = test::EntryOf(4, 1, "user", "source", "Log backup created");
  bool moved = false;
  (void)test::KillAtEachStop(
      [&standing] {
        test::WriteFile(kLog, standing);
        test::WriteFile(kBackup, test::LogOf(Entry(50)));
      },
      [&standing] { return Append(1, static_cast<u32>(standing.size())) == 0; },
      [&](u32 nth) {
        SCOPED_TRACE(nth);
        const std::string log = FileOrNothing(kLog);
        const std::string backup = FileOrNothing(kBackup);
        if (log == standing) {
          EXPECT_TRUE(backup == test::LogOf(Entry(50)) || backup == "(missing)") << backup;
        } else {
          moved = true;
          EXPECT_EQ(backup, standing);
          EXPECT_TRUE(log == "(missing)" || log.empty() || log == test::LogOf(begun) ||
                      log == test::LogOf(begun + Entry(1)))
              << log;
        }
        EXPECT_TRUE(test::LockIsFree());
        const bool empty = log.empty() || log == "(missing)";
        EXPECT_EQ(Append(2), SM_STATUS_SUCCESS);
        EXPECT_EQ(FileOrNothing(kLog), empty
                                           ? test::LogOf(Entry(2))
                                           : log.substr(0, log.size() - sizeof "</EventLog>" + 1) +
                                                 Entry(2) + "</EventLog>");
      });
  EXPECT_TRUE(moved);
}

TEST_F(LogKill, AClearedLogIsTheOldOneMissingEmptyOrBegunAnew) {
  const std::string standing = test::LogOf(ManyEntries());
  const std::string cleared = test::LogOf(test::EntryOf(4, 0, "user", "source", "Log was cleared"));
  (void)test::KillAtEachStop(
      [&standing] { test::WriteFile(kLog, standing); },
      [] { return PXTClearXMLLog(kLog, "user", "source") == SM_STATUS_SUCCESS; },
      [&](u32 nth) {
        SCOPED_TRACE(nth);
        const std::string found = FileOrNothing(kLog);
        EXPECT_TRUE(found == standing || found == "(missing)" || found.empty() || found == cleared)
            << found;
        EXPECT_TRUE(test::LockIsFree());
        EXPECT_EQ(Append(2), SM_STATUS_SUCCESS);
      });
  EXPECT_EQ(test::WithoutTimes(test::ReadFile(kLog)),
            test::LogOf(test::EntryOf(4, 0, "user", "source", "Log was cleared") + Entry(2)));
}

}  // namespace
}  // namespace qvx
