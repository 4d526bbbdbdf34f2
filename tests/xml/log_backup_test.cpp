// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_backup.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/status.h"

#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "xml/log_files.h"

namespace qvx {
namespace {

using test::Exists;
using test::ModeOf;
using test::ReadFile;
using test::WriteFile;

constexpr astring kLog[] = "/tmp/log.xml";
constexpr astring kBackup[] = "/tmp/log.xm_";

void AttachWith(const std::string& log, const std::string& backup) {
  ASSERT_EQ(ModuleAttach(), 1);
  WriteFile(kLog, log);
  WriteFile(kBackup, backup);
}

booln Checked(const astring* path, u32 maxSize, u32 entrySize) {
  booln backedUp = 0xAAAA;
  CheckBackupLogFile(path, maxSize, entrySize, &backedUp);
  return backedUp;
}

TEST(LogBackup, LastCharacterBecomesAnUnderscore) {
  const struct {
    const astring* path;
    const astring* backup;
    u32 size;
  } cases[] = {{"ab", "a_", 3}, {"/var/cmd.xml", "/var/cmd.xm_", 13}, {"a_", "a_", 3}};
  for (const auto& each : cases) {
    astring buffer[256] = {};
    u32 size = 256;
    EXPECT_EQ(GetBackupXMLLogPathFileName(each.path, buffer, &size), SM_STATUS_SUCCESS);
    EXPECT_STREQ(buffer, each.backup);
    EXPECT_EQ(size, each.size);
  }
}

TEST(LogBackup, PathsUnderTwoCharactersAreInvalid) {
  for (const astring* path : {"", "a"}) {
    astring buffer[256] = "kept";
    u32 size = 77;
    EXPECT_EQ(GetBackupXMLLogPathFileName(path, buffer, &size), SM_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(size, 77u);
    EXPECT_STREQ(buffer, "kept");
  }
}

TEST(LogBackup, MissingArgumentsAreInvalid) {
  astring buffer[256] = "kept";
  u32 size = 77;
  EXPECT_EQ(GetBackupXMLLogPathFileName(nullptr, buffer, &size), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(GetBackupXMLLogPathFileName("ab", buffer, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(size, 77u);
  EXPECT_STREQ(buffer, "kept");
}

TEST(LogBackup, NullBufferAsksForTheSize) {
  u32 size = 0;
  EXPECT_EQ(GetBackupXMLLogPathFileName("cmd.xml", nullptr, &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 8u);
  EXPECT_EQ(GetBackupXMLLogPathFileName("a", nullptr, &size), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(GetBackupXMLLogPathFileName(std::string(256, 'p').c_str(), nullptr, &size),
            SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 257u);
}

TEST(LogBackup, LongestNameFillsTheBuffer) {
  test::GuardBuffer<astring> buffer(256);
  u32 size = 0;
  EXPECT_EQ(GetBackupXMLLogPathFileName(std::string(255, 'p').c_str(), buffer.data(), &size),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 256u);
  EXPECT_EQ(std::string(buffer.data()), std::string(254, 'p') + "_");
  EXPECT_TRUE(buffer.FrontUntouched());
}

TEST(LogBackup, LongerPathsGiveTheNeededSizeAndTouchNoBuffer) {
  test::GuardBuffer<astring> buffer(256);
  u32 size = 256;
  EXPECT_EQ(GetBackupXMLLogPathFileName(std::string(256, 'p').c_str(), buffer.data(), &size),
            SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 257u);
  EXPECT_TRUE(buffer.UntouchedFrom(0));
  EXPECT_TRUE(buffer.FrontUntouched());
}

TEST(LogBackup, IncomingSizeIsNotConsulted) {
  for (const u32 incoming : {0u, 1u, 7u, 0xFFFFFFFFu}) {
    astring buffer[256] = {};
    u32 size = incoming;
    EXPECT_EQ(GetBackupXMLLogPathFileName("cmd.xml", buffer, &size), SM_STATUS_SUCCESS);
    EXPECT_STREQ(buffer, "cmd.xm_");
    EXPECT_EQ(size, 8u);
  }
}

TEST(LogBackup, PathMayBeTheBufferItself) {
  astring buffer[256] = "cmd.xml";
  u32 size = 0;
  EXPECT_EQ(GetBackupXMLLogPathFileName(buffer, buffer, &size), SM_STATUS_SUCCESS);
  EXPECT_STREQ(buffer, "cmd.xm_");
}

TEST(LogBackup, LogThatReachesTheMaximumReplacesTheOldBackup) {
  AttachWith("123456789", "old");
  ASSERT_EQ(chmod(kLog, 0400), 0);
  EXPECT_EQ(Checked(kLog, 10, 1), 1);
  EXPECT_FALSE(Exists(kLog));
  EXPECT_EQ(ReadFile(kBackup), "123456789");
  EXPECT_EQ(ModeOf(kBackup), 01664u);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(LogBackup, OldBackupGetsItsModeBeforeItGoes) {
  AttachWith("123456789", "old");
  ASSERT_EQ(chmod(kBackup, 0600), 0);
  ASSERT_EQ(link(kBackup, "/tmp/other-name"), 0);
  EXPECT_EQ(Checked(kLog, 1, 1), 1);
  EXPECT_EQ(test::ReadFile("/tmp/other-name"), "old");
  EXPECT_EQ(ModeOf("/tmp/other-name"), 01664u);
}

TEST(LogBackup, FirstBackupNeedsNoOldOne) {
  ASSERT_EQ(ModuleAttach(), 1);
  WriteFile(kLog, "1");
  EXPECT_EQ(Checked(kLog, 0, 0), 1);
  EXPECT_EQ(ReadFile(kBackup), "1");
}

TEST(LogBackup, LogBelowTheMaximumStays) {
  AttachWith("123456789", "old");
  EXPECT_EQ(Checked(kLog, 11, 1), 0);
  EXPECT_EQ(Checked(kLog, 10, 0), 0);
  EXPECT_EQ(ReadFile(kLog), "123456789");
  EXPECT_EQ(ReadFile(kBackup), "old");
}

TEST(LogBackup, SizeAndEntryTogetherMayPass32Bits) {
  AttachWith("123456789", "old");
  EXPECT_EQ(Checked(kLog, 0xFFFFFFFF, 0xFFFFFFF5), 0);
  EXPECT_EQ(Checked(kLog, 0xFFFFFFFF, 0xFFFFFFFF), 1);
}

TEST(LogBackup, MissingLogLeavesTheOldBackup) {
  ASSERT_EQ(ModuleAttach(), 1);
  WriteFile(kBackup, "old");
  EXPECT_EQ(BackupLogFile(kLog, 0, 0), kMinusOne);
  EXPECT_EQ(Checked(kLog, 0, 0), 0);
  EXPECT_EQ(ReadFile(kBackup), "old");
  EXPECT_FALSE(Exists(kLog));
  EXPECT_TRUE(test::LockIsFree());
}

TEST(LogBackup, LogThatAnotherProcessHasJustBegunAnewLeavesTheOldBackup) {
  AttachWith("new", "just moved");
  EXPECT_EQ(BackupLogFile(kLog, 10, 6), kMinusOne);
  EXPECT_EQ(ReadFile(kLog), "new");
  EXPECT_EQ(ReadFile(kBackup), "just moved");
  EXPECT_EQ(BackupLogFile(kLog, 10, 7), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kBackup), "new");
}

TEST(LogBackup, LogWhoseModeCannotBeSetLeavesTheOldBackup) {
  AttachWith("123456789", "old");
  ASSERT_EQ(chmod("/tmp", 0777), 0);
  EXPECT_TRUE(test::HoldsForNobody([] { return BackupLogFile(kLog, 1, 1) == kMinusOne; }));
  EXPECT_EQ(ReadFile(kLog), "123456789");
  EXPECT_EQ(ReadFile(kBackup), "old");
}

TEST(LogBackup, BackupThatCannotBeReplacedLeavesTheLog) {
  ASSERT_EQ(ModuleAttach(), 1);
  WriteFile(kLog, "123456789");
  ASSERT_EQ(mkdir(kBackup, 0755), 0);
  EXPECT_EQ(BackupLogFile(kLog, 1, 1), kMinusOne);
  EXPECT_EQ(Checked(kLog, 1, 1), 0);
  EXPECT_EQ(ReadFile(kLog), "123456789");
  EXPECT_TRUE(test::LockIsFree());
}

TEST(LogBackup, LogNamedLikeItsBackupHasNone) {
  ASSERT_EQ(ModuleAttach(), 1);
  WriteFile(kBackup, "both");
  EXPECT_EQ(BackupLogFile(kBackup, 1, 1), kMinusOne);
  EXPECT_EQ(Checked(kBackup, 1, 1), 0);
  EXPECT_EQ(ReadFile(kBackup), "both");
}

TEST(LogBackup, LogWithAPathTooLongHasNoBackup) {
  ASSERT_EQ(ModuleAttach(), 1);
  std::string path = "/tmp";
  while (path.size() < 256) {
    path += "/.";
  }
  path += "/log.xml";
  WriteFile(path, "123456789");
  EXPECT_EQ(BackupLogFile(path.c_str(), 1, 1), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(ReadFile(kLog), "123456789");
}

TEST(LogBackup, LogOf4GiBHasNoSizeAndNoBackup) {
  AttachWith("", "old");
  ASSERT_EQ(truncate(kLog, off_t{1} << 32), 0);
  EXPECT_EQ(Checked(kLog, 1, 1), 0);
  EXPECT_EQ(ReadFile(kBackup), "old");
}

TEST(LogBackup, DirectoryHasNoSizeAndNoBackup) {
  ASSERT_EQ(ModuleAttach(), 1);
  ASSERT_EQ(mkdir(kLog, 0755), 0);
  EXPECT_EQ(Checked(kLog, 0, 0), 0);
  EXPECT_EQ(ModeOf(kLog), 0755u);
}

TEST(LogBackup, WithoutTheLockNothingIsMoved) {
  AttachWith("123456789", "old");
  const test::LockHolder other(kIPCFilePath);
  const test::CountSleeps sleeps;
  EXPECT_EQ(BackupLogFile(kLog, 1, 1), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(test::CountSleeps::Count(), 60000u);
  EXPECT_EQ(ReadFile(kLog), "123456789");
  EXPECT_EQ(ReadFile(kBackup), "old");
}

TEST(LogBackup, WithoutMemoryNothingIsMoved) {
  AttachWith("123456789", "old");
  {
    const test::FailNthAllocation fault(1);
    EXPECT_EQ(BackupLogFile(kLog, 1, 1), SM_STATUS_NO_MEMORY);
  }
  EXPECT_EQ(ReadFile(kLog), "123456789");
  EXPECT_EQ(ReadFile(kBackup), "old");
}

}  // namespace
}  // namespace qvx
