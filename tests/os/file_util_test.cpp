// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/file_util.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/file_util.h"
#include "qvxcs/status.h"

#include "base/results.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/guard_buffer.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"
#include "support/small_disk.h"

namespace qvx {
namespace {

using test::Exists;
using test::GuardBuffer;
using test::InChild;
using test::ModeOf;
using test::ReadFile;
using test::SmallDisk;
using test::WriteFile;

constexpr uid_t kNobody = 65534;

std::string WorkingDirectory() {
  char path[4096];
  return getcwd(path, sizeof(path)) == nullptr ? "" : path;
}

void MakeSparse(const char* path, off_t length) {
  WriteFile(path, "");
  ASSERT_EQ(truncate(path, length), 0);
}

TEST(FileUtil, DeletedFileIsGone) {
  WriteFile("/tmp/a", "text");
  EXPECT_EQ(DelFile("/tmp/a"), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists("/tmp/a"));
}

TEST(FileUtil, DeletingSetsTheModeFirst) {
  WriteFile("/tmp/a", "text");
  ASSERT_EQ(link("/tmp/a", "/tmp/b"), 0);
  EXPECT_EQ(DelFile("/tmp/a"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/b"), 01664u);
}

TEST(FileUtil, DeletingALinkSetsTheModeBehindItAndKeepsThatFile) {
  WriteFile("/tmp/a", "text");
  ASSERT_EQ(symlink("/tmp/a", "/tmp/l"), 0);
  EXPECT_EQ(DelFile("/tmp/l"), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists("/tmp/l"));
  EXPECT_EQ(ModeOf("/tmp/a"), 01664u);
}

TEST(FileUtil, DeletingWhatIsNotThereFails) {
  EXPECT_EQ(DelFile("/tmp/missing"), kMinusOne);
  EXPECT_EQ(DelFile("/tmp/missing/a"), kMinusOne);
  EXPECT_EQ(DelFile(""), kMinusOne);
  EXPECT_EQ(DelFile(nullptr), kMinusOne);
}

TEST(FileUtil, DeletingADirectoryFailsAndLeavesItsMode) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  EXPECT_EQ(DelFile("/tmp/d"), kMinusOne);
  EXPECT_EQ(ModeOf("/tmp/d"), 0755u);
}

TEST(FileUtil, DeletingALinkToADirectoryLeavesTheDirectorysMode) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  ASSERT_EQ(symlink("/tmp/d", "/tmp/l"), 0);
  EXPECT_EQ(DelFile("/tmp/l"), SM_STATUS_SUCCESS);
  struct stat status = {};
  EXPECT_NE(lstat("/tmp/l", &status), 0);
  EXPECT_EQ(ModeOf("/tmp/d"), 0755u);
}

TEST(FileUtil, AFifoInAFilesPlaceIsDeleted) {
  ASSERT_EQ(mkfifo("/tmp/fifo", 0600), 0);
  EXPECT_EQ(DelFile("/tmp/fifo"), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists("/tmp/fifo"));
}

TEST(FileUtil, FileWhoseModeCannotBeSetStays) {
  const SmallDisk disk(4);
  WriteFile(SmallDisk::Path("a"), "text");
  SmallDisk::MakeReadOnly();
  EXPECT_EQ(DelFile(SmallDisk::Path("a").c_str()), kMinusOne);
  EXPECT_EQ(ReadFile(SmallDisk::Path("a")), "text");
}

TEST(FileUtil, FileOfAnotherUserInAWritableDirectoryStays) {
  ASSERT_EQ(mkdir("/tmp/d", 0777), 0);
  ASSERT_EQ(chmod("/tmp/d", 0777), 0);
  WriteFile("/tmp/d/a", "text");
  // Unlinking would succeed here; setting the mode does not.
  EXPECT_EQ(
      InChild([] { return setuid(kNobody) == 0 && DelFile("/tmp/d/a") == kMinusOne ? 3 : 4; }), 3);
  EXPECT_EQ(ReadFile("/tmp/d/a"), "text");
}

TEST(FileUtil, OwnFileInADirectoryOfAnotherUserStays) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  WriteFile("/tmp/d/a", "text");
  ASSERT_EQ(chown("/tmp/d/a", kNobody, kNobody), 0);
  // Setting the mode succeeds here; unlinking does not.
  EXPECT_EQ(
      InChild([] { return setuid(kNobody) == 0 && DelFile("/tmp/d/a") == kMinusOne ? 3 : 4; }), 3);
  EXPECT_EQ(ReadFile("/tmp/d/a"), "text");
  EXPECT_EQ(ModeOf("/tmp/d/a"), 01664u);
}

TEST(FileUtil, SizeIsTheLengthInBytes) {
  u32 size = 99;
  WriteFile("/tmp/a", std::string("ab\0cd", 5));
  EXPECT_EQ(GetSizeOfFile("/tmp/a", &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 5u);
  WriteFile("/tmp/a", "");
  EXPECT_EQ(GetSizeOfFile("/tmp/a", &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 0u);
}

TEST(FileUtil, SizeOfAMissingFileIsZeroAndAFailure) {
  u32 size = 99;
  EXPECT_EQ(GetSizeOfFile("/tmp/missing", &size), kMinusOne);
  EXPECT_EQ(size, 0u);
}

TEST(FileUtil, SizeWithoutAPointerIsAFailure) {
  u32 size = 99;
  EXPECT_EQ(GetSizeOfFile(nullptr, &size), kMinusOne);
  EXPECT_EQ(size, 0u);
  WriteFile("/tmp/a", "text");
  EXPECT_EQ(GetSizeOfFile("/tmp/a", nullptr), kMinusOne);
}

TEST(FileUtil, OnlyRegularFilesHaveASize) {
  ASSERT_EQ(mkfifo("/tmp/fifo", 0666), 0);
  for (const char* path : {"/tmp", "/tmp/fifo", "/dev/zero"}) {
    u32 size = 99;
    EXPECT_EQ(GetSizeOfFile(path, &size), kMinusOne) << path;
    EXPECT_EQ(size, 0u) << path;
  }
}

TEST(FileUtil, SizesEndBelow4GiB) {
  u32 size = 0;
  MakeSparse("/tmp/a", 0xFFFFFFFE);
  EXPECT_EQ(GetSizeOfFile("/tmp/a", &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 0xFFFFFFFEu);
  for (const off_t length : {off_t{0xFFFFFFFF}, off_t{0x100000000}, off_t{0x100000005}}) {
    size = 99;
    MakeSparse("/tmp/a", length);
    EXPECT_EQ(GetSizeOfFile("/tmp/a", &size), kMinusOne) << length;
    EXPECT_EQ(size, 0u) << length;
  }
}

TEST(FileUtil, TmpFileSizeOf19OrLessBecomes20) {
  for (const u32 given : {0u, 1u, 19u}) {
    GuardBuffer<astring> name(given);
    u32 size = given;
    EXPECT_EQ(GetTmpFile("/tmp", name.data(), &size), SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 20u);
    EXPECT_TRUE(name.UntouchedFrom(0));
  }
}

TEST(FileUtil, TmpFileNameIsNewAndFitsTwentyBytes) {
  GuardBuffer<astring> name(20);
  u32 size = 20;
  ASSERT_EQ(GetTmpFile("/tmp", name.data(), &size), SM_STATUS_SUCCESS);
  const std::string made = name.data();
  EXPECT_EQ(made.substr(0, 9), "/tmp/file");
  EXPECT_EQ(made.size(), 15u);
  EXPECT_EQ(size, 16u);
  EXPECT_EQ(
      made.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789", 5),
      std::string::npos);
  EXPECT_FALSE(Exists(made));
  EXPECT_TRUE(name.UntouchedFrom(16));
}

TEST(FileUtil, TmpFileNameLiesInTmpWhateverTheDirectory) {
  astring name[20];
  u32 size = 20;
  ASSERT_EQ(GetTmpFile("/etc", name, &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(std::string(name).substr(0, 9), "/tmp/file");
}

TEST(FileUtil, TmpFileNamesDiffer) {
  astring first[20];
  astring second[20];
  u32 size = 20;
  ASSERT_EQ(GetTmpFile("/tmp", first, &size), SM_STATUS_SUCCESS);
  size = 20;
  ASSERT_EQ(GetTmpFile("/tmp", second, &size), SM_STATUS_SUCCESS);
  EXPECT_STRNE(first, second);
}

TEST(FileUtil, TmpFileReturnsToTheWorkingDirectory) {
  ASSERT_EQ(chdir("/usr"), 0);
  astring name[20];
  u32 size = 20;
  ASSERT_EQ(GetTmpFile("/etc", name, &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(WorkingDirectory(), "/usr");
}

TEST(FileUtil, TmpFileInADirectoryThatCannotBeEnteredFails) {
  WriteFile("/tmp/a", "");
  for (const char* directory : {"/tmp/missing", "/tmp/a", ""}) {
    GuardBuffer<astring> name(20);
    u32 size = 20;
    EXPECT_EQ(GetTmpFile(directory, name.data(), &size), SM_STATUS_FAILURE) << directory;
    EXPECT_EQ(size, 20u);
    EXPECT_TRUE(name.UntouchedFrom(0));
  }
}

TEST(FileUtil, TmpFileNeedsAWorkingDirectoryOf255Characters) {
  // "/tmp/" and 250 letters are 255 characters; one level more does not fit.
  const std::string fits = "/tmp/" + std::string(250, 'd');
  ASSERT_EQ(mkdir(fits.c_str(), 0755), 0);
  ASSERT_EQ(chdir(fits.c_str()), 0);
  astring name[20];
  u32 size = 20;
  EXPECT_EQ(GetTmpFile("/tmp", name, &size), SM_STATUS_SUCCESS);
  ASSERT_EQ(mkdir("e", 0755), 0);
  ASSERT_EQ(chdir("e"), 0);
  size = 33;
  EXPECT_EQ(GetTmpFile("/tmp", name, &size), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 33u);
}

TEST(FileUtil, TmpFileFromADeletedWorkingDirectoryFails) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  ASSERT_EQ(chdir("/tmp/d"), 0);
  ASSERT_EQ(rmdir("/tmp/d"), 0);
  astring name[20];
  u32 size = 20;
  EXPECT_EQ(GetTmpFile("/tmp", name, &size), SM_STATUS_BUFFER_TOO_SMALL);
}

TEST(FileUtil, TmpFileWithoutATmpDirectoryFails) {
  ASSERT_EQ(mkdir("/tmp/root", 0755), 0);
  ASSERT_EQ(mkdir("/tmp/root/here", 0755), 0);
  const int result = InChild([] {
    astring name[20];
    u32 size = 20;
    if (chroot("/tmp/root") != 0 || chdir("/here") != 0) return 1;
    const bool failed = GetTmpFile("/", name, &size) == SM_STATUS_FILE_CREATE_FAILED;
    return failed && size == 20 && WorkingDirectory() == "/here" ? 3 : 4;
  });
  EXPECT_EQ(result, 3);
}

TEST(FileUtil, TmpFileThatCannotReturnIsStatus9) {
  ASSERT_EQ(mkdir("/tmp/d", 0700), 0);
  ASSERT_EQ(chdir("/tmp/d"), 0);
  const int result = InChild([] {
    astring name[20] = "";
    u32 size = 20;
    if (setuid(kNobody) != 0 || GetTmpFile("/tmp", name, &size) != 9) return 1;
    return size == 16 && std::string(name).size() == 15 ? 3 : 4;
  });
  EXPECT_EQ(result, 3);
}

TEST(FileUtil, TmpFileWithoutAPointerIsAFailure) {
  astring name[20];
  u32 size = 20;
  EXPECT_EQ(GetTmpFile(nullptr, name, &size), kMinusOne);
  EXPECT_EQ(GetTmpFile("/tmp", nullptr, &size), kMinusOne);
  EXPECT_EQ(GetTmpFile("/tmp", name, nullptr), kMinusOne);
}

TEST(FileUtil, CreateDirOfADirectoryThatExistsIsSuccess) {
  ASSERT_EQ(mkdir("/tmp/d", 0700), 0);
  EXPECT_EQ(CreateDir("/tmp/d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/d"), 0700u);
  EXPECT_EQ(CreateDir("/"), SM_STATUS_SUCCESS);
  ASSERT_EQ(symlink("/tmp/d", "/tmp/l"), 0);
  EXPECT_EQ(CreateDir("/tmp/l"), SM_STATUS_SUCCESS);
}

TEST(FileUtil, CreatedDirectoryHasMode0755LessTheUmask) {
  EXPECT_EQ(CreateDir("/tmp/d"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/d"), 0755u);
  (void)umask(077);
  EXPECT_EQ(CreateDir("/tmp/e"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/e"), 0700u);
}

TEST(FileUtil, CreateDirMakesOneLevel) {
  EXPECT_EQ(CreateDir("/tmp/d/e"), kMinusOne);
  EXPECT_FALSE(Exists("/tmp/d"));
}

TEST(FileUtil, CreateDirOverAFileFails) {
  WriteFile("/tmp/a", "");
  EXPECT_EQ(CreateDir("/tmp/a"), kMinusOne);
  EXPECT_EQ(CreateDir("/tmp/a/b"), kMinusOne);
  EXPECT_EQ(CreateDir(""), kMinusOne);
  EXPECT_EQ(CreateDir(nullptr), kMinusOne);
}

TEST(FileUtil, DelDirRemovesAnEmptyDirectory) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  EXPECT_EQ(DelDir("/tmp/d"), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists("/tmp/d"));
}

TEST(FileUtil, DelDirOfADirectoryThatHoldsAFileIsBadData) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  WriteFile("/tmp/d/a", "");
  EXPECT_EQ(DelDir("/tmp/d"), SM_STATUS_BAD_DATA);
  EXPECT_TRUE(Exists("/tmp/d/a"));
}

TEST(FileUtil, DelDirOfAMissingDirectoryIsAFailure) {
  EXPECT_EQ(DelDir("/tmp/missing"), SM_STATUS_FAILURE);
}

TEST(FileUtil, DelDirFailsOtherwise) {
  WriteFile("/tmp/a", "");
  EXPECT_EQ(DelDir("/tmp/a"), kMinusOne);
  EXPECT_EQ(DelDir("/tmp/a/b"), kMinusOne);
  EXPECT_TRUE(Exists("/tmp/a"));
  EXPECT_EQ(DelDir(nullptr), kMinusOne);
  const SmallDisk disk(1);
  EXPECT_EQ(DelDir("/tmp/disk"), kMinusOne);
}

TEST(FileUtil, ReplacedFileHasTheNewContentAndMode01664) {
  WriteFile("/tmp/target", "old");
  WriteFile("/tmp/source", "new");
  EXPECT_EQ(ReplaceFile("/tmp/target", "/tmp/source"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile("/tmp/target"), "new");
  EXPECT_EQ(ModeOf("/tmp/target"), 01664u);
  EXPECT_FALSE(Exists("/tmp/source"));
}

TEST(FileUtil, TheReplacedFileItselfKeepsItsMode) {
  WriteFile("/tmp/target", "old");
  WriteFile("/tmp/source", "new");
  ASSERT_EQ(link("/tmp/target", "/tmp/kept"), 0);
  ASSERT_EQ(chmod("/tmp/kept", 0600), 0);
  EXPECT_EQ(ReplaceFile("/tmp/target", "/tmp/source"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ModeOf("/tmp/kept"), 0600u);
  EXPECT_EQ(ReadFile("/tmp/kept"), "old");
}

// The target is watched at each system call.
TEST(FileUtil, ATargetNeverShowsAnotherModeThanItsOwnAndTheNewOne) {
  WriteFile("/tmp/target", "old");
  ASSERT_EQ(chmod("/tmp/target", 0640), 0);
  WriteFile("/tmp/source", "new");
  ASSERT_EQ(chmod("/tmp/source", 0666), 0);
  u32 before = 0;
  u32 after = 0;
  const int status =
      test::RunStepwise([] { return static_cast<int>(ReplaceFile("/tmp/target", "/tmp/source")); },
                        [&] {
                          const bool isNew = ReadFile("/tmp/target") == "new";
                          EXPECT_EQ(ModeOf("/tmp/target"), isNew ? 01664u : 0640u);
                          ++(isNew ? after : before);
                          return true;
                        });
  EXPECT_EQ(status, 0);
  EXPECT_GE(before, 5u);
  EXPECT_GE(after, 1u);
}

TEST(FileUtil, ReplaceNeedsATargetFile) {
  WriteFile("/tmp/source", "new");
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  EXPECT_EQ(ReplaceFile("/tmp/target", "/tmp/source"), SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_EQ(ReplaceFile("/tmp/d", "/tmp/source"), SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_EQ(ModeOf("/tmp/d"), 0755u);
  EXPECT_EQ(ReadFile("/tmp/source"), "new");
}

TEST(FileUtil, ReplaceWithoutASourceLeavesTheTarget) {
  WriteFile("/tmp/target", "old");
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  ASSERT_EQ(mkfifo("/tmp/fifo", 0666), 0);
  for (const char* source : {"/tmp/missing", "/tmp/d", "/tmp/fifo"}) {
    EXPECT_EQ(ReplaceFile("/tmp/target", source), SM_STATUS_FILE_CREATE_FAILED) << source;
    EXPECT_EQ(ReadFile("/tmp/target"), "old") << source;
  }
}

TEST(FileUtil, ReplaceAcrossDisksLeavesTheTarget) {
  const SmallDisk disk(4);
  WriteFile("/tmp/target", "old");
  WriteFile(SmallDisk::Path("source"), "new");
  EXPECT_EQ(ReplaceFile("/tmp/target", SmallDisk::Path("source").c_str()),
            SM_STATUS_FILE_CREATE_FAILED);
  EXPECT_EQ(ReadFile("/tmp/target"), "old");
}

TEST(FileUtil, AFailedMoveLeavesTheTargetsMode) {
  const SmallDisk disk(4);
  WriteFile(SmallDisk::Path("source"), "new");
  WriteFile("/tmp/over", "over");
  for (const char* target : {"/tmp/target", "/tmp/mounted"}) {
    WriteFile(target, "old");
    ASSERT_EQ(chmod(target, 0640), 0);
  }
  ASSERT_EQ(mount("/tmp/over", "/tmp/mounted", nullptr, MS_BIND, nullptr), 0);
  ASSERT_EQ(chmod("/tmp/over", 0600), 0);
  EXPECT_EQ(ReplaceFile("/tmp/target", SmallDisk::Path("source").c_str()),
            SM_STATUS_FILE_CREATE_FAILED);
  WriteFile("/tmp/source", "new");
  EXPECT_EQ(ReplaceFile("/tmp/mounted", "/tmp/source"), SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_EQ(ModeOf("/tmp/over"), 0600u);
  ASSERT_EQ(umount("/tmp/mounted"), 0);
  for (const char* target : {"/tmp/target", "/tmp/mounted"}) {
    EXPECT_EQ(ModeOf(target), 0640u) << target;
  }
}

TEST(FileUtil, ProtectedTargetsAreLeft) {
  WriteFile("/tmp/target", "old");
  WriteFile("/tmp/source", "new");
  ASSERT_EQ(mount("/tmp/target", "/tmp/target", nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(ReplaceFile("/tmp/target", "/tmp/source"), SM_STATUS_FILE_DELETE_FAILED);
  ASSERT_EQ(umount("/tmp/target"), 0);
  EXPECT_EQ(ReadFile("/tmp/target"), "old");
}

// A file of /proc is a regular one that cannot be flushed to any disk.
TEST(FileUtil, ASourceThatCannotBeFlushedReplacesNothing) {
  WriteFile("/tmp/target", "old");
  EXPECT_EQ(ReplaceFile("/tmp/target", "/proc/self/comm"), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(ReadFile("/tmp/target"), "old");
}

TEST(FileUtil, TargetsOfAReadOnlyDiskAreLeft) {
  const SmallDisk disk(4);
  WriteFile(SmallDisk::Path("target"), "old");
  WriteFile(SmallDisk::Path("source"), "new");
  SmallDisk::MakeReadOnly();
  EXPECT_EQ(ReplaceFile(SmallDisk::Path("target").c_str(), SmallDisk::Path("source").c_str()),
            SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_EQ(ReadFile(SmallDisk::Path("target")), "old");
}

TEST(FileUtil, TargetsOfAnotherUserInAStickyDirectoryAreLeft) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  ASSERT_EQ(chmod("/tmp/d", 01777), 0);
  WriteFile("/tmp/d/target", "old");
  const int result = InChild([] {
    if (setuid(kNobody) != 0) return 1;
    WriteFile("/tmp/d/source", "new");
    return ReplaceFile("/tmp/d/target", "/tmp/d/source") == SM_STATUS_FILE_DELETE_FAILED ? 3 : 4;
  });
  EXPECT_EQ(result, 3);
  EXPECT_EQ(ReadFile("/tmp/d/target"), "old");
}

TEST(FileUtil, ReplaceOfATargetThatAFileIsMountedOverLeavesBoth) {
  WriteFile("/tmp/a", "old");
  WriteFile("/tmp/b", "new");
  WriteFile("/tmp/over", "over");
  ASSERT_EQ(mount("/tmp/over", "/tmp/a", nullptr, MS_BIND, nullptr), 0);
  EXPECT_EQ(ReplaceFile("/tmp/a", "/tmp/b"), SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_EQ(ReadFile("/tmp/a"), "over");
  EXPECT_EQ(ReadFile("/tmp/b"), "new");
  ASSERT_EQ(umount("/tmp/a"), 0);
  EXPECT_EQ(ReadFile("/tmp/a"), "old");
}

TEST(FileUtil, ReplaceWithoutAPointerIsAFailure) {
  EXPECT_EQ(ReplaceFile(nullptr, "/tmp/source"), kMinusOne);
  EXPECT_EQ(ReplaceFile("/tmp/target", nullptr), kMinusOne);
}

TEST(FileUtil, ReplacedFileIsNeverMissing) {
  WriteFile("/tmp/target", "text");
  const pid_t replacer = fork();
  if (replacer == 0) {
    for (int round = 0; round < 500; ++round) {
      WriteFile("/tmp/source", "text");
      if (ReplaceFile("/tmp/target", "/tmp/source") != SM_STATUS_SUCCESS) {
        _exit(4);
      }
    }
    _exit(3);
  }
  int status = 0;
  u32 opened = 0;
  while (waitpid(replacer, &status, WNOHANG) == 0) {
    ASSERT_EQ(ReadFile("/tmp/target"), "text");
    ++opened;
  }
  EXPECT_GT(opened, 0u);
  EXPECT_EQ(WEXITSTATUS(status), 3);
}

TEST(FileUtil, DirectoryPartEndsBeforeTheLastSlash) {
  const struct {
    const char* path;
    const char* directory;
  } cases[] = {{"x.ini", "."},       {"/x.ini", "."}, {"", "."},         {"/", "."},
               {"d/x.ini", "d"},     {"/d/x", "/d"},  {"/d/e/", "/d/e"}, {"//x", "/"},
               {"/d//x.ini", "/d/"}, {"./x.ini", "."}};
  for (const auto& each : cases) {
    EXPECT_STREQ(DirectoryPart(each.path).get(), each.directory) << each.path;
  }
  for (const char* path : {"d/x.ini", "/d/x", "//x", "./x.ini"}) {
    EXPECT_TRUE(HasDirectoryPart(path)) << path;
  }
  for (const char* path : {"x.ini", "/x.ini", "", "/"}) {
    EXPECT_FALSE(HasDirectoryPart(path)) << path;
  }
}

TEST(FileUtil, DirectoryPartWithoutMemoryIsEmpty) {
  for (const char* path : {"x.ini", "/d/x.ini"}) {
    const u32 met =
        test::FailEachAllocation([path] { return DirectoryPart(path); },
                                 [](const HeapArray<astring>& part) { EXPECT_FALSE(part); });
    EXPECT_EQ(met, 1u) << path;
  }
}

TEST(FileUtil, ExportedCallsForward) {
  u32 size = 0;
  astring name[20];
  EXPECT_EQ(PXTMkDir("/tmp/d"), SM_STATUS_SUCCESS);
  WriteFile("/tmp/d/a", "text");
  EXPECT_EQ(PXTGetSizeOfFile("/tmp/d/a", &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(PXTRmDir("/tmp/d"), SM_STATUS_BAD_DATA);
  EXPECT_EQ(PXTDeleteFile("/tmp/d/a"), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTRmDir("/tmp/d"), SM_STATUS_SUCCESS);
  size = 19;
  EXPECT_EQ(PXTGetTmpFile("/tmp", name, &size), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 20u);
}

// Another program has removed it since the caller opened it.
TEST(FileUtil, AMoveNeverMakesATargetThatIsGone) {
  test::WriteFile("/tmp/source", "new");
  EXPECT_EQ(MoveInPlace("/tmp/gone", "/tmp/source"), SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_FALSE(test::Exists("/tmp/gone"));
  EXPECT_EQ(test::ReadFile("/tmp/source"), "new");
}

}  // namespace
}  // namespace qvx
