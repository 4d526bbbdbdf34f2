// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/stdio_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <utility>

#include "support/files.h"
#include "support/processes.h"
#include "support/small_disk.h"

namespace qvx {
namespace {

using test::Exists;
using test::ModeOf;
using test::ReadFile;
using test::SmallDisk;
using test::WriteFile;

constexpr char kPath[] = "/tmp/a";

TEST(StdioFile, EveryDescriptorIsClosedOnExec) {
  WriteFile(kPath, "text");
  for (const char* mode : {"r", "rb", "w"}) {
    const FilePtr file = OpenFile(kPath, mode);
    ASSERT_TRUE(file) << mode;
    EXPECT_EQ(fcntl(fileno(file.get()), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC) << mode;
  }
  const Descriptor copy = OpenCopy(kPath, nullptr);
  ASSERT_TRUE(copy);
  EXPECT_EQ(fcntl(copy.Number(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST(StdioFile, OnlyRegularFilesAreOpened) {
  ASSERT_EQ(mkfifo("/tmp/fifo", 0666), 0);
  for (const char* path : {"/tmp", "/tmp/fifo", "/dev/zero"}) {
    EXPECT_FALSE(OpenFile(path, "r")) << path;
    EXPECT_EQ(errno, EINVAL) << path;
  }
  for (const char* path : {"/tmp", "/tmp/fifo", "/dev/null"}) {
    EXPECT_FALSE(OpenFile(path, "w")) << path;
  }
}

TEST(StdioFile, RefusedFilesLeaveNoDescriptorOpen) {
  const int before = dup(0);
  ASSERT_GE(before, 0);
  (void)close(before);
  EXPECT_FALSE(OpenFile("/dev/zero", "r"));
  EXPECT_FALSE(OpenFile("/tmp", "r"));
  const int after = dup(0);
  EXPECT_EQ(after, before);
  (void)close(after);
}

TEST(StdioFile, MissingFileIsToldByItsError) {
  errno = 0;
  EXPECT_FALSE(OpenFile("/tmp/missing", "r"));
  EXPECT_EQ(errno, ENOENT);
  EXPECT_FALSE(Exists("/tmp/missing"));
}

TEST(StdioFile, WritingBeginsAnew) {
  WriteFile(kPath, "old text");
  FilePtr file = OpenFile(kPath, "w");
  ASSERT_TRUE(file);
  EXPECT_EQ(ReadFile(kPath), "");
  EXPECT_GE(fputs("new", file.get()), 0);
  EXPECT_TRUE(CloseWritten(std::move(file)));
  EXPECT_EQ(ReadFile(kPath), "new");
}

// A child that ends by exit flushes every stream that it knows of.
TEST(StdioFile, AChildWritesNothingOfItsParentsStreams) {
  FilePtr file = OpenFile(kPath, "w");
  ASSERT_TRUE(file);
  EXPECT_GE(fputs("text", file.get()), 0);
  EXPECT_EQ(test::InChild([] {
              DropStreamsInChild();
              return fflush(nullptr);
            }),
            0);
  EXPECT_EQ(ReadFile(kPath), "");
  EXPECT_TRUE(CloseWritten(std::move(file)));
  EXPECT_EQ(ReadFile(kPath), "text");
}

TEST(StdioFile, WritingGoesOnWhereThePositionIs) {
  FilePtr file = OpenFile(kPath, "w");
  ASSERT_TRUE(file);
  EXPECT_GE(fputs("first", file.get()), 0);
  EXPECT_EQ(fseek(file.get(), 0, SEEK_SET), 0);
  EXPECT_GE(fputs("wo", file.get()), 0);
  EXPECT_TRUE(CloseWritten(std::move(file)));
  EXPECT_EQ(ReadFile(kPath), "worst");
}

struct stat StatusOf(const char* path) {
  struct stat status = {};
  EXPECT_EQ(stat(path, &status), 0) << path;
  return status;
}

TEST(StdioFile, ACopyTakesTheNameFromAnOldFileOrLink) {
  WriteFile("/tmp/other", "other");
  ASSERT_EQ(symlink("/tmp/other", "/tmp/link"), 0);
  ASSERT_EQ(link("/tmp/other", kPath), 0);
  WriteFile("/tmp/source", "text");
  const struct stat source = StatusOf("/tmp/source");
  for (const char* path : {"/tmp/link", kPath}) {
    Descriptor copy = OpenCopy(path, &source);
    ASSERT_TRUE(copy) << path;
    EXPECT_EQ(write(copy.Number(), "mine", 4), 4);
    EXPECT_TRUE(FinishCopy(std::move(copy)));
    EXPECT_EQ(ReadFile(path), "mine");
    EXPECT_EQ(ReadFile("/tmp/other"), "other");
  }
}

TEST(StdioFile, ACopyInPlaceOfADirectoryFails) {
  ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  EXPECT_FALSE(OpenCopy("/tmp/d", nullptr));
  EXPECT_TRUE(Exists("/tmp/d"));
}

TEST(StdioFile, TheSourceIsNotUnlinkedForItsOwnCopy) {
  WriteFile(kPath, "text");
  ASSERT_EQ(link(kPath, "/tmp/name"), 0);
  const struct stat source = StatusOf(kPath);
  for (const char* path : {kPath, "/tmp/name"}) {
    EXPECT_FALSE(OpenCopy(path, &source)) << path;
    EXPECT_EQ(ReadFile(path), "text") << path;
  }
}

TEST(StdioFile, ALinkToTheSourceGivesWayToItsCopy) {
  WriteFile(kPath, "text");
  ASSERT_EQ(symlink(kPath, "/tmp/link"), 0);
  const struct stat source = StatusOf(kPath);
  EXPECT_TRUE(OpenCopy("/tmp/link", &source));
  EXPECT_EQ(ReadFile(kPath), "text");
  EXPECT_EQ(ReadFile("/tmp/link"), "");
}

TEST(StdioFile, AFileThatIsMadeHasItsModeAsSoonAsItIsOpen) {
  for (const mode_t mask : {0u, 0022u, 0777u}) {
    (void)umask(mask);
    const FilePtr file = OpenFile("/tmp/new", "w");
    ASSERT_TRUE(file);
    EXPECT_EQ(ModeOf("/tmp/new"), 01664u);
    ASSERT_EQ(unlink("/tmp/new"), 0);
  }
}

TEST(StdioFile, AFileThatIsReadKeepsItsMode) {
  WriteFile(kPath, "text");
  ASSERT_EQ(chmod(kPath, 0640), 0);
  EXPECT_TRUE(OpenFile(kPath, "r"));
  EXPECT_EQ(ModeOf(kPath), 0640u);
}

TEST(StdioFile, ACopyIsItsOwnersUntilItIsFinished) {
  (void)umask(0);
  Descriptor copy = OpenCopy(kPath, nullptr);
  ASSERT_TRUE(copy);
  EXPECT_EQ(ModeOf(kPath), 0600u);
  ASSERT_EQ(write(copy.Number(), "text", 4), 4);
  EXPECT_TRUE(FinishCopy(std::move(copy)));
  EXPECT_EQ(ModeOf(kPath), 01664u);
  EXPECT_EQ(ReadFile(kPath), "text");
}

TEST(StdioFile, TextThatWaitsForAFullDiskFailsWhenClosed) {
  const SmallDisk disk(1);
  WriteFile(SmallDisk::Path("filler"), std::string(4096, 'f'));
  FilePtr file = OpenFile(SmallDisk::Path("a").c_str(), "w");
  ASSERT_TRUE(file);
  EXPECT_GE(fputs("text", file.get()), 0);
  EXPECT_FALSE(CloseWritten(std::move(file)));
}

TEST(StdioFile, EarlierWriteErrorIsToldWhenClosed) {
  WriteFile(kPath, "");
  // A stream that may only be read refuses the write and has nothing left to flush.
  FilePtr file = OpenFile(kPath, "r");
  ASSERT_TRUE(file);
  EXPECT_EQ(fputc('x', file.get()), EOF);
  EXPECT_FALSE(CloseWritten(std::move(file)));
}

TEST(StdioFile, SizeIsToldAndThePositionStays) {
  WriteFile(kPath, "0123456789");
  const FilePtr file = OpenFile(kPath, "r");
  ASSERT_TRUE(file);
  ASSERT_EQ(fseek(file.get(), 3, SEEK_SET), 0);
  EXPECT_EQ(StreamSize(file.get()), 10);
  EXPECT_EQ(fgetc(file.get()), '3');
}

TEST(StdioFile, PipeHasNoSize) {
  int ends[2];
  ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
  const FilePtr reader(fdopen(ends[0], "r"));
  ASSERT_TRUE(reader);
  EXPECT_EQ(StreamSize(reader.get()), -1);
  (void)close(ends[1]);
}

}  // namespace
}  // namespace qvx
