// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A new section is written through the copy; where that is not possible, it is appended in place.
#include "config/ini_section.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fs.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "qvxcs/status.h"

#include "config/ini_writer.h"
#include "frame/module.h"
#include "support/files.h"
#include "support/immutable.h"
#include "support/processes.h"
#include "support/refuse_call.h"
#include "support/small_disk.h"

namespace qvx {
namespace {

using test::Exists;
using test::LockIsFree;
using test::ModeOf;
using test::ReadFile;
using test::SmallDisk;
using test::WriteFile;

constexpr char kPath[] = "/tmp/d/a.ini";
constexpr char kTmpPath[] = "/tmp/d/pxtini32.tmp";
constexpr char kText[] = "[A]\nkey=1\n";
constexpr char kAdded[] = "[A]\nkey=1\n[B]\nkey=2\n";

u32 Add(const std::string& path = kPath, const std::string& value = "2") {
  return WriteINIFileValue_astring(
      {"B", "key", value.c_str(), static_cast<s32>(value.size()) + 1, path.c_str(), 1});
}

ino_t InodeOf(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

bool IsLink(const char* path) {
  struct stat status = {};
  return lstat(path, &status) == 0 && S_ISLNK(status.st_mode);
}

class IniSectionTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ModuleAttach(), 1);
    ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
    WriteFile(kPath, kText);
    inode_ = InodeOf(kPath);
  }

  void ExpectAddedInPlace(const std::string& path = kPath) const {
    EXPECT_EQ(Add(path), SM_STATUS_SUCCESS);
    EXPECT_EQ(ReadFile(path), kAdded);
    EXPECT_EQ(InodeOf(path), inode_);
    EXPECT_FALSE(Exists(kTmpPath));
    EXPECT_TRUE(LockIsFree());
  }

  // The status of an addition in a process where a call on the copy, or on the file opened for
  // appending, is refused. The copy is the second file to be opened, the appended file the third.
  static int StatusWhereRefused(u32 call, int nth, u16 error) {
    return test::InChild([=] {
      test::RefuseCall(call, test::NextDescriptor() + nth, error);
      return static_cast<int>(Add() & 0xFF);
    });
  }

  ino_t inode_ = 0;
};

constexpr int kCopy = 1;
constexpr int kAppended = 2;
constexpr int kWriteFailed = SM_STATUS_WRITE_FAILED;

TEST_F(IniSectionTest, GoesThroughTheCopy) {
  EXPECT_EQ(Add(), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), kAdded);
  EXPECT_NE(InodeOf(kPath), inode_);
  EXPECT_EQ(ModeOf(kPath), 01664u);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniSectionTest, AddsNoLineEndFirst) {
  WriteFile(kPath, "[A]\nkey=1");
  EXPECT_EQ(Add(), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=1[B]\nkey=2\n");
}

TEST_F(IniSectionTest, OfAMissingFileGoesThroughACopyToo) {
  ASSERT_EQ(unlink(kPath), 0);
  // If the file were created in place, the file opened first would keep its name.
  EXPECT_EQ(test::InChild([] {
              test::RefuseCall(SYS_fsync, test::NextDescriptor(), EIO);
              return static_cast<int>(Add());
            }),
            kWriteFailed);
  EXPECT_FALSE(Exists(kPath));
  EXPECT_EQ(Add(), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[B]\nkey=2\n");
}

TEST_F(IniSectionTest, IsAddedInPlaceBehindALink) {
  ASSERT_EQ(symlink(kPath, "/tmp/d/link.ini"), 0);
  ExpectAddedInPlace("/tmp/d/link.ini");
  EXPECT_TRUE(IsLink("/tmp/d/link.ini"));
}

TEST_F(IniSectionTest, IsMadeInPlaceBehindADanglingLink) {
  ASSERT_EQ(symlink("/tmp/behind.ini", "/tmp/d/link.ini"), 0);
  EXPECT_EQ(Add("/tmp/d/link.ini"), SM_STATUS_SUCCESS);
  EXPECT_TRUE(IsLink("/tmp/d/link.ini"));
  EXPECT_EQ(ReadFile("/tmp/behind.ini"), "[B]\nkey=2\n");
  EXPECT_EQ(ModeOf("/tmp/behind.ini"), 01664u);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniSectionTest, OfAMissingFileOfTheCopysOwnNameIsMadeInPlace) {
  EXPECT_EQ(Add(kTmpPath), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kTmpPath), "[B]\nkey=2\n");
  EXPECT_EQ(ModeOf(kTmpPath), 01664u);
}

TEST_F(IniSectionTest, BehindADanglingLinkOfTheCopysOwnNameIsMadeInPlace) {
  ASSERT_EQ(symlink("/tmp/behind.ini", kTmpPath), 0);
  EXPECT_EQ(Add(kTmpPath), SM_STATUS_SUCCESS);
  EXPECT_TRUE(IsLink(kTmpPath));
  EXPECT_EQ(ReadFile("/tmp/behind.ini"), "[B]\nkey=2\n");
}

TEST_F(IniSectionTest, OfAMissingFileWhoseCopyCannotBeMadeIsMadeInPlace) {
  ASSERT_EQ(unlink(kPath), 0);
  ASSERT_EQ(mkdir(kTmpPath, 0755), 0);
  EXPECT_EQ(Add(), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[B]\nkey=2\n");
  EXPECT_EQ(ModeOf(kPath), 01664u);
}

TEST_F(IniSectionTest, IsAddedInPlaceToAFileOfSeveralNames) {
  ASSERT_EQ(link(kPath, "/tmp/d/name.ini"), 0);
  ExpectAddedInPlace();
  EXPECT_EQ(ReadFile("/tmp/d/name.ini"), kAdded);
}

TEST_F(IniSectionTest, IsAddedInPlaceWhereAFileIsMounted) {
  WriteFile("/tmp/over.ini", kText);
  ASSERT_EQ(mount("/tmp/over.ini", kPath, nullptr, MS_BIND, nullptr), 0);
  inode_ = InodeOf("/tmp/over.ini");
  ExpectAddedInPlace();
  ASSERT_EQ(umount(kPath), 0);
  EXPECT_EQ(ReadFile(kPath), kText);
}

// The copy of a file in "/" is in the working directory.
TEST_F(IniSectionTest, IsAddedInPlaceWhereTheCopyLiesOnAnotherDisk) {
  const SmallDisk disk(8);
  ASSERT_EQ(chdir("/tmp/disk"), 0);
  WriteFile("/a.ini", kText);
  EXPECT_EQ(Add("/a.ini"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile("/a.ini"), kAdded);
  EXPECT_EQ(Add("/new.ini"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile("/new.ini"), "[B]\nkey=2\n");
  EXPECT_FALSE(Exists(SmallDisk::Path("pxtini32.tmp")));
  for (const char* path : {"/a.ini", "/new.ini"})
    ASSERT_EQ(unlink(path), 0);
  ASSERT_EQ(chdir("/"), 0);
}

TEST_F(IniSectionTest, IsAddedInPlaceToAnAppendOnlyFile) {
  ASSERT_EQ(chmod(kPath, 01664), 0);
  const test::Immutable appendOnly(kPath, FS_APPEND_FL);
  ExpectAddedInPlace();
}

TEST_F(IniSectionTest, IsAddedInPlaceOnADiskWithoutRoomForItInTheCopy) {
  // The copy takes the last two of four pages and then frees them.
  const SmallDisk disk(4);
  const std::string path = SmallDisk::Path("a.ini");
  const std::string text = std::string(8191, '#') + "\n";
  WriteFile(path, text);
  const ino_t inode = InodeOf(path);
  EXPECT_EQ(Add(path), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(path), text + "[B]\nkey=2\n");
  EXPECT_EQ(InodeOf(path), inode);
  EXPECT_FALSE(Exists(SmallDisk::Path("pxtini32.tmp")));
}

// An empty file, so that only the section is written to the copy.
TEST_F(IniSectionTest, IsAddedInPlaceWhereTheCopyIsBeyondTheQuota) {
  WriteFile(kPath, "");
  EXPECT_EQ(StatusWhereRefused(SYS_write, kCopy, EDQUOT), 0);
  EXPECT_EQ(ReadFile(kPath), "[B]\nkey=2\n");
  EXPECT_EQ(InodeOf(kPath), inode_);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniSectionTest, IsAddedInPlaceWhereTheFlushFindsNoRoomForTheCopy) {
  for (const u16 error : {u16{ENOSPC}, u16{EDQUOT}}) {
    WriteFile(kPath, kText);
    EXPECT_EQ(StatusWhereRefused(SYS_fsync, kCopy, error), 0) << error;
    EXPECT_EQ(ReadFile(kPath), kAdded) << error;
    EXPECT_EQ(InodeOf(kPath), inode_) << error;
    EXPECT_FALSE(Exists(kTmpPath)) << error;
  }
}

TEST_F(IniSectionTest, IsNotAddedWhereItsWriteToTheCopyFailsOtherwise) {
  WriteFile(kPath, "");
  EXPECT_EQ(StatusWhereRefused(SYS_write, kCopy, EIO), kWriteFailed);
  EXPECT_EQ(ReadFile(kPath), "");
}

TEST_F(IniSectionTest, IsNotAddedWhereTheCopysFlushOrCloseFailsOtherwise) {
  for (const u32 call : {u32{SYS_fsync}, u32{SYS_close}}) {
    EXPECT_EQ(StatusWhereRefused(call, kCopy, EIO), kWriteFailed) << call;
    EXPECT_EQ(ReadFile(kPath), kText) << call;
    EXPECT_EQ(InodeOf(kPath), inode_) << call;
  }
}

// Whatever the fault, even one that would leave room for just the section.
TEST_F(IniSectionTest, IsNotAddedWhereTheCopyOfTheFileIsNotWhole) {
  for (const u16 error : {u16{EIO}, u16{ENOSPC}}) {
    EXPECT_EQ(StatusWhereRefused(SYS_write, kCopy, error), kWriteFailed) << error;
    EXPECT_EQ(ReadFile(kPath), kText) << error;
  }
}

TEST_F(IniSectionTest, ThatIsAppendedButNotFlushedIsTakenBack) {
  ASSERT_EQ(link(kPath, "/tmp/d/name.ini"), 0);
  EXPECT_EQ(StatusWhereRefused(SYS_fsync, kAppended, EIO), kWriteFailed);
  EXPECT_EQ(ReadFile(kPath), kText);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniSectionTest, ThatIsLostOnCloseIsTakenBack) {
  ASSERT_EQ(link(kPath, "/tmp/d/name.ini"), 0);
  EXPECT_EQ(StatusWhereRefused(SYS_close, kAppended, EIO), kWriteFailed);
  EXPECT_EQ(ReadFile(kPath), kText);
}

// By then the path may name another file.
TEST_F(IniSectionTest, IsTakenBackThroughItsDescriptor) {
  ASSERT_EQ(link(kPath, "/tmp/d/name.ini"), 0);
  EXPECT_EQ(test::InChild([] {
              test::RefuseCall(SYS_fsync, test::NextDescriptor() + kAppended, EIO);
#ifdef SYS_truncate64
              test::RefusePathCall(SYS_truncate64, EIO);
#endif
              test::RefusePathCall(SYS_truncate, EIO);
              return static_cast<int>(Add());
            }),
            kWriteFailed);
  EXPECT_EQ(ReadFile(kPath), kText);
}

TEST_F(IniSectionTest, ThatCannotBeOpenedForAppendingLeavesTheFileAndNoCopy) {
  EXPECT_EQ(test::InChild([] {
              if (chown("/tmp/d", 1234, 1234) != 0 || setuid(1234) != 0) return 100;
              return static_cast<int>(Add());
            }),
            static_cast<int>(SM_STATUS_FILE_OPEN_FAILED));
  EXPECT_EQ(ReadFile(kPath), kText);
  EXPECT_EQ(InodeOf(kPath), inode_);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniSectionTest, OfAReadOnlyFileOfTheCallersOwnIsAdded) {
  ASSERT_EQ(chmod(kPath, 0400), 0);
  ASSERT_EQ(chown(kPath, 1234, 1234), 0);
  ASSERT_EQ(chown("/tmp/d", 1234, 1234), 0);
  EXPECT_EQ(test::InChild([] { return setuid(1234) == 0 ? static_cast<int>(Add()) : 100; }), 0);
  EXPECT_EQ(ReadFile(kPath), kAdded);
}

TEST_F(IniSectionTest, DeletingInAMissingSectionLeavesNoCopy) {
  EXPECT_EQ(WriteINIFileValue_astring({"B", "key", nullptr, 0, kPath, 1}),
            SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(ReadFile(kPath), kText);
  EXPECT_EQ(InodeOf(kPath), inode_);
  EXPECT_FALSE(Exists(kTmpPath));
}

}  // namespace
}  // namespace qvx
