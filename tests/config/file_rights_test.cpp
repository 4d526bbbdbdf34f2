// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The permissions of configuration files while they are created, whatever the umask.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "frame/module.h"
#include "support/files.h"
#include "support/processes.h"
#include "support/watch_rights.h"

namespace qvx {
namespace {

using test::Exists;
using test::ModeOf;
using test::ReadFile;
using test::RightsWatch;
using test::WatchRights;
using test::WriteFile;

constexpr char kDirectory[] = "/tmp/watched";
constexpr char kIniFile[] = "/tmp/watched/a.ini";
constexpr char kPairFile[] = "/tmp/watched/a.properties";
constexpr s32 kText = 1;
constexpr uid_t kUser = 1234;
constexpr gid_t kGroup = 4321;

u32 WriteIni(const char* section, const char* path = kIniFile) {
  return PXTWriteINIPathFileValue(section, "key", kText, "value", 6, path, QVX_LOCK_WAIT);
}

u32 SetPair() {
  char key[] = "key";
  char value[] = "value";
  const PXTKeyValue pair = {key, value};
  return PXTCFGSetKeyValue(kPairFile, &pair, 0);
}

class FileRights : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ModuleAttach(), 1);
    ASSERT_EQ(mkdir(kDirectory, 0777), 0);
    ASSERT_EQ(chmod(kDirectory, 0777), 0);
  }

  template <typename Work>
  static void ExpectNeverMoreThanInTheEnd(Work work) {
    const RightsWatch watch =
        WatchRights(kDirectory, [&work] { return work() == SM_STATUS_SUCCESS; });
    EXPECT_EQ(watch.Count(), 1u) << "one file is made";
    EXPECT_EQ(watch.Faults(), "");
  }
};

TEST_F(FileRights, OfAnIniFilesCopyAreNeverMoreThanInTheEnd) {
  WriteFile(kIniFile, "[A]\nkey=1\n");
  ExpectNeverMoreThanInTheEnd([] { return WriteIni("A"); });
}

TEST_F(FileRights, OfAnIniFileWithANewSectionAreNeverMoreThanInTheEnd) {
  WriteFile(kIniFile, "[A]\nkey=1\n");
  ExpectNeverMoreThanInTheEnd([] { return WriteIni("B"); });
}

TEST_F(FileRights, OfANewIniFileAreNeverMoreThanInTheEnd) {
  ExpectNeverMoreThanInTheEnd([] { return WriteIni("A"); });
  EXPECT_EQ(ModeOf(kIniFile), 01664u);
}

TEST_F(FileRights, OfANewIniFileBehindALinkAreNeverMoreThanInTheEnd) {
  ASSERT_EQ(symlink(kIniFile, "/tmp/link.ini"), 0);
  ExpectNeverMoreThanInTheEnd([] { return WriteIni("A", "/tmp/link.ini"); });
  EXPECT_EQ(ModeOf(kIniFile), 01664u);
}

TEST_F(FileRights, OfAKeyValueFilesCopyAreNeverMoreThanInTheEnd) {
  WriteFile(kPairFile, "key=1\n");
  ExpectNeverMoreThanInTheEnd([] { return SetPair(); });
}

TEST_F(FileRights, AnUpdatedFileKeepsItsOwnerAndGroup) {
  WriteFile(kIniFile, "[A]\nkey=1\n");
  WriteFile(kPairFile, "key=1\n");
  for (const char* path : {kIniFile, kPairFile})
    ASSERT_EQ(chown(path, kUser, kGroup), 0);
  ASSERT_EQ(WriteIni("A"), SM_STATUS_SUCCESS);
  ASSERT_EQ(WriteIni("B"), SM_STATUS_SUCCESS);
  ASSERT_EQ(SetPair(), SM_STATUS_SUCCESS);
  for (const char* path : {kIniFile, kPairFile}) {
    struct stat status = {};
    ASSERT_EQ(stat(path, &status), 0);
    EXPECT_EQ(status.st_uid, kUser) << path;
    EXPECT_EQ(status.st_gid, kGroup) << path;
    EXPECT_EQ(status.st_mode & 07777, 01664u) << path;
  }
}

// A member of a file's group who is not its owner.
TEST_F(FileRights, AFileThatMayNotBeGivenAwayKeepsItsGroup) {
  WriteFile(kIniFile, "[A]\nkey=1\n");
  ASSERT_EQ(chown(kIniFile, kUser, kGroup), 0);
  EXPECT_EQ(test::InChild([] {
              const gid_t groups[] = {kGroup};
              if (setgroups(1, groups) != 0 || setgid(kUser + 1) != 0 || setuid(kUser + 1) != 0) {
                return 100;
              }
              return static_cast<int>(WriteIni("A"));
            }),
            0);
  struct stat status = {};
  ASSERT_EQ(stat(kIniFile, &status), 0);
  EXPECT_EQ(status.st_uid, kUser + 1);
  EXPECT_EQ(status.st_gid, kGroup);
}

// Such a umask removes the owner's right to read the new file.
TEST_F(FileRights, AUmaskThatTakesTheOwnersRightsHindersNoUser) {
  for (const mode_t mask : {0477u, 0777u}) {
    SCOPED_TRACE(mask);
    WriteFile(kIniFile, "[A]\nkey=1\n");
    WriteFile(kPairFile, "key=1\n");
    for (const char* path : {kIniFile, kPairFile})
      ASSERT_EQ(chown(path, kUser, kUser), 0);
    EXPECT_EQ(test::InChild([mask] {
                if (setuid(kUser) != 0) return 100;
                (void)umask(mask);
                if (WriteIni("A") != SM_STATUS_SUCCESS) return 1;
                if (WriteIni("B") != SM_STATUS_SUCCESS) return 2;
                if (WriteIni("A", "/tmp/watched/new.ini") != SM_STATUS_SUCCESS) return 3;
                return SetPair() == SM_STATUS_SUCCESS ? 0 : 4;
              }),
              0);
    EXPECT_EQ(ReadFile(kIniFile), "[A]\nkey=value\n[B]\nkey=value\n");
    EXPECT_EQ(ReadFile("/tmp/watched/new.ini"), "[A]\nkey=value\n");
    EXPECT_EQ(ReadFile(kPairFile), "key=value\n");
    EXPECT_FALSE(Exists("/tmp/watched/pxtini32.tmp"));
    EXPECT_FALSE(Exists("/tmp/watched/pxtcfg32.tmp"));
    for (const char* path : {"/tmp/watched/new.ini", kIniFile, kPairFile}) {
      EXPECT_EQ(ModeOf(path), 01664u) << path;
      ASSERT_EQ(unlink(path), 0);
    }
  }
}

}  // namespace
}  // namespace qvx
