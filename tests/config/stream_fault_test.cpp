// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Streams whose reads, writes and moves fail, as those of a disk do that is failing.
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "config/ini_reader.h"
#include "config/ini_writer.h"
#include "config/keyvalue_writer.h"
#include "config/string_resource.h"
#include "frame/module.h"
#include "os/file_util.h"
#include "os/stdio_file.h"
#include "support/files.h"
#include "support/processes.h"
#include "support/refuse_call.h"

namespace qvx {
namespace {

using test::ReadFile;

#ifdef SYS__llseek
constexpr u32 kMoveCall = SYS__llseek;
#else
constexpr u32 kMoveCall = SYS_lseek;
#endif

// A disk that gives a text, then fails; that takes nothing; that refuses one kind of move.
struct FailingDisk {
  std::string text;
  int refusedMove = -1;
  size_t at = 0;
};

ssize_t ReadFromDisk(void* cookie, char* buffer, size_t size) {
  auto* const disk = static_cast<FailingDisk*>(cookie);
  const size_t count = std::min(size, disk->text.size() - disk->at);
  if (count == 0) {
    errno = EIO;
    return -1;
  }
  memcpy(buffer, disk->text.data() + disk->at, count);
  disk->at += count;
  return static_cast<ssize_t>(count);
}

ssize_t WriteToDisk(void*, const char*, size_t) {
  errno = EIO;
  return 0;
}

int MoveOnDisk(void* cookie, off64_t* offset, int whence) {
  auto* const disk = static_cast<FailingDisk*>(cookie);
  if (whence == disk->refusedMove) {
    errno = EIO;
    return -1;
  }
  const size_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? disk->at : disk->text.size();
  disk->at = from + static_cast<size_t>(*offset);
  *offset = static_cast<off64_t>(disk->at);
  return 0;
}

// Unbuffered, so that each failure is met by the call that causes it.
FilePtr Open(FailingDisk* disk) {
  FilePtr stream(fopencookie(disk, "r+", {ReadFromDisk, WriteToDisk, MoveOnDisk, nullptr}));
  if (stream != nullptr) {
    (void)setvbuf(stream.get(), nullptr, _IONBF, 0);
  }
  return stream;
}

TEST(StreamFault, AnIniSectionThatCannotBeReadToItsEndIsABadHeader) {
  FailingDisk disk = {"[A]\nk=1\n"};
  astring value[16];
  u32 size = sizeof value;
  EXPECT_EQ(GetValue("A", "absent", value, &size, Open(&disk).get()), SM_STATUS_BAD_SECTION_HEADER);
  disk.at = 0;
  size = sizeof value;
  EXPECT_EQ(GetAllKeys("A", value, &size, Open(&disk).get()), SM_STATUS_BAD_SECTION_HEADER);
  disk.at = 0;
  EXPECT_EQ(GetAllSections(value, &size, Open(&disk).get()), SM_STATUS_BAD_SECTION_HEADER);
}

TEST(StreamFault, AKeyThatIsReadBeforeTheFaultIsFound) {
  FailingDisk disk = {"[A]\nk=1\n"};
  astring value[16];
  u32 size = sizeof value;
  EXPECT_EQ(GetValue("A", "k", value, &size, Open(&disk).get()), SM_STATUS_SUCCESS);
  EXPECT_STREQ(value, "1");
}

TEST(StreamFault, AnIniFileThatCannotBeCopiedToItsEndIsABadHeader) {
  FailingDisk disk = {"k=old\nother=2\n"};
  const FilePtr out(tmpfile());
  ASSERT_TRUE(out);
  EXPECT_EQ(FindKeyUpdateValue("k", "new", Open(&disk).get(), out.get()),
            SM_STATUS_BAD_SECTION_HEADER);
  disk.at = 0;
  EXPECT_EQ(FindKeyUpdateValue("absent", "new", Open(&disk).get(), out.get()),
            SM_STATUS_BAD_SECTION_HEADER);
  disk.at = 0;
  EXPECT_EQ(FindSection("A", Open(&disk).get(), out.get()), SM_STATUS_BAD_SECTION_HEADER);
}

TEST(StreamFault, EveryIniLineThatCannotBeWrittenIsAWriteFailure) {
  FailingDisk disk;
  const FilePtr out = Open(&disk);
  ASSERT_TRUE(out);
  const auto update = [&out](std::string text, const astring* value) {
    const FilePtr in(fmemopen(text.data(), text.size(), "r"));
    return FindKeyUpdateValue("k", value, in.get(), out.get());
  };
  EXPECT_EQ(update("before=1\nk=old\n", "new"), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(update("k=old\n", "new"), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(update("[Next]\n", nullptr), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(update("k=old\nbehind=1\n", nullptr), SM_STATUS_WRITE_FAILED);
  // Nothing is left to be written.
  EXPECT_EQ(update("k=old\n", nullptr), SM_STATUS_SUCCESS);
}

TEST(StreamFault, ASizeIsOnlyToldWhereThePositionComesBack) {
  for (const int move : {SEEK_CUR, SEEK_END, SEEK_SET}) {
    FailingDisk disk = {"text", move};
    EXPECT_EQ(StreamSize(Open(&disk).get()), -1) << move;
  }
  FailingDisk sound = {"text"};
  EXPECT_EQ(StreamSize(Open(&sound).get()), 4);
}

TEST(StreamFault, AResourceLineNeedsAPositionToComeBackTo) {
  const ustring line[] = {'a', '\r', '\n', 'b', 'c', 'd'};
  const std::string bytes(reinterpret_cast<const char*>(line), sizeof line);
  ustring buffer[6];
  FailingDisk sound = {bytes};
  ASSERT_EQ(dc_fgetws(buffer, 6, Open(&sound).get()), buffer);
  for (const int move : {SEEK_CUR, SEEK_SET}) {
    FailingDisk disk = {bytes, move};
    EXPECT_EQ(dc_fgetws(buffer, 6, Open(&disk).get()), nullptr) << move;
  }
}

TEST(StreamFault, AFileWhoseKindCannotBeToldIsNotOpenedAndNotKept) {
  test::WriteFile("/tmp/a", "text");
  EXPECT_EQ(test::InChild([] {
              const int next = test::NextDescriptor();
              for (const u32 call : {
#ifdef SYS_fstat64
                       u32{SYS_fstat64},
#endif
#ifdef SYS_fstatat64
                       u32{SYS_fstatat64},
#endif
#ifdef SYS_newfstatat
                       u32{SYS_newfstatat},
#endif
                       u32{SYS_fstat}, u32{SYS_statx}}) {
                test::RefuseCall(call, next, EIO);
              }
              errno = 0;
              const bool refused = OpenFile("/tmp/a", "r") == nullptr && errno == EIO;
              return refused && test::TakeDescriptor(next) ? 3 : 4;
            }),
            3);
}

TEST(StreamFault, ATextThatIsLostOnCloseIsNotWritten) {
  EXPECT_EQ(test::InChild([] {
              test::RefuseCall(SYS_close, test::NextDescriptor(), EIO);
              FilePtr file = OpenFile("/tmp/a", "w");
              if (file == nullptr || fputs("text", file.get()) < 0) return 5;
              return CloseWritten(std::move(file)) ? 4 : 3;
            }),
            3);
}

TEST(StreamFault, AFileThatDoesNotTellItsSizeHasNone) {
  test::WriteFile("/tmp/a", "text");
  EXPECT_EQ(test::InChild([] {
              const int next = test::NextDescriptor();
              test::RefuseCall(kMoveCall, next, EIO);
              u32 size = 7;
              const bool none = GetSizeOfFile("/tmp/a", &size) == 0xFFFFFFFF && size == 0;
              return none && test::TakeDescriptor(next) ? 3 : 4;
            }),
            3);
}

TEST(StreamFault, ASectionIsNotAppendedWhereItCouldNotBeTakenBack) {
  test::WriteFile("/tmp/a", "[A]\nk=1\n");
  EXPECT_EQ(test::InChild([] {
              const int next = test::NextDescriptor();
              test::RefuseCall(kMoveCall, next, EIO);
              const u32 status = AppendValue("B", "k", "2", "/tmp/a");
              return status == SM_STATUS_WRITE_FAILED && test::TakeDescriptor(next) ? 3 : 4;
            }),
            3);
  EXPECT_EQ(ReadFile("/tmp/a"), "[A]\nk=1\n");
}

TEST(StreamFault, ASectionThatIsLostOnCloseIsNotWritten) {
  test::WriteFile("/tmp/a", "[A]\nk=1\n");
  EXPECT_EQ(test::InChild([] {
              test::RefuseCall(SYS_close, test::NextDescriptor(), EIO);
              return AppendValue("B", "k", "2", "/tmp/a") == SM_STATUS_WRITE_FAILED ? 3 : 4;
            }),
            3);
  EXPECT_EQ(ReadFile("/tmp/a"), "[A]\nk=1\n");
}

// Whether an update is a write failure, in a process where the file's copy is lost on close.
template <typename Update>
bool FailsWhereTheCopyIsLost(Update update) {
  return test::InChild([&update] {
           // The file itself is open while its copy is written.
           test::RefuseCall(SYS_close, test::NextDescriptor() + 1, EIO);
           return update() == SM_STATUS_WRITE_FAILED ? 3 : 4;
         }) == 3;
}

TEST(StreamFault, ACopyThatIsLostOnCloseDoesNotReplaceItsFile) {
  test::RequireSandbox();
  ASSERT_EQ(ModuleAttach(), 1);
  const char text[] = "k=1\n[A]\nk=1\n";
  test::WriteFile("/tmp/a", text);
  EXPECT_TRUE(FailsWhereTheCopyIsLost([] {
    astring key[] = "k";
    astring value[] = "2";
    const PXTKeyValue pair = {key, value};
    return SetKeyValueEntry("/tmp/a", &pair, 0);
  }));
  EXPECT_TRUE(FailsWhereTheCopyIsLost(
      [] { return WriteINIFileValue_astring("A", "k", "2", 2, "/tmp/a", 0); }));
  EXPECT_EQ(ReadFile("/tmp/a"), text);
}

TEST(StreamFault, AppendingMayReadToo) {
  test::WriteFile("/tmp/a", "old");
  FilePtr file = OpenFile("/tmp/a", "a+");
  ASSERT_TRUE(file);
  EXPECT_EQ(fgetc(file.get()), 'o');
  EXPECT_EQ(fseek(file.get(), 0, SEEK_SET), 0);
  EXPECT_GE(fputs("er", file.get()), 0);
  EXPECT_TRUE(CloseWritten(std::move(file)));
  EXPECT_EQ(ReadFile("/tmp/a"), "older");
}

}  // namespace
}  // namespace qvx
