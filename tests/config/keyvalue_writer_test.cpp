// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/keyvalue_writer.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/processes.h"

namespace qvx {
namespace {

using namespace std::string_literals;

constexpr char kFile[] = "/tmp/kv/test.properties";
constexpr char kTemporary[] = "/tmp/kv/pxtcfg32.tmp";
constexpr u32 kFailed = 0xFFFFFFFF;

u32 Set(const std::string& path, std::string key, std::string value, u32 index) {
  const PXTKeyValue pair = {key.data(), value.data()};
  return PXTCFGSetKeyValue(path.c_str(), &pair, index);
}

std::string Content() { return test::ReadFile(kFile); }

class KeyValueWriter : public testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    ASSERT_EQ(ModuleAttach(), 1);
    ASSERT_EQ(mkdir("/tmp/kv", 0755), 0);
  }
};

// The directory that a path names is created; for a path that names none, no directory is checked.
TEST_F(KeyValueWriter, ABareNameInADirectoryThatCannotBeEnteredIsAnOpenFailure) {
  ASSERT_EQ(chmod("/tmp/kv", 0700), 0);
  ASSERT_EQ(chdir("/tmp/kv"), 0);
  EXPECT_EQ(test::InChild([] {
              if (setuid(65534) != 0) return 100;
              return Set("x", "a", "1", 0) == SM_STATUS_FILE_OPEN_ERROR ? 3 : 4;
            }),
            3);
}

TEST_F(KeyValueWriter, AFileOfTheCopysOwnNameIsRefusedAndKept) {
  test::WriteFile(kTemporary, "a=1\n");
  ASSERT_EQ(symlink(kTemporary, kFile), 0);
  for (const char* path : {kTemporary, kFile}) {
    EXPECT_EQ(Set(path, "a", "2", 0), SM_STATUS_FILE_OPEN_ERROR) << path;
    EXPECT_EQ(Set(path, "a", "2", 7), SM_STATUS_FILE_OPEN_ERROR) << path;
    EXPECT_EQ(test::ReadFile(kTemporary), "a=1\n") << path;
  }
}

TEST_F(KeyValueWriter, IndexChoosesTheOccurrenceToReplace) {
  test::WriteFile(kFile, "a=1\nb=2\na=3\n");
  EXPECT_EQ(Set(kFile, "a", "x", 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=1\nb=2\na=x\n");
  EXPECT_EQ(Set(kFile, "a", "y", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=y\nb=2\na=x\n");
}

TEST_F(KeyValueWriter, NextOccurrenceIsAppended) {
  test::WriteFile(kFile, "a=1\na=2\n");
  EXPECT_EQ(Set(kFile, "a", "3", 2), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=1\na=2\na=3\n");
}

TEST_F(KeyValueWriter, OccurrenceBeyondTheNextIsRefused) {
  test::WriteFile(kFile, "a=1\na=2\n");
  EXPECT_EQ(Set(kFile, "a", "x", 3), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(Set(kFile, "b", "x", 1), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(Content(), "a=1\na=2\n");
  EXPECT_TRUE(test::LockIsFree());
}

TEST_F(KeyValueWriter, FirstOccurrenceIsAppendedToAFileWithoutIt) {
  test::WriteFile(kFile, "");
  EXPECT_EQ(Set(kFile, "a", "1", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=1\n");
  EXPECT_EQ(Set(kFile, "b", "", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=1\nb=\n");
}

TEST_F(KeyValueWriter, AppendsWithoutEndingTheLastLine) {
  test::WriteFile(kFile, "a=1");
  EXPECT_EQ(Set(kFile, "b", "2", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=1b=2\n");
}

TEST_F(KeyValueWriter, OtherLinesStayAsTheyAre) {
  const std::string before = "# a=0\n; a=0\n\n  b = \"x y\" \r\nword\nc\0d=\0\n"s;
  const std::string after = " # a = 0\r\n\"q\" = \"z\"";
  test::WriteFile(kFile, before + " a = \"old\" \r\n" + after);
  EXPECT_EQ(Set(kFile, "a", " new \"x\"", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), before + "a= new \"x\"\n" + after);
}

TEST_F(KeyValueWriter, KeysAreComparedCleanedAndExactly) {
  test::WriteFile(kFile, "A=1\n \"a\" =2\nab=3\n");
  EXPECT_EQ(Set(kFile, "a", "x", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "A=1\na=x\nab=3\n");
}

TEST_F(KeyValueWriter, LastLineWithoutEndIsReplacedByOneWithEnd) {
  test::WriteFile(kFile, "b=1\na=1");
  EXPECT_EQ(Set(kFile, "a", "2", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "b=1\na=2\n");
}

TEST_F(KeyValueWriter, LongLineIsReplacedInItsFirstPieceOnly) {
  test::WriteFile(kFile,
                  "a=" + std::string(8447, 'x') + "rest\nb=" + std::string(9000, 'y') + "\n");
  EXPECT_EQ(Set(kFile, "a", "1", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=1\nrest\nb=" + std::string(9000, 'y') + "\n");
}

TEST_F(KeyValueWriter, MissingFileIsAnOpenError) {
  EXPECT_EQ(Set(kFile, "a", "1", 0), SM_STATUS_FILE_OPEN_ERROR);
  EXPECT_FALSE(test::Exists(kFile));
  EXPECT_TRUE(test::LockIsFree());
}

TEST_F(KeyValueWriter, PathThatIsNoFileIsAnOpenError) {
  ASSERT_EQ(mkdir(kFile, 0755), 0);
  EXPECT_EQ(Set(kFile, "a", "1", 0), SM_STATUS_FILE_OPEN_ERROR);
  ASSERT_EQ(rmdir(kFile), 0);
  ASSERT_EQ(mkfifo(kFile, 0644), 0);
  EXPECT_EQ(Set(kFile, "a", "1", 0), SM_STATUS_FILE_OPEN_ERROR);
}

TEST_F(KeyValueWriter, TemporaryFileThatCannotBeMadeIsAnOpenError) {
  test::WriteFile(kFile, "a=1\n");
  ASSERT_EQ(mkdir(kTemporary, 0755), 0);
  EXPECT_EQ(Set(kFile, "a", "2", 0), SM_STATUS_FILE_OPEN_ERROR);
  EXPECT_EQ(Content(), "a=1\n");
}

TEST_F(KeyValueWriter, KeyAndValueOf8449CharactersAreTooLarge) {
  test::WriteFile(kFile, "a=1\n");
  EXPECT_EQ(Set(kFile, "a", std::string(8448, 'v'), 0), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(Set(kFile, std::string(8449, 'k'), "", 0), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(Content(), "a=1\n");
  const std::string largest(8447, 'v');
  EXPECT_EQ(Set(kFile, "a", largest, 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=" + largest + "\n");
}

TEST_F(KeyValueWriter, PairIsCheckedBeforeTheDirectoryIsCreated) {
  const char* const path = "/tmp/kv/new/test.properties";
  EXPECT_EQ(Set(path, "a", std::string(8448, 'v'), 0), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(PXTCFGSetKeyValue(path, nullptr, 0), SM_STATUS_INVALID_PARAMETER);
  EXPECT_FALSE(test::Exists("/tmp/kv/new"));
}

TEST_F(KeyValueWriter, DirectoryIsCreatedBeforeTheLockIsTaken) {
  const test::LockHolder other;
  const test::CountSleeps sleeps;
  EXPECT_EQ(Set("/tmp/kv/new/test.properties", "a", "1", 0), SM_STATUS_LOCK_FAILED);
  EXPECT_TRUE(test::Exists("/tmp/kv/new"));
}

TEST_F(KeyValueWriter, NullArgumentsAreRefused) {
  test::WriteFile(kFile, "a=1\n");
  astring text[] = "a";
  const PXTKeyValue pair = {text, text};
  const PXTKeyValue noKey = {nullptr, text};
  const PXTKeyValue noValue = {text, nullptr};
  for (const auto set : {PXTCFGSetKeyValue, PXTCFGInstSetKeyValue}) {
    EXPECT_EQ(set(nullptr, &pair, 0), SM_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(set(kFile, nullptr, 0), SM_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(set(kFile, &noKey, 0), SM_STATUS_INVALID_PARAMETER);
    EXPECT_EQ(set(kFile, &noValue, 0), SM_STATUS_INVALID_PARAMETER);
  }
  EXPECT_EQ(SetKeyValueEntry(nullptr, &pair, 0), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(Content(), "a=1\n");
}

TEST_F(KeyValueWriter, NameOfMoreThan256CharactersIsAnOpenError) {
  const std::string directory = "/tmp/kv/" + std::string(120, 'd');
  ASSERT_EQ(mkdir(directory.c_str(), 0755), 0);
  const std::string longest = directory + "/" + std::string(256 - directory.size() - 1, 'f');
  test::WriteFile(longest, "a=1\n");
  test::WriteFile(longest + "f", "a=1\n");
  EXPECT_EQ(Set(longest, "a", "2", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(test::ReadFile(longest), "a=2\n");
  EXPECT_EQ(Set(longest + "f", "a", "2", 0), SM_STATUS_FILE_OPEN_ERROR);
  EXPECT_EQ(test::ReadFile(longest + "f"), "a=1\n");
}

TEST_F(KeyValueWriter, InstallRelativeNameLiesBelowTheIniPath) {
  const std::string path = "/etc/cim/zarn/plinthos/vexilon//qvx/ini/qvx.properties";
  test::WriteFile(path, "a=1\n");
  astring key[] = "a";
  astring value[] = "2";
  const PXTKeyValue pair = {key, value};
  EXPECT_EQ(PXTCFGInstSetKeyValue("qvx/ini/qvx.properties", &pair, 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(test::ReadFile(path), "a=2\n");
}

TEST_F(KeyValueWriter, InstallRelativeNameIsCutAt255Characters) {
  const std::string name(300, 'n');
  const std::string path = ("/etc/cim/zarn/plinthos/vexilon//" + name).substr(0, 255);
  test::WriteFile(path, "a=1\n");
  astring key[] = "a";
  astring value[] = "2";
  const PXTKeyValue pair = {key, value};
  EXPECT_EQ(PXTCFGInstSetKeyValue(name.c_str(), &pair, 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(test::ReadFile(path), "a=2\n");
}

TEST_F(KeyValueWriter, LastDirectoryIsCreatedBeforeTheFileIsFoundMissing) {
  EXPECT_EQ(Set("/tmp/kv/new/test.properties", "a", "1", 0), SM_STATUS_FILE_OPEN_ERROR);
  EXPECT_EQ(test::ModeOf("/tmp/kv/new"), 0755u);
  EXPECT_EQ(Set("/tmp/kv/x/y/test.properties", "a", "1", 0), kFailed);
  EXPECT_FALSE(test::Exists("/tmp/kv/x"));
}

TEST_F(KeyValueWriter, NameWithoutDirectoryLiesInTheWorkingDirectory) {
  test::WriteFile(kFile, "a=1\n");
  ASSERT_EQ(chdir("/tmp/kv"), 0);
  EXPECT_EQ(Set("test.properties", "a", "2", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=2\n");
  EXPECT_FALSE(test::Exists(kTemporary));
}

TEST_F(KeyValueWriter, FileInTheRootDirectoryIsCopiedThere) {
  test::WriteFile(kFile, "a=1\n");
  ASSERT_EQ(mkdir("/tmp/kv/elsewhere", 0755), 0);
  ASSERT_EQ(mkdir("/tmp/kv/elsewhere/pxtcfg32.tmp", 0755), 0);
  const int status = test::InChild([] {
    if (chroot("/tmp/kv") != 0 || chdir("/elsewhere") != 0) return 255;
    return static_cast<int>(Set("/test.properties", "a", "2", 0));
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(Content(), "a=2\n");
}

TEST_F(KeyValueWriter, FileHasMode01664AndNoCopyRemains) {
  test::WriteFile(kFile, "a=1\n");
  ASSERT_EQ(chmod(kFile, 0600), 0);
  EXPECT_EQ(Set(kFile, "a", "2", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(test::ModeOf(kFile), 01664u);
  EXPECT_FALSE(test::Exists(kTemporary));
  EXPECT_TRUE(test::LockIsFree());
}

TEST_F(KeyValueWriter, OldTemporaryFileIsNotWrittenThrough) {
  test::WriteFile(kFile, "a=1\n");
  test::WriteFile("/tmp/kv/victim", "precious\n");
  ASSERT_EQ(symlink("/tmp/kv/victim", kTemporary), 0);
  EXPECT_EQ(Set(kFile, "a", "2", 0), SM_STATUS_SUCCESS);
  EXPECT_EQ(Content(), "a=2\n");
  EXPECT_EQ(test::ReadFile("/tmp/kv/victim"), "precious\n");
}

TEST_F(KeyValueWriter, ALinkBecomesAFile) {
  test::WriteFile(kFile, "a=1\n");
  ASSERT_EQ(symlink(kFile, "/tmp/kv/link"), 0);
  EXPECT_EQ(Set("/tmp/kv/link", "a", "2", 0), SM_STATUS_SUCCESS);
  struct stat status = {};
  ASSERT_EQ(lstat("/tmp/kv/link", &status), 0);
  EXPECT_EQ(status.st_mode, mode_t{S_IFREG | 01664});
  EXPECT_EQ(test::ReadFile("/tmp/kv/link"), "a=2\n");
  EXPECT_EQ(Content(), "a=1\n");
}

TEST_F(KeyValueWriter, FullDiskIsAWriteFailureAndLeavesTheFile) {
  ASSERT_EQ(mount("tmpfs", "/tmp/kv", "tmpfs", 0, "size=8k"), 0);
  const std::string content =
      "b=" + std::string(3000, 'x') + "\nc=" + std::string(3000, 'y') + "\n";
  test::WriteFile(kFile, content);
  EXPECT_EQ(Set(kFile, "a", "1", 0), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(Content(), content);
  EXPECT_TRUE(test::LockIsFree());
}

TEST_F(KeyValueWriter, FileThatCannotBeReadToItsEndFails) {
  test::WriteFile(kFile, "");
  ASSERT_EQ(mount("/proc/self/mem", kFile, nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(Set(kFile, "a", "1", 0), kFailed);
  EXPECT_TRUE(test::LockIsFree());
}

TEST_F(KeyValueWriter, ProtectedFileCannotBeReplaced) {
  test::WriteFile(kFile, "a=1\n");
  ASSERT_EQ(mount(kFile, kFile, nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(Set(kFile, "a", "2", 0), SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_EQ(Content(), "a=1\n");
  EXPECT_TRUE(test::LockIsFree());
}

TEST_F(KeyValueWriter, WaitsForTheLockAndThenGivesUp) {
  test::WriteFile(kFile, "a=1\n");
  const test::LockHolder other;
  const test::CountSleeps sleeps;
  EXPECT_EQ(Set(kFile, "a", "2", 0), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(test::CountSleeps::Count(), 60000u);
  EXPECT_EQ(Content(), "a=1\n");
}

TEST_F(KeyValueWriter, WithoutMemoryTheFileStays) {
  test::WriteFile(kFile, "a=1\n");
  astring key[] = "a";
  astring value[] = "2";
  const PXTKeyValue pair = {key, value};
  const u32 met = test::FailEachAllocation([&] { return CFGSetKeyValue(kFile, 0, &pair, 0); },
                                           [](u32 status) {
                                             EXPECT_EQ(status, SM_STATUS_NO_MEMORY);
                                             EXPECT_EQ(Content(), "a=1\n");
                                             EXPECT_TRUE(test::LockIsFree());
                                           });
  EXPECT_GE(met, 2u);
  EXPECT_EQ(Content(), "a=2\n");
}

TEST_F(KeyValueWriter, InstallRelativeNameWithoutTheIniPathIsAnOpenError) {
  astring text[] = "a";
  const PXTKeyValue pair = {text, text};
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(CFGSetKeyValue("test.properties", 1, &pair, 0), SM_STATUS_FILE_OPEN_ERROR);
}

TEST(KeyValueWriterDetached, WriteFailsWhileTheLibraryIsNotAttached) {
  test::WriteFile("/tmp/test.properties", "a=1\n");
  EXPECT_EQ(Set("/tmp/test.properties", "a", "2", 0), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(test::ReadFile("/tmp/test.properties"), "a=1\n");
}

}  // namespace
}  // namespace qvx
