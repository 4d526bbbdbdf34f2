// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Streams whose reads, writes and seeks fail, as on a failing disk.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "config/ini_reader.h"
#include "config/ini_section.h"
#include "config/ini_writer.h"
#include "config/keyvalue_writer.h"
#include "frame/module.h"
#include "os/block_reader.h"
#include "os/block_writer.h"
#include "os/descriptor.h"
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

// A disk that refuses one kind of seek.
struct FailingDisk {
  std::string text;
  int refusedMove = -1;
  size_t at = 0;
};

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

FilePtr Open(FailingDisk* disk) {
  return FilePtr(fopencookie(disk, "r+", {nullptr, nullptr, MoveOnDisk, nullptr}));
}

// A file that delivers a text and then fails: a pipe whose writer stops writing but keeps it open.
class FailingFile {
 public:
  explicit FailingFile(std::string_view text) : reader_(Opened(text, this)) {}
  ~FailingFile() { close(writer_); }
  FailingFile(const FailingFile&) = delete;
  FailingFile& operator=(const FailingFile&) = delete;

  BlockReader* Reader() { return &reader_; }

 private:
  static int Opened(std::string_view text, FailingFile* self) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0 || !WriteAll(ends[1], text)) abort();
    self->file_ = Descriptor(ends[0]);
    self->writer_ = ends[1];
    return ends[0];
  }

  Descriptor file_;
  int writer_ = -1;
  BlockReader reader_;
};

// A writer with a full buffer, over a disk that accepts nothing: any further text fails.
class FullWriter {
 public:
  FullWriter() : disk_(OpenDescriptor("/dev/full", O_WRONLY)), writer_(disk_.Number()) {
    if (!writer_.Write(std::string(BlockWriter::kBlock, 'f'))) abort();
  }
  BlockWriter* Writer() { return &writer_; }

 private:
  Descriptor disk_;
  BlockWriter writer_;
};

TEST(StreamFault, AnIniSectionThatCannotBeReadToItsEndIsABadHeader) {
  constexpr char kText[] = "[A]\nk=1\n";
  astring value[16];
  u32 size = sizeof(value);
  EXPECT_EQ(GetValue("A", "absent", value, &size, FailingFile(kText).Reader()),
            SM_STATUS_BAD_SECTION_HEADER);
  size = sizeof(value);
  EXPECT_EQ(GetAllKeys("A", value, &size, FailingFile(kText).Reader()),
            SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_EQ(GetAllSections(value, &size, FailingFile(kText).Reader()),
            SM_STATUS_BAD_SECTION_HEADER);
}

TEST(StreamFault, AKeyThatIsReadBeforeTheFaultIsFound) {
  astring value[16];
  u32 size = sizeof(value);
  EXPECT_EQ(GetValue("A", "k", value, &size, FailingFile("[A]\nk=1\n").Reader()),
            SM_STATUS_SUCCESS);
  EXPECT_STREQ(value, "1");
}

TEST(StreamFault, AnIniFileThatCannotBeCopiedToItsEndIsABadHeader) {
  constexpr char kText[] = "k=old\nother=2\n";
  const Descriptor copy = OpenDescriptor("/tmp/copy", O_WRONLY | O_CREAT, 0600);
  BlockWriter out(copy.Number());
  EXPECT_EQ(FindKeyUpdateValue("k", "new", FailingFile(kText).Reader(), &out),
            SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_EQ(FindKeyUpdateValue("absent", "new", FailingFile(kText).Reader(), &out),
            SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_EQ(FindSection("A", FailingFile(kText).Reader(), &out), SM_STATUS_BAD_SECTION_HEADER);
}

TEST(StreamFault, EveryIniLineThatCannotBeWrittenIsAWriteFailure) {
  const auto update = [](const char* text, const astring* value) {
    test::WriteFile("/tmp/in", text);
    const Descriptor file = OpenDescriptor("/tmp/in", O_RDONLY);
    BlockReader in(file.Number());
    return FindKeyUpdateValue("k", value, &in, FullWriter().Writer());
  };
  EXPECT_EQ(update("before=1\nk=old\n", "new"), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(update("k=old\n", "new"), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(update("[Next]\n", nullptr), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(update("k=old\nbehind=1\n", nullptr), SM_STATUS_WRITE_FAILED);
  // Nothing is left to be written.
  EXPECT_EQ(update("k=old\n", nullptr), SM_STATUS_SUCCESS);
}

TEST(StreamFault, AnIniHeaderThatCannotBeWrittenIsAWriteFailure) {
  test::WriteFile("/tmp/in", "[A]\n");
  const Descriptor file = OpenDescriptor("/tmp/in", O_RDONLY);
  BlockReader in(file.Number());
  EXPECT_EQ(FindSection("A", &in, FullWriter().Writer()), SM_STATUS_WRITE_FAILED);
}

TEST(StreamFault, ASizeIsOnlyToldWhereThePositionComesBack) {
  for (const int move : {SEEK_CUR, SEEK_END, SEEK_SET}) {
    FailingDisk disk = {"text", move};
    EXPECT_EQ(StreamSize(Open(&disk).get()), -1) << move;
  }
  FailingDisk sound = {"text"};
  EXPECT_EQ(StreamSize(Open(&sound).get()), 4);
}

TEST(StreamFault, AFileWhoseKindCannotBeToldIsNotOpenedAndNotKept) {
  test::WriteFile("/tmp/a", "text");
  EXPECT_EQ(test::InChild([] {
              const int next = test::NextDescriptor();
              test::RefuseFileStatus(next, EIO);
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

// Undoing the append after a failed close needs a second descriptor.
TEST(StreamFault, ASectionIsNotAppendedWhereItCouldNotBeTakenBack) {
  test::WriteFile("/tmp/a", "[A]\nk=1\n");
  EXPECT_EQ(test::InChild([] {
              const int next = test::NextDescriptor();
              const rlimit one = {static_cast<rlim_t>(next) + 1, static_cast<rlim_t>(next) + 1};
              if (setrlimit(RLIMIT_NOFILE, &one) != 0) return 5;
              const u32 status = AppendValue({"B", "k", "2"}, "/tmp/a");
              return status == SM_STATUS_WRITE_FAILED && test::TakeDescriptor(next) ? 3 : 4;
            }),
            3);
  EXPECT_EQ(ReadFile("/tmp/a"), "[A]\nk=1\n");
}

TEST(StreamFault, ASectionThatIsLostOnCloseIsNotWritten) {
  test::WriteFile("/tmp/a", "[A]\nk=1\n");
  EXPECT_EQ(test::InChild([] {
              test::RefuseCall(SYS_close, test::NextDescriptor(), EIO);
              return AppendValue({"B", "k", "2"}, "/tmp/a") == SM_STATUS_WRITE_FAILED ? 3 : 4;
            }),
            3);
  EXPECT_EQ(ReadFile("/tmp/a"), "[A]\nk=1\n");
}

// Whether an update reports a write failure in a process where closing the copy fails.
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
  EXPECT_TRUE(FailsWhereTheCopyIsLost([] {
    return WriteINIFileValue_astring({"A", "k", "2", 2, "/tmp/a", 0});
  }));
  EXPECT_EQ(ReadFile("/tmp/a"), text);
}

}  // namespace
}  // namespace qvx
