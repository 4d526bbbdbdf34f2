// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "qvxcs/status.h"

#include "base/results.h"
#include "config/ini_reader.h"
#include "config/ini_section.h"
#include "frame/module.h"
#include "os/descriptor.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"
#include "support/sanitizers.h"
#include "support/small_disk.h"

namespace qvx {
namespace {

using test::Exists;
using test::LockHolder;
using test::LockIsFree;
using test::ModeOf;
using test::ReadFile;
using test::SmallDisk;
using test::WriteFile;

constexpr char kPath[] = "/tmp/d/a.ini";
constexpr char kTmpPath[] = "/tmp/d/pxtini32.tmp";

u32 Write(const std::string& section, const std::string& key, const std::string& value,
          const std::string& path = kPath, booln flag = 0) {
  return WriteINIFileValue_astring({section.c_str(), key.c_str(), value.c_str(),
                                    static_cast<s32>(value.size()) + 1, path.c_str(), flag});
}

u32 Delete(const char* section, const char* key, const char* path = kPath) {
  return WriteINIFileValue_astring({section, key, nullptr, 0, path, 0});
}

class IniWriter : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(ModuleAttach(), 1); }

  // A file with this text, in a directory that holds nothing else.
  static void Given(const std::string& text) {
    (void)mkdir("/tmp/d", 0755);
    WriteFile(kPath, text);
  }

  // What is in the file after "key" of section A was set to "value".
  static std::string AfterSetting(const std::string& text, const char* key = "key") {
    Given(text);
    EXPECT_EQ(Write("A", key, "value"), SM_STATUS_SUCCESS);
    return ReadFile(kPath);
  }

  static std::string AfterDeleting(const std::string& text) {
    Given(text);
    EXPECT_EQ(Delete("A", "key"), SM_STATUS_SUCCESS);
    return ReadFile(kPath);
  }
};

TEST_F(IniWriter, MissingFileIsCreatedWithItsDirectory) {
  EXPECT_EQ(Write("Net", "port", "80"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[Net]\nport=80\n");
  EXPECT_EQ(ModeOf(kPath), 01664u);
  EXPECT_EQ(ModeOf("/tmp/d"), 0755u);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniWriter, AFileOfTheCopysOwnNameIsRefusedAndKept) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  WriteFile(kTmpPath, "[Net]\nport=80\n");
  ASSERT_EQ(symlink(kTmpPath, kPath), 0);
  for (const char* path : {kTmpPath, kPath}) {
    EXPECT_EQ(Write("Net", "port", "81", path), SM_STATUS_FILE_OPEN_FAILED) << path;
    EXPECT_EQ(Delete("Log", "port", path), SM_STATUS_FILE_OPEN_FAILED) << path;
    EXPECT_EQ(ReadFile(kTmpPath), "[Net]\nport=80\n") << path;
  }
}

TEST_F(IniWriter, KeyIsReplacedWhereItStands) {
  Given("[Net]\nport=80\n[Log]\n");
  EXPECT_EQ(Write("Net", "port", "81"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[Net]\nport=81\n[Log]\n");
  EXPECT_EQ(ModeOf(kPath), 01664u);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniWriter, NewKeyComesBeforeTheNextHeader) {
  Given("[Net]\nport=80\n[Log]\n");
  EXPECT_EQ(Write("Net", "host", "x"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[Net]\nport=80\nhost=x\n[Log]\n");
}

TEST_F(IniWriter, NewKeyFollowsCommentsAndBlankLines) {
  EXPECT_EQ(AfterSetting("[A]\nx=1\n; end\n\n [Bad\ny=2\n"),
            "[A]\nx=1\n; end\n\nkey=value\n [Bad\ny=2\n");
}

TEST_F(IniWriter, NewKeyOfTheLastSectionComesAtTheEnd) {
  EXPECT_EQ(AfterSetting("[B]\nkey=1\n[A]\nx=1\n"), "[B]\nkey=1\n[A]\nx=1\nkey=value\n");
}

TEST_F(IniWriter, MissingSectionIsAppended) {
  Given("[Net]\nport=80\n");
  ASSERT_EQ(chmod(kPath, 0600), 0);
  EXPECT_EQ(Write("Sec", "key", "value"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[Net]\nport=80\n[Sec]\nkey=value\n");
  EXPECT_EQ(ModeOf(kPath), 01664u);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniWriter, AppendingMakesTheFileWritableFirst) {
  constexpr uid_t kNobody = 65534;
  Given("[Net]\n");
  ASSERT_EQ(chmod(kPath, 0400), 0);
  ASSERT_EQ(chown(kPath, kNobody, static_cast<gid_t>(-1)), 0);
  const int result = test::InChild([] {
    if (setuid(kNobody) != 0) return 1;
    return AppendValue({"Sec", "key", "value"}, kPath) == SM_STATUS_SUCCESS ? 3 : 4;
  });
  EXPECT_EQ(result, 3);
  EXPECT_EQ(ReadFile(kPath), "[Net]\n[Sec]\nkey=value\n");
}

TEST_F(IniWriter, AppendedSectionJoinsALastLineWithoutItsLineEnd) {
  Given("[Net]\nport=80");
  EXPECT_EQ(Write("Sec", "key", "value"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[Net]\nport=80[Sec]\nkey=value\n");
}

TEST_F(IniWriter, KeyJoinsALastLineWithoutItsLineEnd) {
  EXPECT_EQ(AfterSetting("[A]\nx=1"), "[A]\nx=1key=value\n");
  EXPECT_EQ(AfterSetting("[A]"), "[A]key=value\n");
}

TEST_F(IniWriter, LastLineWithoutItsLineEndIsReplacedWithOne) {
  EXPECT_EQ(AfterSetting("[A]\nkey=1"), "[A]\nkey=value\n");
}

TEST_F(IniWriter, DeletedKeyLosesItsLine) {
  EXPECT_EQ(AfterDeleting("[A]\nx=1\nkey=1\ny=2\n"), "[A]\nx=1\ny=2\n");
  EXPECT_EQ(AfterDeleting("[A]\nkey=1"), "[A]\n");
}

TEST_F(IniWriter, DeletingAMissingKeyChangesNothing) {
  EXPECT_EQ(AfterDeleting("[A]\nx=1\n[B]\nkey=1\n"), "[A]\nx=1\n[B]\nkey=1\n");
  EXPECT_EQ(AfterDeleting("[A]\nx=1"), "[A]\nx=1");
}

TEST_F(IniWriter, DeletingInAMissingSectionChangesNothing) {
  Given("[A]\nkey=1\n");
  EXPECT_EQ(Delete("B", "key"), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=1\n");
  EXPECT_FALSE(Exists(kTmpPath));
  EXPECT_EQ(Delete("B", "key", "/tmp/d/missing.ini"), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_FALSE(Exists("/tmp/d/missing.ini"));
}

TEST_F(IniWriter, OnlyTheFirstKeyOfTheFirstSectionIsChanged) {
  EXPECT_EQ(AfterSetting("[A]\nkey=1\nkey=2\n[A]\nkey=3\n"), "[A]\nkey=value\nkey=2\n[A]\nkey=3\n");
  EXPECT_EQ(AfterSetting("key=0\n[A]\nx=1\n[A]\nkey=3\n"),
            "key=0\n[A]\nx=1\nkey=value\n[A]\nkey=3\n");
}

TEST_F(IniWriter, KeysMatchAsTheReaderTakesThem) {
  EXPECT_EQ(AfterSetting("[A]\n \tkey=1\n"), "[A]\nkey=value\n");
  EXPECT_EQ(AfterSetting("[A]\nkey =1\n"), "[A]\nkey =1\nkey=value\n");
  EXPECT_EQ(AfterSetting("[A]\nKey=1\n"), "[A]\nKey=1\nkey=value\n");
  EXPECT_EQ(AfterSetting("[A]\n#key=1\n;key=1\n"), "[A]\n#key=1\n;key=1\nkey=value\n");
  EXPECT_EQ(AfterSetting(" [A] more\nkey=1\n"), " [A] more\nkey=value\n");
  EXPECT_EQ(AfterSetting("#[A]\n[A]\n"), "#[A]\n[A]\nkey=value\n");
}

TEST_F(IniWriter, BareLineCountsAsItsKeysLine) {
  EXPECT_EQ(AfterSetting("[A]\n key\nx=1\n"), "[A]\nkey=value\nx=1\n");
  EXPECT_EQ(AfterDeleting("[A]\nkey\n"), "[A]\n");
  EXPECT_EQ(AfterSetting("[A]\nkey"), "[A]\nkey=value\n");
  // A carriage return makes it another key.
  EXPECT_EQ(AfterSetting("[A]\nkey\r\n"), "[A]\nkey\r\nkey=value\n");
}

TEST_F(IniWriter, OnlyTheFirstOfABareLineAndAKeysLineIsChanged) {
  EXPECT_EQ(AfterSetting("[A]\nkey\nkey=1\n"), "[A]\nkey=value\nkey=1\n");
  EXPECT_EQ(AfterDeleting("[A]\nkey\nkey=1\n"), "[A]\nkey=1\n");
  EXPECT_EQ(AfterDeleting("[A]\nkey=1\nkey\n"), "[A]\nkey\n");
}

TEST_F(IniWriter, EmptyKeyTakesTheFirstBlankLine) {
  EXPECT_EQ(AfterSetting("[A]\nx=1\n\n\n", ""), "[A]\nx=1\n=value\n\n");
  EXPECT_EQ(AfterSetting("[A]\nx=1\n  \n", ""), "[A]\nx=1\n=value\n");
}

TEST_F(IniWriter, OldLongLinesAreReplacedInTheirFirstPieceOnly) {
  const std::string first = "key=" + std::string(8445, 'v');
  EXPECT_EQ(AfterSetting("[A]\n" + first + "rest\n"), "[A]\nkey=value\nrest\n");
}

TEST_F(IniWriter, LongLinesAreKeptWhole) {
  const std::string line = "x=" + std::string(30000, 'v') + "\n";
  EXPECT_EQ(AfterSetting(line + "[A]\n" + line + "key=1\n" + line),
            line + "[A]\n" + line + "key=value\n" + line);
}

TEST_F(IniWriter, BytesThatAreNotUnderstoodAreKept) {
  const std::string before("\0\xFF\x80\r\n[A]\0tail\nx\0=\0\n", 19);
  const std::string after("y=\0\0\n\0", 6);
  Given(before + "key=1\n" + after);
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), before + "key=value\n" + after);
}

TEST_F(IniWriter, LineWithANulByteIsReplacedWhole) {
  Given(std::string("[A]\nkey=1\0 2\nx=1\n", 17));
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=value\nx=1\n");
}

TEST_F(IniWriter, MalformedHeaderBeforeTheSectionLeavesTheFile) {
  Given("[Bad\n[A]\nkey=1\n");
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_EQ(ReadFile(kPath), "[Bad\n[A]\nkey=1\n");
  EXPECT_TRUE(Exists(kTmpPath));
  EXPECT_TRUE(LockIsFree());
  // A leftover copy does no harm.
  Given("[A]\n");
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists(kTmpPath));
}

TEST_F(IniWriter, MalformedHeaderBehindTheSectionIsCopied) {
  EXPECT_EQ(AfterSetting("[A]\nkey=1\n[Bad\n"), "[A]\nkey=value\n[Bad\n");
}

TEST_F(IniWriter, LongestNamesAndValueAreWritten) {
  const std::string name(255, 'n');
  const std::string value(8192, 'v');
  EXPECT_EQ(Write(name, name, value), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[" + name + "]\n" + name + "=" + value + "\n");
  EXPECT_EQ(Write(name, name, "1"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[" + name + "]\n" + name + "=1\n");
  EXPECT_EQ(Write(name, name, value), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[" + name + "]\n" + name + "=" + value + "\n");
}

TEST_F(IniWriter, LongerNamesAndMissingOnesAreBadArguments) {
  const std::string name(256, 'n');
  EXPECT_EQ(Write(name, "key", "value"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(Write("A", name, "value"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(WriteINIFileValue_astring({nullptr, "key", "v", 2, kPath, 0}), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(WriteINIFileValue_astring({"A", nullptr, "v", 2, kPath, 0}), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(WriteINIFileValue_astring({"A", "key", "v", 2, nullptr, 0}), SM_STATUS_BAD_ARGUMENT);
  // Names are checked before sizes.
  EXPECT_EQ(WriteINIFileValue_astring({nullptr, "key", "v", 9, kPath, 0}), SM_STATUS_BAD_ARGUMENT);
  EXPECT_FALSE(Exists("/tmp/d"));
}

TEST_F(IniWriter, SizeMustBeTheLengthPlusOne) {
  for (const s32 size : {6, 4, 1, 0, -1, -2147483647 - 1, 2147483647}) {
    EXPECT_EQ(WriteINIFileValue_astring({"A", "key", "abcd", size, kPath, 0}),
              SM_STATUS_DATA_TOO_LARGE)
        << size;
  }
  for (const s32 size : {1, -1, 8194}) {
    EXPECT_EQ(WriteINIFileValue_astring({"A", "key", nullptr, size, kPath, 0}),
              SM_STATUS_DATA_TOO_LARGE)
        << size;
  }
  EXPECT_EQ(Write("A", "key", std::string(8193, 'v')), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_FALSE(Exists("/tmp/d"));
  EXPECT_EQ(WriteINIFileValue_astring({"A", "key", "abcd", 5, kPath, 0}), SM_STATUS_SUCCESS);
  EXPECT_EQ(WriteINIFileValue_astring({"A", "key", "", 1, kPath, 0}), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=\n");
}

TEST_F(IniWriter, DirectoryThatCannotBeCreatedIsMinusOne) {
  EXPECT_EQ(Write("A", "key", "value", "/tmp/d/e/a.ini"), kMinusOne);
  EXPECT_FALSE(Exists("/tmp/d"));
  WriteFile("/tmp/file", "");
  EXPECT_EQ(Write("A", "key", "value", "/tmp/file/a.ini"), kMinusOne);
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniWriter, PathWithoutADirectoryUsesTheWorkingDirectory) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  ASSERT_EQ(chdir("/tmp/d"), 0);
  // A directory in the copy's place shows where the copy would be.
  ASSERT_EQ(mkdir(kTmpPath, 0755), 0);
  WriteFile("x.ini", "[A]\n");
  EXPECT_EQ(Write("A", "key", "value", "x.ini"), SM_STATUS_FILE_OPEN_FAILED);
  WriteFile("/x.ini", "[A]\n");
  EXPECT_EQ(Write("A", "key", "value", "/x.ini"), SM_STATUS_FILE_OPEN_FAILED);
  (void)unlink("/x.ini");
  ASSERT_EQ(rmdir(kTmpPath), 0);
  EXPECT_EQ(Write("A", "key", "value", "x.ini"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile("/tmp/d/x.ini"), "[A]\nkey=value\n");
}

TEST_F(IniWriter, AFileInTheRootDirectoryHasItsCopyInTheWorkingDirectory) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  ASSERT_EQ(chdir("/tmp/d"), 0);
  WriteFile("/x.ini", "[A]\nkey=1\n[Bad\n");
  WriteFile("/pxtini32.tmp", "kept");
  // The copy of a failed write is left where it was made.
  EXPECT_EQ(Write("B", "key", "value", "/x.ini"), SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_TRUE(Exists(kTmpPath));
  EXPECT_EQ(ReadFile("/pxtini32.tmp"), "kept");
  for (const char* path : {"/x.ini", "/pxtini32.tmp"})
    ASSERT_EQ(unlink(path), 0);
}

TEST_F(IniWriter, FilesThatCannotBeOpenedAreRefused) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  ASSERT_EQ(mkfifo("/tmp/d/fifo", 0666), 0);
  ASSERT_EQ(mkdir("/tmp/d/e", 0755), 0);
  for (const char* path : {"/tmp/d/fifo", "/tmp/d/e", "/tmp/d/"}) {
    EXPECT_EQ(Write("A", "key", "value", path), SM_STATUS_FILE_OPEN_FAILED) << path;
  }
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniWriter, DanglingLinkIsAMissingFile) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  ASSERT_EQ(symlink("/tmp/behind.ini", kPath), 0);
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile("/tmp/behind.ini"), "[A]\nkey=value\n");
}

TEST_F(IniWriter, AKeyMakesALinkAFile) {
  Given("[A]\nkey=1\n");
  for (const auto make : {symlink, link}) {
    ASSERT_EQ(make(kPath, "/tmp/d/other.ini"), 0);
    ASSERT_EQ(chmod(kPath, 0600), 0);
    EXPECT_EQ(Write("A", "key", "2", "/tmp/d/other.ini"), SM_STATUS_SUCCESS);
    struct stat status = {};
    ASSERT_EQ(lstat("/tmp/d/other.ini", &status), 0);
    EXPECT_EQ(status.st_mode, mode_t{S_IFREG | 01664});
    EXPECT_EQ(status.st_nlink, 1u);
    EXPECT_EQ(ReadFile("/tmp/d/other.ini"), "[A]\nkey=2\n");
    EXPECT_EQ(ReadFile(kPath), "[A]\nkey=1\n");
    EXPECT_EQ(ModeOf(kPath), 0600u);
    ASSERT_EQ(unlink("/tmp/d/other.ini"), 0);
  }
}

TEST_F(IniWriter, CopyNeverFollowsALink) {
  Given("[A]\n");
  WriteFile("/tmp/other", "other");
  ASSERT_EQ(symlink("/tmp/other", kTmpPath), 0);
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile("/tmp/other"), "other");
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=value\n");
}

// The directory that a path names is created; for a path that names none, no directory is checked.
TEST_F(IniWriter, ABareNameInADirectoryThatCannotBeEnteredIsAnOpenFailure) {
  ASSERT_EQ(mkdir("/tmp/d", 0700), 0);
  ASSERT_EQ(chdir("/tmp/d"), 0);
  EXPECT_EQ(test::InChild([] {
              if (setuid(65534) != 0) return 100;
              return static_cast<int>(Write("A", "key", "value", "x.ini", 1));
            }),
            static_cast<int>(SM_STATUS_FILE_OPEN_FAILED));
}

TEST_F(IniWriter, ProtectedFileIsLeft) {
  Given("[A]\nkey=1\n");
  ASSERT_EQ(mount(kPath, kPath, nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_TRUE(LockIsFree());
  ASSERT_EQ(umount(kPath), 0);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=1\n");
}

TEST_F(IniWriter, ReadOnlyDiskIsLeft) {
  const SmallDisk disk(4);
  const std::string path = SmallDisk::Path("a.ini");
  WriteFile(path, "[A]\nkey=1\n");
  SmallDisk::MakeReadOnly();
  EXPECT_EQ(Write("A", "key", "value", path), SM_STATUS_FILE_OPEN_FAILED);
  EXPECT_EQ(Write("A", "key", "value", SmallDisk::Path("new.ini")), SM_STATUS_FILE_OPEN_FAILED);
  EXPECT_EQ(ReadFile(path), "[A]\nkey=1\n");
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniWriter, FullDiskLeavesTheOldFile) {
  // Three pages of four are taken, which leaves no room for the copy.
  const SmallDisk disk(4);
  const std::string path = SmallDisk::Path("a.ini");
  const std::string text = "[A]\nkey=1\n[B]\n" + std::string(12000, '#') + "\n";
  WriteFile(path, text);
  EXPECT_EQ(Write("A", "key", "value", path), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(path), text);
  EXPECT_EQ(Write("Sec", "key", "value", path), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(path), text);
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniWriter, SmallCopyOnAFullDiskLeavesTheOldFile) {
  // The copy is written only when it is closed.
  const SmallDisk disk(2);
  const std::string path = SmallDisk::Path("a.ini");
  WriteFile(path, "[A]\nkey=1\n");
  WriteFile(SmallDisk::Path("filler"), std::string(4096, 'f'));
  EXPECT_EQ(Write("A", "key", "value", path), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(path), "[A]\nkey=1\n");
}

TEST_F(IniWriter, FailedAppendIsCutBack) {
  // The copy of two pages fits beside the file and is gone when the append needs three more.
  const SmallDisk disk(4);
  const std::string path = SmallDisk::Path("a.ini");
  const std::string text = std::string(8189, '#') + "\n";
  WriteFile(path, text);
  EXPECT_EQ(Write("Sec", std::string(255, 'k'), std::string(8192, 'v'), path),
            SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(path), text);
  EXPECT_EQ(Write("Sec", "key", "value", path), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(path), text + "[Sec]\nkey=value\n");
}

TEST_F(IniWriter, NewFileOnAFullDiskStaysEmpty) {
  const SmallDisk disk(2);
  const std::string path = SmallDisk::Path("a.ini");
  WriteFile(SmallDisk::Path("filler"), std::string(8192, 'f'));
  EXPECT_EQ(Write("A", "key", "value", path), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile(path), "");
  EXPECT_TRUE(LockIsFree());
}

TEST_F(IniWriter, LockHeldByAnotherProcessRefusesTheWrite) {
  Given("[A]\nkey=1\n");
  LockHolder holder;
  for (const booln flag : {booln{0}, booln{2}, booln{0x101}}) {
    EXPECT_EQ(Write("A", "key", "value", kPath, flag), SM_STATUS_LOCK_FAILED);
  }
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=1\n");
  EXPECT_FALSE(Exists(kTmpPath));
  holder.Kill();
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=value\n");
}

TEST_F(IniWriter, WaitingEndsAfter60000Milliseconds) {
  Given("[A]\nkey=1\n");
  const LockHolder holder;
  const test::CountSleeps sleeps;
  EXPECT_EQ(Write("A", "key", "value", kPath, 1), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(test::CountSleeps::Count(), 60000u);
}

TEST_F(IniWriter, WaitingWriterGetsTheLockOfAProcessThatEnds) {
  Given("[A]\nkey=1\n");
  const LockHolder holder(kIPCFilePath, 50000);
  EXPECT_EQ(Write("A", "key", "value", kPath, 1), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=value\n");
}

TEST_F(IniWriter, SixteenProcessesLoseNoKey) {
  Given("[A]\n");
  constexpr int kProcesses = 16;
  constexpr int kRounds = 10;
  for (int process = 0; process < kProcesses; ++process) {
    if (fork() == 0) {
      for (int round = 0; round < kRounds; ++round) {
        const std::string key = "k" + std::to_string(process) + "." + std::to_string(round);
        if (Write("A", key, "1", kPath, 1) != SM_STATUS_SUCCESS) {
          _exit(4);
        }
      }
      _exit(3);
    }
  }
  for (int process = 0; process < kProcesses; ++process) {
    int status = 0;
    ASSERT_GT(wait(&status), 0);
    EXPECT_EQ(WEXITSTATUS(status), 3);
  }
  for (int process = 0; process < kProcesses; ++process) {
    for (int round = 0; round < kRounds; ++round) {
      const std::string key = "k" + std::to_string(process) + "." + std::to_string(round);
      astring value[2];
      u32 size = 2;
      EXPECT_EQ(ReadINIFileValue_astring({"A", key.c_str(), value, &size, nullptr, 0, kPath, 0}),
                SM_STATUS_SUCCESS)
          << key;
    }
  }
}

TEST_F(IniWriter, WithoutMemoryTheFileIsAsItWas) {
  const std::string text = "[A]\nkey=1\n";
  for (const char* section : {"A", "Sec"}) {
    const u32 met = test::FailEachAllocation(
        [&] {
          Given(text);
          return Write(section, "key", "value");
        },
        [&](u32 status) {
          EXPECT_EQ(status, kMinusOne);
          EXPECT_EQ(ReadFile(kPath), text);
          EXPECT_TRUE(LockIsFree());
        });
    EXPECT_GE(met, 4u) << section;
    EXPECT_NE(ReadFile(kPath), text);
  }
}

TEST_F(IniWriter, ReadErrorIsABadSectionHeader) {
  // Address 0 of a process cannot be read.
  const Descriptor memory = OpenDescriptor("/proc/self/mem", O_RDONLY);
  const Descriptor copy = OpenDescriptor("/tmp/out", O_WRONLY | O_CREAT, 0600);
  ASSERT_TRUE(memory);
  BlockWriter out(copy.Number());
  BlockReader first(memory.Number());
  EXPECT_EQ(FindSection("A", &first, &out), SM_STATUS_BAD_SECTION_HEADER);
  BlockReader second(memory.Number());
  EXPECT_EQ(FindKeyUpdateValue("key", "v", &second, &out), SM_STATUS_BAD_SECTION_HEADER);
}

// How many system calls this many writes of one key make, in a separate process.
u32 SystemCallsOf(int writes) {
  u32 stops = 0;
  const int status = test::RunStepwise(
      [writes] {
        u32 failed = 0;
        for (int round = 0; round < writes; ++round)
          failed |= Write("A", "key", "2", kPath, 1);
        return failed == 0 ? 0 : 1;
      },
      [&stops] { return ++stops != 0; });
  EXPECT_EQ(status, 0);
  return stops / 2;
}

TEST_F(IniWriter, ReplacingAKeyTakesAtMost18SystemCalls) {
  if (QVX_SANITIZED != 0) GTEST_SKIP() << "a sanitizer makes its own system calls";
  std::string text = "[A]\n";
  while (text.size() < 7000)
    text += "key" + std::to_string(text.size()) + "=value\n";
  Given(text + "key=1\n");
  // A first write may take memory from the system.
  EXPECT_LE(SystemCallsOf(2) - SystemCallsOf(1), 18u);
  EXPECT_EQ(ReadFile(kPath), text + "key=2\n");
}

TEST(IniWriterUnattached, WritingIsRefused) {
  EXPECT_EQ(Write("A", "key", "value"), SM_STATUS_LOCK_FAILED);
  EXPECT_FALSE(Exists(kPath));
}

TEST_F(IniWriter, ALineOf64MegabytesIsCopiedAndReadPast) {
  const std::string head = "[A]\n" + std::string(size_t{64} << 20, 'x') + "\n";
  Given(head + "key=old\n");
  EXPECT_EQ(Write("A", "key", "new"), SM_STATUS_SUCCESS);
  EXPECT_TRUE(ReadFile(kPath) == head + "key=new\n");
  astring value[8] = {};
  u32 size = sizeof(value);
  EXPECT_EQ(ReadINIFileValue_astring({"A", "key", value, &size, nullptr, 0, kPath, 0}),
            SM_STATUS_SUCCESS);
  EXPECT_STREQ(value, "new");
}

}  // namespace
}  // namespace qvx
