// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Logs on a failing disk.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <string>

#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "base/heap.h"
#include "base/layout.h"
#include "cli/log_content.h"
#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/refuse_call.h"
#include "xml/log_files.h"
#include "xml/xml_log.h"

namespace qvx {
namespace {

constexpr astring kLog[] = "/tmp/log.xml";

// The status of an append in a process where `refuse` makes calls on the log fail.
template <typename Refuse>
u32 AppendWhile(Refuse refuse) {
  int pipe[2];
  if (pipe2(pipe, O_CLOEXEC) != 0) {
    abort();
  }
  const auto append = [refuse, &pipe] {
    const int next = test::NextDescriptor();
    refuse(next);
    const u32 status =
        AppendToXMLLog(kLog, QVX_LOG_INFORMATION, 1, "u", "s", "d", nullptr, 0, test::kNoMaximum);
    const bool told = write(pipe[1], &status, sizeof(status)) == sizeof(status);
    return told && test::TakeDescriptor(next) && test::LockIsFree() ? 0 : 1;
  };
  EXPECT_EQ(test::InChild(append), 0);
  close(pipe[1]);
  u32 status = 0;
  EXPECT_EQ(read(pipe[0], &status, sizeof(status)), static_cast<ssize_t>(sizeof(status)));
  close(pipe[0]);
  return status;
}

u32 AppendWhileRefused(u32 number) {
  return AppendWhile([number](int log) { test::RefuseCall(number, log, EIO); });
}

class LogFault : public testing::Test {
 protected:
  void SetUp() override {
    test::RequireSandbox();
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(LogFault, ALogThatCannotBeReadIsBadDataAndStays) {
  test::WriteFile(kLog, test::LogOf("kept"));
  EXPECT_EQ(AppendWhileRefused(SYS_pread64), SM_STATUS_BAD_DATA);
  EXPECT_EQ(test::ReadFile(kLog), test::LogOf("kept"));
}

TEST_F(LogFault, ALogThatDoesNotTellItsSizeIsMinusOneAndStays) {
  test::WriteFile(kLog, test::LogOf("kept"));
  EXPECT_EQ(AppendWhile([](int log) { test::RefuseFileStatus(log, EIO); }), kMinusOne);
  EXPECT_EQ(test::ReadFile(kLog), test::LogOf("kept"));
}

TEST_F(LogFault, ALogThatCannotBeWrittenStays) {
  test::WriteFile(kLog, test::LogOf("kept"));
  EXPECT_EQ(AppendWhileRefused(SYS_pwritev), SM_STATUS_WRITE_FAILED);
  EXPECT_EQ(test::ReadFile(kLog), test::LogOf("kept"));
}

TEST_F(LogFault, AFirstEntryThatCannotBeWrittenLeavesAnEmptyLog) {
  EXPECT_EQ(AppendWhileRefused(SYS_pwritev), SM_STATUS_WRITE_FAILED);
  EXPECT_TRUE(test::Exists(kLog));
  EXPECT_EQ(test::ReadFile(kLog), "");
}

TEST_F(LogFault, AnEntryIsNotWrittenWhereTheBytesBehindItCannotBeCut) {
  test::WriteFile(kLog, test::LogOf("kept") + std::string(3000, 'x'));
#ifdef SYS_ftruncate64
  EXPECT_EQ(AppendWhileRefused(SYS_ftruncate64), SM_STATUS_WRITE_FAILED);
#else
  EXPECT_EQ(AppendWhileRefused(SYS_ftruncate), SM_STATUS_WRITE_FAILED);
#endif
  const std::string begin = test::LogOf("kept");
  EXPECT_EQ(test::ReadFile(kLog).substr(0, begin.size()), begin);
}

TEST_F(LogFault, ALogThatTheSystemDoesNotShowIsNotBegunAnew) {
  const std::string log = test::LogOf(std::string(100, 'k'));
  test::WriteFile(kLog, log);
  EXPECT_EQ(test::InChild([] {
              test::RefuseFileStatus(AT_FDCWD, EIO);
              return ForceXMLLogExists(kLog, "", "s") == SM_STATUS_BAD_ARGUMENT &&
                             ForceXMLLogExists(kLog, "u", "s") == kMinusOne
                         ? 3
                         : 4;
            }),
            3);
  EXPECT_EQ(test::ReadFile(kLog), log);
}

// Whether an append whose close fails is a write failure.
bool FailsWhenItsCloseFails(const std::string& description) {
  const auto append = [&description] {
    tzset();  // opens a file itself
    test::RefuseCall(SYS_close, test::NextDescriptor(), EIO);
    return AppendToXMLLog(kLog, QVX_LOG_INFORMATION, 1, "u", "s", description.c_str(), nullptr, 0,
                          test::kNoMaximum) == SM_STATUS_WRITE_FAILED
               ? 3
               : 4;
  };
  return test::InChild(append) == 3;
}

TEST_F(LogFault, AnEntryWhoseCloseFailsIsTakenBack) {
  test::WriteFile(kLog, test::LogOf("kept"));
  for (const size_t length : {1u, 10000u}) {
    EXPECT_TRUE(FailsWhenItsCloseFails(std::string(length, 'd')));
    EXPECT_EQ(test::ReadFile(kLog), test::LogOf("kept"));
  }
  EXPECT_EQ(test::ReadFile(kIPCFilePath), "");
}

TEST_F(LogFault, AFirstEntryWhoseCloseFailsLeavesAnEmptyLog) {
  EXPECT_TRUE(FailsWhenItsCloseFails("d"));
  EXPECT_EQ(test::ReadFile(kLog), "");
}

// Every text grows the entry beyond its room.
TEST_F(LogFault, WithoutMemoryForALargeEntryTheLogStays) {
  test::WriteFile(kLog, test::LogOf("kept"));
  const std::string user(1023, '&');
  const std::string description(16383, 'd');
  const u32 met = test::FailEachAllocation(
      [&] {
        return AppendToXMLLog(kLog, QVX_LOG_INFORMATION, 1, user.c_str(), user.c_str(),
                              description.c_str(), nullptr, 0, test::kNoMaximum);
      },
      [](u32 status) {
        EXPECT_TRUE(status == kMinusOne || status == SM_STATUS_NO_MEMORY) << status;
        EXPECT_EQ(test::ReadFile(kLog), test::LogOf("kept"));
      });
  EXPECT_GE(met, 3u) << "two escaped texts and the entry";
  EXPECT_EQ(test::ElementsOf(test::ReadFile(kLog), "ID").size(), 1u);
}

TEST_F(LogFault, AContentThatCannotBeReadIsTheStatusAlone) {
  test::WriteFile(kLog, "text");
  const auto show = [] {
    const int next = test::NextDescriptor();
    test::RefuseCall(SYS_read, next, EIO);
    const HeapArray<astring> content(CmdGetXMLLogContent(kLog));
    const bool alone =
        content != nullptr && std::string(content.get()) == "<SMStatus>-1</SMStatus>";
    return alone && test::TakeDescriptor(next) ? 3 : 4;
  };
  EXPECT_EQ(test::InChild(show), 3);
}

}  // namespace
}  // namespace qvx
