// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/xml_log.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/immutable.h"
#include "support/threads.h"
#include "xml/log_files.h"

namespace qvx {
namespace {

using test::EntryOf;
using test::Exists;
using test::IsWellFormed;
using test::kNoMaximum;
using test::LogOf;
using test::ModeOf;
using test::ReadFile;
using test::WithoutTimes;
using test::WriteFile;

constexpr astring kLog[] = "/tmp/log.xml";
constexpr astring kBackup[] = "/tmp/log.xm_";
constexpr astring kDiskLog[] = "/tmp/disk/log.xml";

void Attach() {
  test::RequireSandbox();
  ASSERT_EQ(ModuleAttach(), 1);
}

u32 Append(const astring* path, u32 id, const astring* description, u32 maxSize = kNoMaximum) {
  return AppendToXMLLog(path, QVX_LOG_INFORMATION, id, "u", "s", description, nullptr, 0, maxSize);
}

std::string Plain(u32 id, const std::string& description) {
  return EntryOf(4, id, "u", "s", description);
}

std::string LogNow(const std::string& path = kLog) { return WithoutTimes(ReadFile(path)); }

// --- Appending ---

TEST(XmlLog, MissingFileBecomesHeadEntryAndClosingTagOnOneLine) {
  Attach();
  EXPECT_EQ(AppendToXMLLog(kLog, QVX_LOG_ERROR, 2, "user", "source", "text", nullptr, 0, 1000000),
            SM_STATUS_SUCCESS);
  const std::string log = ReadFile(kLog);
  EXPECT_EQ(WithoutTimes(log),
            "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?><EventLog>"
            "<LogEntry><ComputerName>qvxtest</ComputerName><Type>1</Type><ID>2</ID>"
            "<UserInfo>user</UserInfo><Source>source</Source><Description>text</Description>"
            "<Data></Data></LogEntry></EventLog>");
  EXPECT_EQ(log.find_first_of("\r\n"), std::string::npos);
  EXPECT_EQ(log.find("<EventLog>"), 65u);
  EXPECT_EQ(ModeOf(kLog), 01664u);
  EXPECT_TRUE(IsWellFormed(kLog));
}

TEST(XmlLog, EntriesStandOldestFirst) {
  Attach();
  for (const u32 id : {10u, 11u, 12u}) {
    EXPECT_EQ(Append(kLog, id, "d"), SM_STATUS_SUCCESS);
  }
  EXPECT_EQ(LogNow(), LogOf(Plain(10, "d") + Plain(11, "d") + Plain(12, "d")));
}

TEST(XmlLog, UserIsEscapedAndDescriptionIsNot) {
  Attach();
  EXPECT_EQ(AppendToXMLLog(kLog, QVX_LOG_INFORMATION, 1, "a<b", "s", "a<b", nullptr, 0, kNoMaximum),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(EntryOf(4, 1, "a&lt;b", "s", "a<b")));
}

TEST(XmlLog, ModeIsSetBeforeTheLogIsOpened) {
  Attach();
  WriteFile(kLog, LogOf(""));
  ASSERT_EQ(chmod(kLog, 0400), 0);
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf(kLog), 01664u);
}

TEST(XmlLog, OwnerWithoutTheRightToWriteGetsItFromTheMode) {
  Attach();
  ASSERT_EQ(chmod("/tmp", 0777), 0);
  WriteFile(kLog, LogOf(""));
  ASSERT_EQ(chown(kLog, test::kNobody, test::kNobody), 0);
  ASSERT_EQ(chmod(kLog, 0400), 0);
  EXPECT_TRUE(test::HoldsForNobody([] { return Append(kLog, 1, "d") == SM_STATUS_SUCCESS; }));
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "d")));
}

TEST(XmlLog, BadArgumentsTouchNothing) {
  Attach();
  const std::string user1024(1024, 'u');
  const std::string text16384(16384, 'd');
  const std::vector<u8> data(32769);
  const astring* path = "/tmp/new/log.xml";
  const struct {
    const astring* path;
    const astring* user;
    const astring* source;
    const astring* description;
    const void* data;
    u32 size;
  } cases[] = {
      {nullptr, "u", "s", "d", nullptr, 0},
      {path, user1024.c_str(), "s", "d", nullptr, 0},
      {path, "u", user1024.c_str(), "d", nullptr, 0},
      {path, "u", "s", text16384.c_str(), nullptr, 0},
      {path, "", "s", "d", nullptr, 0},
      {path, "u", "", "d", nullptr, 0},
      {path, "u", "s", "", nullptr, 0},
      {path, "u", "s", "d", nullptr, 1},
      {path, "u", "s", "d", data.data(), 32769},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(AppendToXMLLog(each.path, QVX_LOG_INFORMATION, 1, each.user, each.source,
                             each.description, each.data, each.size, 0),
              SM_STATUS_BAD_ARGUMENT);
  }
  EXPECT_FALSE(Exists("/tmp/new"));
}

TEST(XmlLog, OneDirectoryAboveTheLogIsMade) {
  Attach();
  EXPECT_EQ(Append("/tmp/new/log.xml", 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/new"), 0755u);
  EXPECT_EQ(LogNow("/tmp/new/log.xml"), LogOf(Plain(1, "d")));
  EXPECT_EQ(Append("/tmp/other/deeper/log.xml", 1, "d"), kMinusOne);
  EXPECT_FALSE(Exists("/tmp/other"));
}

TEST(XmlLog, PathWithoutADirectoryPartNeedsNone) {
  Attach();
  ASSERT_EQ(chdir("/tmp"), 0);
  EXPECT_EQ(Append("log.xml", 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "d")));
  EXPECT_EQ(CreateLogDir("/log.xml"), SM_STATUS_SUCCESS);
  EXPECT_EQ(Append("", 1, "d"), kMinusOne);
}

TEST(XmlLog, DirectoryThatCannotBeMadeIsMinusOne) {
  test::RequireSandbox();
  WriteFile("/tmp/file", "x");
  EXPECT_EQ(CreateLogDir("/tmp/file/log.xml"), kMinusOne);
  EXPECT_EQ(CreateLogDir("/tmp/file/deeper/log.xml"), kMinusOne);
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(CreateLogDir("/tmp/new/log.xml"), SM_STATUS_NO_MEMORY);
}

TEST(XmlLog, HundredBytesWithoutAClosingTagAreBadDataAndStay) {
  Attach();
  const std::string file(100, 'x');
  WriteFile(kLog, file);
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_BAD_DATA);
  EXPECT_EQ(ReadFile(kLog), file);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(XmlLog, LargeDamagedLogIsBadDataAndStays) {
  Attach();
  std::string file = test::kLogHead;
  while (file.size() < 100000) {
    file += "</EventLog<";
  }
  WriteFile(kLog, file);
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_BAD_DATA);
  EXPECT_EQ(ReadFile(kLog), file);
}

TEST(XmlLog, SixtyFourBytesAreWrittenAnewAndSixtyFiveAreNot) {
  Attach();
  WriteFile(kLog, std::string(64, 'x'));
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "d")));
  WriteFile(kLog, std::string(65, 'x'));
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_BAD_DATA);
  EXPECT_EQ(ReadFile(kLog), std::string(65, 'x'));
}

TEST(XmlLog, ClosingTagIsSoughtFromOffset65On) {
  Attach();
  WriteFile(kLog, std::string(65, 'x') + "</EventLog>");
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), std::string(65, 'x') + Plain(1, "d") + "</EventLog>");
  const std::string before = std::string(64, 'x') + "</EventLog>" + std::string(30, 'x');
  WriteFile(kLog, before);
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_BAD_DATA);
  EXPECT_EQ(ReadFile(kLog), before);
}

TEST(XmlLog, LastClosingTagIsTakenAndWhatFollowsItIsCut) {
  Attach();
  WriteFile(kLog, LogOf("one") + "two</EventLog>" + std::string(10000, 'g'));
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf("one") + "two" + Plain(1, "d") + "</EventLog>");
}

TEST(XmlLog, ClosingTagIsFoundAtEveryDistanceFromTheEnd) {
  Attach();
  std::vector<size_t> distances;
  for (size_t distance = 0; distance < 30; ++distance) {
    distances.push_back(distance);
  }
  for (size_t distance = 4070; distance < 4110; ++distance) {
    distances.push_back(distance);
    distances.push_back(distance + 4086);
  }
  for (const size_t distance : distances) {
    WriteFile(kLog, LogOf("kept") + std::string(distance, 'g'));
    ASSERT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS) << distance;
    ASSERT_EQ(LogNow(), LogOf("kept" + Plain(1, "d"))) << distance;
  }
}

TEST(XmlLog, DanglingLinkCountsAsMissing) {
  Attach();
  ASSERT_EQ(symlink("/tmp/target.xml", kLog), 0);
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow("/tmp/target.xml"), LogOf(Plain(1, "d")));
}

TEST(XmlLog, WhatIsNoRegularFileIsMinusOne) {
  Attach();
  ASSERT_EQ(mkdir("/tmp/folder", 0755), 0);
  ASSERT_EQ(mkfifo("/tmp/fifo", 0600), 0);
  EXPECT_EQ(Append("/tmp/folder", 1, "d"), kMinusOne);
  EXPECT_EQ(Append("/tmp/fifo", 1, "d"), kMinusOne);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(XmlLog, LogThatCannotBeOpenedIsNotTakenForMissing) {
  Attach();
  ASSERT_EQ(chmod("/tmp", 0777), 0);
  WriteFile(kLog, LogOf("kept"));
  ASSERT_EQ(chmod(kLog, 0600), 0);
  EXPECT_TRUE(test::HoldsForNobody([] { return Append(kLog, 1, "d") == kMinusOne; }));
  EXPECT_EQ(ReadFile(kLog), LogOf("kept"));
}

TEST(XmlLog, WithoutAnAttachNothingIsAppended) {
  WriteFile(kLog, LogOf("kept"));
  EXPECT_EQ(Append(kLog, 1, "d", 1), SM_STATUS_NOT_LOADED);
  EXPECT_EQ(ReadFile(kLog), LogOf("kept"));
  EXPECT_EQ(DeleteLogFile(kLog), SM_STATUS_LOCK_FAILED);
  EXPECT_TRUE(Exists(kLog));
}

TEST(XmlLog, DirectoryIsMadeBeforeTheHostIsAskedForItsName) {
  test::RequireSandbox();
  EXPECT_EQ(Append("/tmp/other/deeper/log.xml", 1, "d"), kMinusOne);
  EXPECT_EQ(Append("/tmp/new/log.xml", 1, "d"), SM_STATUS_NOT_LOADED);
  EXPECT_TRUE(Exists("/tmp/new"));
  EXPECT_FALSE(Exists("/tmp/new/log.xml"));
}

TEST(XmlLog, LockIsGivenBackAndNothingStaysOpen) {
  Attach();
  const int before = test::OpenDescriptors();
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(Append(kLog, 1, "d", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Append("/tmp", 1, "d"), kMinusOne);
  WriteFile(kLog, std::string(100, 'x'));
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_BAD_DATA);
  EXPECT_EQ(test::OpenDescriptors(), before);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(XmlLog, WaitForTheLockGivesUpAfterAMinuteOfAttempts) {
  Attach();
  WriteFile(kLog, LogOf("kept"));
  const test::LockHolder other(kIPCFilePath);
  {
    const test::CountSleeps sleeps;
    EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_LOCK_FAILED);
    EXPECT_EQ(test::CountSleeps::Count(), 60000u);
  }
  {
    const test::CountSleeps sleeps;
    EXPECT_EQ(ClearXMLLog(kLog, "u", "s"), SM_STATUS_LOCK_FAILED);
    EXPECT_EQ(test::CountSleeps::Count(), 60000u);
  }
  EXPECT_EQ(ReadFile(kLog), LogOf("kept"));
}

TEST(XmlLog, TheClosingTagIsLookedForUnderTheLock) {
  Attach();
  WriteFile(kLog, LogOf("one"));
  test::LockHolder other(kIPCFilePath);
  const pid_t child = fork();
  if (child == 0) _exit(static_cast<int>(Append(kLog, 1, "d")));
  while (!test::IsAsleep(child)) {
  }
  WriteFile(kLog, LogOf("one" + std::string(500, 't') + "two"));
  other.Kill();  // a release would wait for the child, which inherited its pipe
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(LogNow(), LogOf("one" + std::string(500, 't') + "two" + Plain(1, "d")));
}

TEST(XmlLog, KilledLockHolderLeavesTheLogUsable) {
  Attach();
  test::LockHolder other(kIPCFilePath);
  EXPECT_FALSE(test::LockIsFree());
  other.Kill();
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "d")));
}

TEST(XmlLog, WithoutMemoryTheLogStays) {
  Attach();
  WriteFile(kLog, LogOf("kept"));
  const std::vector<u8> data(500, 0x41);
  const u32 met = test::FailEachAllocation(
      [&data] {
        return AppendToXMLLog(kLog, QVX_LOG_INFORMATION, 1, "u", "s", "d", data.data(), 500,
                              kNoMaximum);
      },
      [](u32 status) {
        EXPECT_TRUE(status == kMinusOne || status == SM_STATUS_NO_MEMORY) << status;
        EXPECT_EQ(ReadFile(kLog), LogOf("kept"));
      });
  EXPECT_GE(met, 3u) << "two escaped texts and the entry";
  EXPECT_EQ(test::ElementsOf(ReadFile(kLog), "ID").size(), 1u);
}

// --- Full and protected disks ---

TEST(XmlLog, FullDiskCutsTheLogBackToItsOldEnd) {
  Attach();
  test::SmallDisk disk;
  ASSERT_EQ(Append(kDiskLog, 1, "d"), SM_STATUS_SUCCESS);
  const std::string before = ReadFile(kDiskLog);
  test::SmallDisk::Fill();
  EXPECT_EQ(Append(kDiskLog, 2, std::string(16000, 'd').c_str()), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(kDiskLog), before);
  EXPECT_TRUE(test::LockIsFree());
  test::SmallDisk::MakeRoom();
  EXPECT_EQ(Append(kDiskLog, 3, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(kDiskLog), LogOf(Plain(1, "d") + Plain(3, "d")));
}

TEST(XmlLog, SmallEntryThatFillsTheDiskIsTakenBackToo) {
  Attach();
  test::SmallDisk disk;
  ASSERT_EQ(Append(kDiskLog, 0, "d"), SM_STATUS_SUCCESS);
  test::SmallDisk::Fill();
  std::string before = ReadFile(kDiskLog);
  u32 id = 1;
  u32 status = SM_STATUS_SUCCESS;
  while ((status = Append(kDiskLog, id, "d")) == SM_STATUS_SUCCESS && id < 1000) {
    before = ReadFile(kDiskLog);
    ++id;
  }
  EXPECT_EQ(status, SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(kDiskLog), before);
  EXPECT_TRUE(IsWellFormed(kDiskLog));
  EXPECT_EQ(test::ElementsOf(before, "ID").size(), id);
}

TEST(XmlLog, BytesBehindTheClosingTagAreCutOnAFullDiskToo) {
  Attach();
  test::SmallDisk disk;
  WriteFile(kDiskLog, LogOf("kept") + "rest");
  test::SmallDisk::Fill();
  EXPECT_EQ(Append(kDiskLog, 2, std::string(16000, 'd').c_str()), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(kDiskLog), LogOf("kept"));
}

TEST(XmlLog, FirstEntryThatDoesNotFitLeavesAnEmptyFile) {
  Attach();
  test::SmallDisk disk;
  WriteFile(kDiskLog, "damaged");
  test::SmallDisk::Fill();
  EXPECT_EQ(Append(kDiskLog, 1, std::string(16000, 'd').c_str()), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(kDiskLog), "");
  EXPECT_EQ(Append("/tmp/disk/new.xml", 1, std::string(16000, 'd').c_str()),
            SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile("/tmp/disk/new.xml"), "");
  test::SmallDisk::MakeRoom();
  EXPECT_EQ(Append(kDiskLog, 2, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(kDiskLog), LogOf(Plain(2, "d")));
}

TEST(XmlLog, ADirectoryOrADeviceInALogsPlaceKeepsItsMode) {
  Attach();
  ASSERT_EQ(mkdir("/tmp/folder", 0755), 0);
  ASSERT_EQ(mknod("/tmp/device", S_IFCHR | 0666, makedev(1, 3)), 0);
  ASSERT_EQ(chmod("/tmp/device", 0666), 0);
  EXPECT_EQ(Append("/tmp/folder", 1, "d"), kMinusOne);
  EXPECT_EQ(Append("/tmp/device", 1, "d"), kMinusOne);
  EXPECT_EQ(DeleteLogFile("/tmp/folder"), kMinusOne);
  EXPECT_EQ(ModeOf("/tmp/folder"), 0755u);
  EXPECT_EQ(ModeOf("/tmp/device"), 0666u);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(XmlLog, AFolderBehindALinkKeepsItsModeWhenTheLogIsClearedOrMoved) {
  Attach();
  ASSERT_EQ(mkdir("/tmp/folder", 0755), 0);
  ASSERT_EQ(symlink("/tmp/folder", kLog), 0);
  EXPECT_EQ(Append(kLog, 1, "d"), kMinusOne);
  EXPECT_EQ(DeleteLogFile(kLog), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/folder"), 0755u);
  WriteFile(kLog, LogOf("full"));
  ASSERT_EQ(symlink("/tmp/folder", kBackup), 0);
  EXPECT_EQ(Append(kLog, 1, "d", 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/folder"), 0755u);
  EXPECT_EQ(ReadFile(kBackup), LogOf("full"));
}

TEST(XmlLog, AFifoInALogsPlaceIsDeletedWhenTheLogIsCleared) {
  Attach();
  ASSERT_EQ(mkfifo(kLog, 0600), 0);
  EXPECT_EQ(ClearXMLLog(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(0, "Log was cleared")));
}

// Whether no stop of an append to a missing log shows the log with a right that 01664 does not
// have, and the log has 01664 in the end.
bool NeverHasMoreRights(mode_t mask) {
  bool never = true;
  (void)unlink(kLog);
  const int status = test::RunStepwise(
      [mask] {
        umask(mask);
        return static_cast<int>(Append(kLog, 1, "d"));
      },
      [&never] {
        never = never && (ModeOf(kLog) & ~01664u) == 0;
        return true;
      });
  return status == 0 && never && ModeOf(kLog) == 01664u;
}

TEST(XmlLog, NobodyEverHasMoreRightsOnANewLogThanInTheEnd) {
  Attach();
  EXPECT_TRUE(NeverHasMoreRights(0));
  EXPECT_TRUE(NeverHasMoreRights(022));
}

TEST(XmlLog, AUmaskThatTakesItsOwnersRightsDoesNotKeepALogFromBeingMade) {
  Attach();
  ASSERT_EQ(chmod("/tmp", 0777), 0);
  for (const mode_t mask : {0477u, 0777u}) {
    (void)unlink(kLog);
    EXPECT_TRUE(test::HoldsForNobody([mask] {
      umask(mask);
      return Append(kLog, 1, "d") == SM_STATUS_SUCCESS && Append(kLog, 2, "d") == SM_STATUS_SUCCESS;
    }));
    EXPECT_EQ(ModeOf(kLog), 01664u);
    EXPECT_EQ(LogNow(), LogOf(Plain(1, "d") + Plain(2, "d")));
  }
}

TEST(XmlLog, ImmutableLogIsMinusOneAndStaysAsItIs) {
  Attach();
  ASSERT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  const std::string before = ReadFile(kLog);
  {
    const test::Immutable immutable(kLog);
    EXPECT_EQ(Append(kLog, 2, "d"), kMinusOne);
    EXPECT_EQ(Append(kLog, 2, "d", 1), kMinusOne);
    EXPECT_EQ(ClearXMLLog(kLog, "u", "s"), kMinusOne);
    EXPECT_EQ(ReadFile(kLog), before);
    EXPECT_TRUE(test::LockIsFree());
  }
  EXPECT_EQ(Append(kLog, 2, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "d") + Plain(2, "d")));
}

TEST(XmlLog, ReadOnlyDiskIsMinusOneAndKeepsTheLog) {
  Attach();
  test::SmallDisk disk;
  ASSERT_EQ(Append(kDiskLog, 1, "d"), SM_STATUS_SUCCESS);
  const std::string before = ReadFile(kDiskLog);
  test::SmallDisk::MakeReadOnly();
  EXPECT_EQ(Append(kDiskLog, 2, "d"), kMinusOne);
  EXPECT_EQ(Append(kDiskLog, 2, "d", 1), kMinusOne);
  EXPECT_EQ(Append("/tmp/disk/new.xml", 2, "d"), kMinusOne);
  EXPECT_EQ(Append("/tmp/disk/new/log.xml", 2, "d"), kMinusOne);
  EXPECT_EQ(ClearXMLLog(kDiskLog, "u", "s"), kMinusOne);
  EXPECT_EQ(ForceXMLLogExists(kDiskLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kDiskLog), before);
  EXPECT_TRUE(test::LockIsFree());
}

// --- Backups ---

TEST(XmlLog, ReachingTheMaximumMovesTheLogToItsBackup) {
  Attach();
  const std::string old = LogOf(std::string(990 - 75 - 11, 'o'));
  ASSERT_EQ(old.size(), 990u);
  WriteFile(kLog, old);
  EXPECT_EQ(Append(kLog, 9, "d", 1000), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kBackup), old);
  EXPECT_EQ(ModeOf(kBackup), 01664u);
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "Log backup created") + Plain(9, "d")));
  EXPECT_EQ(ModeOf(kLog), 01664u);
}

TEST(XmlLog, MaximumCountsTheEntryButNotItsClosingTag) {
  Attach();
  ASSERT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  const auto size = static_cast<u32>(ReadFile(kLog).size());
  const u32 entry = size - 75 - 11;
  EXPECT_EQ(Append(kLog, 2, "d", size + entry + 1), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists(kBackup));
  EXPECT_EQ(Append(kLog, 3, "d", size + entry + entry), SM_STATUS_SUCCESS);
  EXPECT_TRUE(Exists(kBackup));
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "Log backup created") + Plain(3, "d")));
}

TEST(XmlLog, BackupCreatedEntryNamesTheSameUserAndSource) {
  Attach();
  WriteFile(kLog, LogOf(""));
  EXPECT_EQ(AppendToXMLLog(kLog, 9, 8, nullptr, "a&b", nullptr, "A", 1, 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(EntryOf(4, 1, "", "a&amp;b", "Log backup created") +
                            EntryOf(9, 8, "", "a&amp;b", "",
                                    "0x00000000: 41" + std::string(49, ' ') + "A" +
                                        std::string(16, ' ') + "\r\n")));
}

TEST(XmlLog, BackupCreatedEntryThatFailsIsNotReported) {
  Attach();
  bool entryAlone = false;
  bool fired = true;
  for (u32 nth = 1; fired; ++nth) {
    WriteFile(kLog, LogOf("full"));
    (void)unlink(kBackup);
    u32 status = 0;
    {
      const test::FailNthAllocation fault(nth);
      status = Append(kLog, 9, "d", 1);
      fired = test::FailNthAllocation::Fired();
    }
    if (status == SM_STATUS_SUCCESS && Exists(kBackup) && LogNow() == LogOf(Plain(9, "d"))) {
      entryAlone = true;
    }
  }
  EXPECT_TRUE(entryAlone);
}

TEST(XmlLog, MissingLogHasNoBackupWhateverTheMaximum) {
  Attach();
  EXPECT_EQ(Append(kLog, 1, "d", 0), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists(kBackup));
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "d")));
}

TEST(XmlLog, FailedBackupLeavesTheEntryInTheFullLog) {
  Attach();
  WriteFile(kLog, LogOf("full"));
  ASSERT_EQ(mkdir(kBackup, 0755), 0);
  EXPECT_EQ(Append(kLog, 1, "d", 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf("full" + Plain(1, "d")));
}

// Its size is asked for before its mode is set, and cannot be had.
TEST(XmlLog, AFullLogThatItsOwnerCannotReadStaysAndTakesTheEntry) {
  constexpr uid_t kNobody = 65534;
  Attach();
  WriteFile(kLog, LogOf("full"));
  ASSERT_EQ(chown(kLog, kNobody, kNobody), 0);
  ASSERT_EQ(chmod(kLog, 0200), 0);
  ASSERT_EQ(chmod("/tmp", 0777), 0);
  EXPECT_TRUE(test::HoldsForNobody([] { return Append(kLog, 1, "d", 1) == SM_STATUS_SUCCESS; }));
  EXPECT_EQ(LogNow(), LogOf("full" + Plain(1, "d")));
  EXPECT_EQ(ModeOf(kLog), 01664u);
  EXPECT_FALSE(Exists(kBackup));
}

TEST(XmlLog, LogNamedLikeItsBackupGrowsBeyondTheMaximum) {
  Attach();
  WriteFile(kBackup, LogOf("full"));
  EXPECT_EQ(Append(kBackup, 1, "d", 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(kBackup), LogOf("full" + Plain(1, "d")));
}

TEST(XmlLog, DamagedLogIsReplacedOnceItIsFull) {
  Attach();
  WriteFile(kLog, std::string(200, 'x'));
  EXPECT_EQ(Append(kLog, 1, "d", 200), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kBackup), std::string(200, 'x'));
  EXPECT_EQ(LogNow(), LogOf(Plain(1, "Log backup created") + Plain(1, "d")));
}

// --- Making and clearing ---

TEST(XmlLog, ForcedLogBeginsWithAClearedEntry) {
  Attach();
  EXPECT_EQ(ForceXMLLogExists(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(0, "Log was cleared")));
  EXPECT_EQ(ForceXMLLogExists(kLog, "other", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(0, "Log was cleared")));
}

TEST(XmlLog, FileOf65BytesExistsAndOneOf64DoesNot) {
  Attach();
  WriteFile(kLog, std::string(65, 'x'));
  EXPECT_EQ(ForceXMLLogExists(kLog, "", ""), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kLog), std::string(65, 'x'));
  WriteFile(kLog, std::string(64, 'x'));
  EXPECT_EQ(ForceXMLLogExists(kLog, nullptr, nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(EntryOf(4, 0, "", "", "Log was cleared")));
}

TEST(XmlLog, FileOf4GiBExists) {
  Attach();
  WriteFile(kLog, "");
  ASSERT_EQ(truncate(kLog, off_t{1} << 32), 0);
  EXPECT_EQ(ForceXMLLogExists(kLog, "", ""), SM_STATUS_SUCCESS);
  struct stat info = {};
  ASSERT_EQ(stat(kLog, &info), 0);
  EXPECT_EQ(info.st_size, off_t{1} << 32);
}

TEST(XmlLog, ForceOfAMissingLogChecksItsArguments) {
  Attach();
  EXPECT_EQ(ForceXMLLogExists(nullptr, "u", "s"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ForceXMLLogExists(kLog, "", "s"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ForceXMLLogExists(kLog, "u", ""), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ForceXMLLogExists("/tmp", "u", "s"), kMinusOne);
  EXPECT_FALSE(Exists(kLog));
}

TEST(XmlLog, ClearedLogHoldsOneEntryAndTheBackupStays) {
  Attach();
  WriteFile(kLog, LogOf("old"));
  WriteFile(kBackup, "backup");
  EXPECT_EQ(ClearXMLLog(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(0, "Log was cleared")));
  EXPECT_EQ(ReadFile(kBackup), "backup");
}

TEST(XmlLog, DamagedLogIsUsableAfterAClear) {
  Attach();
  WriteFile(kLog, std::string(100, 'x'));
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_BAD_DATA);
  EXPECT_EQ(ClearXMLLog(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(Append(kLog, 1, "d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(0, "Log was cleared") + Plain(1, "d")));
}

TEST(XmlLog, MissingLogCannotBeClearedAndIsNotCreated) {
  Attach();
  EXPECT_EQ(ClearXMLLog(kLog, "u", "s"), kMinusOne);
  EXPECT_FALSE(Exists(kLog));
  EXPECT_TRUE(test::LockIsFree());
}

TEST(XmlLog, ClearWithABadArgumentLeavesTheLog) {
  Attach();
  WriteFile(kLog, LogOf("kept"));
  const std::string tooLong(1024, 'u');
  EXPECT_EQ(ClearXMLLog(nullptr, "u", "s"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ClearXMLLog(kLog, "", "s"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ClearXMLLog(kLog, "u", ""), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ClearXMLLog(kLog, tooLong.c_str(), "s"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ClearXMLLog(kLog, "u", tooLong.c_str()), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ClearXMLLog("/tmp/missing.xml", "", "s"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ReadFile(kLog), LogOf("kept"));
}

TEST(XmlLog, DeleteIsMinusOneWhereTheUnlinkFails) {
  Attach();
  WriteFile(kLog, "x");
  EXPECT_EQ(DeleteLogFile(kLog), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists(kLog));
  EXPECT_EQ(DeleteLogFile(kLog), kMinusOne);
  EXPECT_EQ(DeleteLogFile("/tmp"), kMinusOne);
  EXPECT_EQ(DeleteLogFile(nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(XmlLog, DeleteSetsTheModeFirst) {
  Attach();
  WriteFile(kLog, "x");
  ASSERT_EQ(chmod(kLog, 0600), 0);
  ASSERT_EQ(link(kLog, "/tmp/other-name"), 0);
  EXPECT_EQ(DeleteLogFile(kLog), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/other-name"), 01664u);
}

TEST(XmlLog, DeleteNeedsNoModeThatCanBeSet) {
  Attach();
  ASSERT_EQ(chmod("/tmp", 0777), 0);
  WriteFile(kLog, "x");
  EXPECT_TRUE(test::HoldsForNobody([] { return DeleteLogFile(kLog) == SM_STATUS_SUCCESS; }));
  EXPECT_FALSE(Exists(kLog));
}

TEST(XmlLog, ExportedNamesDoTheSame) {
  Attach();
  EXPECT_EQ(PXTForceXMLLogExists(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTAppendToXMLLog(kLog, QVX_LOG_INFORMATION, 5, "u", "s", "d", nullptr, 0, kNoMaximum),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(0, "Log was cleared") + Plain(5, "d")));
  EXPECT_EQ(PXTClearXMLLog(kLog, "u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Plain(0, "Log was cleared")));
  astring buffer[256] = {};
  u32 size = 0;
  EXPECT_EQ(PXTGetBackupXMLLogPathFileName(kLog, buffer, &size), SM_STATUS_SUCCESS);
  EXPECT_STREQ(buffer, kBackup);
}

// --- Many processes ---

constexpr u32 kWriters = 16;
constexpr u32 kAppends = 1000;

// Each writer names itself as the user and counts its entries in the identifier.
int WriteAll(u32 writer, u32 maxSize) {
  const std::string user = "w" + std::to_string(writer);
  for (u32 id = 1000; id < 1000 + kAppends; ++id) {
    if (AppendToXMLLog(kLog, QVX_LOG_INFORMATION, id, user.c_str(), "s", "d", nullptr, 0,
                       maxSize) != 0)
      return 1;
  }
  return 0;
}

bool RunWriters(u32 maxSize) {
  for (u32 writer = 0; writer < kWriters; ++writer) {
    if (fork() == 0) {
      _exit(WriteAll(writer, maxSize));
    }
  }
  bool good = true;
  for (u32 writer = 0; writer < kWriters; ++writer) {
    int status = 0;
    good = wait(&status) > 0 && status == 0 && good;
  }
  return good;
}

// The identifiers of each writer's own entries in the order of the text.
std::vector<std::vector<u32>> IdsByWriter(const std::string& text) {
  const std::vector<std::string> users = test::ElementsOf(text, "UserInfo");
  const std::vector<std::string> ids = test::ElementsOf(text, "ID");
  std::vector<std::vector<u32>> found(kWriters);
  if (users.size() != ids.size()) return {};
  for (size_t i = 0; i < users.size(); ++i) {
    const auto id = static_cast<u32>(std::stoul(ids[i]));
    if (id >= 1000) {
      found.at(std::stoul(users[i].substr(1))).push_back(id);
    }
  }
  return found;
}

TEST(XmlLog, SixteenProcessesLoseNoEntryAndKeepTheirOrder) {
  Attach();
  ASSERT_TRUE(RunWriters(kNoMaximum));
  EXPECT_TRUE(IsWellFormed(kLog));
  EXPECT_FALSE(Exists(kBackup));
  const std::vector<std::vector<u32>> ids = IdsByWriter(ReadFile(kLog));
  ASSERT_EQ(ids.size(), kWriters);
  for (const std::vector<u32>& own : ids) {
    ASSERT_EQ(own.size(), kAppends);
    for (u32 i = 0; i < kAppends; ++i) {
      ASSERT_EQ(own[i], 1000 + i);
    }
  }
}

TEST(XmlLog, SixteenProcessesReachingTheMaximumLeaveLogAndBackupWhole) {
  Attach();
  ASSERT_TRUE(RunWriters(131072));
  EXPECT_TRUE(IsWellFormed(kLog));
  EXPECT_TRUE(IsWellFormed(kBackup));
  const std::string backup = ReadFile(kBackup);
  // No process moves a log that another has just begun: each backup was full.
  EXPECT_GT(backup.size(), 131072u - 400);
  // What is left of each writer is the end of what it wrote, without a gap.
  const std::vector<std::vector<u32>> ids = IdsByWriter(backup + ReadFile(kLog));
  ASSERT_EQ(ids.size(), kWriters);
  for (const std::vector<u32>& own : ids) {
    for (size_t i = 0; i < own.size(); ++i) {
      ASSERT_EQ(own[i], 1000 + kAppends - own.size() + i);
    }
  }
}

// --- Killed writers ---

// Whether the child was killed at its n-th stop; false when it finished before that.
template <typename Body>
bool KilledAtStop(u32 nth, Body body) {
  u32 stops = 0;
  const auto look = [&stops, nth] { return ++stops < nth; };
  return test::RunStepwise(body, look) == test::kKilled;
}

TEST(XmlLog, WriterKilledAtAnyMomentLeavesTheOldLogOrTheNew) {
  Attach();
  const std::string before = LogOf(Plain(1, "d"));
  const std::string after = LogOf(Plain(1, "d") + Plain(2, "d"));
  u32 kills = 0;
  for (bool killed = true; killed; ++kills) {
    WriteFile(kLog, before);
    killed = KilledAtStop(kills + 1, [] { return static_cast<int>(Append(kLog, 2, "d")); });
    const std::string log = LogNow();
    ASSERT_TRUE(log == before || log == after) << kills;
    ASSERT_EQ(Append(kLog, 3, "d"), SM_STATUS_SUCCESS);
    ASSERT_EQ(LogNow(), log.substr(0, log.size() - 11) + Plain(3, "d") + test::kLogTail);
  }
  EXPECT_GT(kills, 10u);
}

TEST(XmlLog, WriterKilledWhileItBacksUpLosesNoEntryOfTheLog) {
  Attach();
  const std::string before = LogOf(Plain(1, "d"));
  u32 kills = 0;
  for (bool killed = true; killed; ++kills) {
    WriteFile(kLog, before);
    WriteFile(kBackup, "old");
    killed = KilledAtStop(kills + 1, [] { return static_cast<int>(Append(kLog, 2, "d", 1)); });
    if (Exists(kLog) && ReadFile(kLog) == before) {
      ASSERT_TRUE(!Exists(kBackup) || ReadFile(kBackup) == "old") << kills;
    } else {
      ASSERT_EQ(ReadFile(kBackup), before) << kills;
    }
    ASSERT_EQ(Append(kLog, 3, "d"), SM_STATUS_SUCCESS);
    ASSERT_TRUE(IsWellFormed(kLog));
  }
  EXPECT_GT(kills, 20u);
}

TEST(XmlLog, WriterKilledAtItsFirstEntryLeavesNoDamagedLog) {
  Attach();
  u32 kills = 0;
  for (bool killed = true; killed; ++kills) {
    (void)unlink(kLog);
    killed = KilledAtStop(kills + 1, [] { return static_cast<int>(Append(kLog, 2, "d")); });
    const std::string log = Exists(kLog) ? LogNow() : "";
    ASSERT_TRUE(log.empty() || log == LogOf(Plain(2, "d"))) << kills;
    ASSERT_EQ(Append(kLog, 3, "d"), SM_STATUS_SUCCESS);
    ASSERT_EQ(LogNow(), LogOf((log.empty() ? "" : Plain(2, "d")) + Plain(3, "d")));
  }
  EXPECT_GT(kills, 10u);
}

}  // namespace
}  // namespace qvx
