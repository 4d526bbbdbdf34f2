// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/command_log.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <string>
#include <vector>

#include "qvxcs/command_log.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "base/heap.h"
#include "frame/module.h"
#include "support/alloc_fault.h"
#include "xml/log_files.h"
#include "xml/xml_log.h"

namespace qvx {
namespace {

using test::EntryOf;
using test::Exists;
using test::LogOf;
using test::ReadFile;
using test::WithoutTimes;
using test::WriteFile;

constexpr astring kLog[] = "/etc/cim/zarn/plinthos/var/log/vexilon//qvcmdlog.xml";
constexpr astring kBackup[] = "/etc/cim/zarn/plinthos/var/log/vexilon//qvcmdlog.xm_";
constexpr astring kProperties[] = "/etc/cim/zarn/plinthos/vexilon//qvx/ini/qvx.properties";

const std::string& Created() {
  static const std::string entry = EntryOf(4, 0, "Local System", "QVPX", "Log was cleared");
  return entry;
}

void Attach() {
  test::RequireSandbox();
  ASSERT_EQ(ModuleAttach(), 1);
}

// A directory in the log's place: it cannot be opened, nor deleted.
void BlockLog() { ASSERT_EQ(mkdir(kLog, 0755), 0); }

std::string LogNow() { return WithoutTimes(ReadFile(kLog)); }

std::string PathNow() {
  const HeapArray<astring> path(SUPTIntfGetCmdLogPathFileName());
  return path ? path.get() : "(null)";
}

u32 MaxSizeWith(const std::string& properties) {
  WriteFile(kProperties, properties);
  u32 size = 0;
  EXPECT_EQ(SUPTIntfGetCmdLogMaxSize(&size), SM_STATUS_SUCCESS);
  return size;
}

TEST(CommandLog, PathOfAMissingLogCreatesIt) {
  Attach();
  EXPECT_EQ(PathNow(), kLog);
  EXPECT_EQ(LogNow(), LogOf(Created()));
  EXPECT_EQ(PathNow(), kLog);
  EXPECT_EQ(LogNow(), LogOf(Created()));
}

TEST(CommandLog, PathIsNullWhenTheLogCannotBeMade) {
  Attach();
  BlockLog();
  EXPECT_EQ(SUPTIntfGetCmdLogPathFileName(), nullptr);
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", "d", QVX_LOG_INFORMATION),
            kMinusOne);
  EXPECT_EQ(SUPTIntfClearCmdLog("u", "s"), kMinusOne);
  u32 size = 77;
  EXPECT_EQ(SUPTIntfGetCmdLogSize(&size), SM_STATUS_NO_MEMORY);
  EXPECT_EQ(size, 0u);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(CommandLog, IdentifiersFrom5001To6999AreLogged) {
  Attach();
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "a<b", "s", "<b/>", QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_LAST_ID, "u", "s", "d", 65535), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Created() + EntryOf(4, 5001, "a&lt;b", "s", "<b/>") +
                            EntryOf(65535, 6999, "u", "s", "d")));
  EXPECT_TRUE(test::IsWellFormed(kLog));
}

TEST(CommandLog, OtherIdentifiersAreInvalidAndMakeNoLog) {
  Attach();
  for (const s32 identifier : {5000, 7000, 0, -5001, INT_MIN, INT_MAX}) {
    EXPECT_EQ(SUPTIntfAppendToCmdLog(identifier, "u", "s", "d", QVX_LOG_INFORMATION),
              SM_STATUS_INVALID_PARAMETER);
  }
  EXPECT_FALSE(Exists(kLog));
}

TEST(CommandLog, MissingTextsAreInvalidAndMakeNoLog) {
  Attach();
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, nullptr, "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", nullptr, "d", QVX_LOG_INFORMATION),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", nullptr, QVX_LOG_INFORMATION),
            SM_STATUS_INVALID_PARAMETER);
  EXPECT_FALSE(Exists(kLog));
}

TEST(CommandLog, EmptyAndTooLongTextsAreBadArguments) {
  Attach();
  const std::string user(1024, 'u');
  const std::string text(16384, 'd');
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "", "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(
      SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", user.c_str(), "d", QVX_LOG_INFORMATION),
      SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(
      SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", text.c_str(), QVX_LOG_INFORMATION),
      SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(LogNow(), LogOf(Created()));
}

TEST(CommandLog, DamagedLogIsBadData) {
  Attach();
  WriteFile(kLog, std::string(100, 'x'));
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_BAD_DATA);
  EXPECT_EQ(ReadFile(kLog), std::string(100, 'x'));
}

TEST(CommandLog, DefaultMaximumMovesTheLogToItsBackup) {
  Attach();
  const std::string full = LogOf(std::string(131072 - 300, 'o'));
  WriteFile(kLog, full);
  EXPECT_EQ(SUPTIntfAppendToCmdLog(5002, "u", "s", "d", QVX_LOG_INFORMATION), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kBackup), full);
  EXPECT_EQ(LogNow(),
            LogOf(EntryOf(4, 1, "u", "s", "Log backup created") + EntryOf(4, 5002, "u", "s", "d")));
}

TEST(CommandLog, ConfiguredMaximumIsTheLimitOfAnAppend) {
  Attach();
  const std::string full = LogOf(std::string(131072 - 300, 'o'));
  WriteFile(kLog, full);
  WriteFile(kProperties, "preferences.system.cmdlogmaxsize=500000\n");
  EXPECT_EQ(SUPTIntfAppendToCmdLog(5002, "u", "s", "d", QVX_LOG_INFORMATION), SM_STATUS_SUCCESS);
  EXPECT_FALSE(Exists(kBackup));
  WriteFile(kProperties, "preferences.system.cmdlogmaxsize=1000\n");
  EXPECT_EQ(SUPTIntfAppendToCmdLog(5003, "u", "s", "d", QVX_LOG_INFORMATION), SM_STATUS_SUCCESS);
  EXPECT_TRUE(Exists(kBackup));
}

TEST(CommandLog, ClearLeavesOneEntryOfTheCaller) {
  Attach();
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(SUPTIntfClearCmdLog("who", "what"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(EntryOf(4, 0, "who", "what", "Log was cleared")));
  EXPECT_EQ(SUPTIntfClearCmdLog(nullptr, nullptr), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(EntryOf(4, 0, "", "", "Log was cleared")));
}

TEST(CommandLog, ClearWithABadArgumentKeepsTheEntries) {
  Attach();
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(SUPTIntfClearCmdLog("", "s"), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(LogNow(), LogOf(Created() + EntryOf(4, 5001, "u", "s", "d")));
}

TEST(CommandLog, SizeIsTheFilesLength) {
  Attach();
  WriteFile(kLog, std::string(12345, 'x'));
  u32 size = 77;
  EXPECT_EQ(SUPTIntfGetCmdLogSize(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 12345u);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(CommandLog, SizeOfAMissingLogCountsItsFirstEntry) {
  Attach();
  u32 size = 0;
  EXPECT_EQ(SUPTIntfGetCmdLogSize(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, ReadFile(kLog).size());
  EXPECT_EQ(LogNow(), LogOf(Created()));
  EXPECT_TRUE(test::LockIsFree());
}

// Asks for the size in a child; once the log is there and the lock is free, puts a file of 5 bytes
// in its place. Returns the size that the child got.
int SizeToldWhenReplacedOnceUnlocked() {
  bool replaced = false;
  return test::RunStepwise(
      [] {
        u32 size = 0;
        (void)SUPTIntfGetCmdLogSize(&size);
        return size > 200 ? 200 : static_cast<int>(size);
      },
      [&replaced] {
        struct stat info = {};
        if (!replaced && stat(kLog, &info) == 0 && info.st_size > 100 && test::LockIsFree()) {
          WriteFile(kLog, "short");
          replaced = true;
        }
        return true;
      });
}

TEST(CommandLog, SizeOfAMissingLogIsReadUnlocked) {
  Attach();
  EXPECT_EQ(SizeToldWhenReplacedOnceUnlocked(), 5);
}

TEST(CommandLog, LogOf4GiBHasNoSize) {
  Attach();
  WriteFile(kLog, "");
  ASSERT_EQ(truncate(kLog, off_t{1} << 32), 0);
  u32 size = 77;
  EXPECT_EQ(SUPTIntfGetCmdLogSize(&size), kMinusOne);
  EXPECT_EQ(size, 0u);
}

TEST(CommandLog, NullSizesAreInvalidBeforeTheLock) {
  EXPECT_EQ(SUPTIntfGetCmdLogSize(nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(SUPTIntfGetCmdLogMaxSize(nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(SUPTIntfSetCmdLogMaxSize(65536), SM_STATUS_INVALID_PARAMETER);
}

TEST(CommandLog, WithoutAnAttachTheSizesAreLocked) {
  test::RequireSandbox();
  u32 size = 77;
  EXPECT_EQ(SUPTIntfGetCmdLogMaxSize(&size), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(size, 77u);
  EXPECT_EQ(SUPTIntfGetCmdLogSize(&size), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(size, 0u);
  EXPECT_EQ(SUPTIntfSetCmdLogMaxSize(QVX_CMDLOG_MAX_SIZE), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", "d", QVX_LOG_INFORMATION),
            kMinusOne);
}

TEST(CommandLog, SizesWaitForTheLock) {
  Attach();
  u32 size = 0;
  const test::LockHolder other(kIPCFilePath);
  for (const bool maximum : {false, true}) {
    const test::CountSleeps sleeps;
    EXPECT_EQ(maximum ? SUPTIntfGetCmdLogMaxSize(&size) : SUPTIntfGetCmdLogSize(&size),
              SM_STATUS_LOCK_FAILED);
    EXPECT_EQ(test::CountSleeps::Count(), 60000u);
  }
  const test::CountSleeps sleeps;
  EXPECT_EQ(SUPTIntfSetCmdLogMaxSize(QVX_CMDLOG_MAX_SIZE), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(test::CountSleeps::Count(), 60000u);
}

TEST(CommandLog, MaximumComesFromThePropertiesFile) {
  Attach();
  const struct {
    const astring* value;
    u32 size;
  } cases[] = {
      {"500000", 500000},
      {"0", 0},
      {"+5", 5},
      {"000000000000007", 7},
      {" \"42\" ", 42},
      {"4294967295", 4294967295u},
      {"4294967296", 131072},
      {"99999999999999999999999", 131072},
      {"abc", 131072},
      {"", 131072},
      {"12a", 131072},
      {"0x10", 131072},
      {"+", 131072},
      {"-", 131072},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(MaxSizeWith(std::string("preferences.system.cmdlogmaxsize=") + each.value + "\n"),
              each.size)
        << each.value;
  }
}

TEST(CommandLog, NegativeMaximumWrapsAround) {
  Attach();
  EXPECT_EQ(MaxSizeWith("preferences.system.cmdlogmaxsize=-5\n"), 4294967291u);
  EXPECT_EQ(MaxSizeWith("preferences.system.cmdlogmaxsize=-4294967295\n"), 1u);
  EXPECT_EQ(MaxSizeWith("preferences.system.cmdlogmaxsize=-4294967296\n"), 131072u);
}

TEST(CommandLog, FirstOccurrenceOfTheKeyCounts) {
  Attach();
  EXPECT_EQ(MaxSizeWith("other=1\npreferences.system.cmdlogmaxsize=abc\n"
                        "preferences.system.cmdlogmaxsize=9\n"),
            131072u);
  EXPECT_EQ(MaxSizeWith("other=1\npreferences.system.cmdlogmaxsize=8\n"
                        "preferences.system.cmdlogmaxsize=9\n"),
            8u);
}

TEST(CommandLog, WithoutFileOrKeyTheMaximumIsTheDefault) {
  Attach();
  u32 size = 0;
  EXPECT_EQ(SUPTIntfGetCmdLogMaxSize(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 131072u);
  EXPECT_EQ(MaxSizeWith("preferences.system.CmdLogMaxSize=7\n"), 131072u);
  EXPECT_EQ(MaxSizeWith(""), 131072u);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(CommandLog, OnlyTheDefaultMaximumCanBeSet) {
  Attach();
  for (const s32 size : {65536, 131071, 131073, 0, -1, INT_MIN, INT_MAX}) {
    EXPECT_EQ(SUPTIntfSetCmdLogMaxSize(size), SM_STATUS_INVALID_PARAMETER);
  }
  EXPECT_EQ(SUPTIntfSetCmdLogMaxSize(QVX_CMDLOG_MAX_SIZE), SM_STATUS_SUCCESS);
  EXPECT_TRUE(test::LockIsFree());
  EXPECT_EQ(MaxSizeWith("preferences.system.cmdlogmaxsize=7\n"), 7u);
  EXPECT_EQ(MaxSizeWith(""), 131072u);
}

TEST(CommandLog, AttachKeepsTheDefaultWhateverTheFileHolds) {
  test::RequireSandbox();
  WriteFile(kProperties, "preferences.system.cmdlogmaxsize=7\n");
  ASSERT_EQ(ModuleAttach(), 1);
  EXPECT_EQ(MaxSizeWith(""), 131072u);
  WriteFile(kProperties, "preferences.system.cmdlogmaxsize=9\n");
  InitCmdMaxLogSize();
  EXPECT_EQ(MaxSizeWith(""), 131072u);
  EXPECT_TRUE(test::LockIsFree());
}

TEST(CommandLog, WithoutMemoryEachCallFailsOrFallsBack) {
  Attach();
  EXPECT_EQ(SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  WriteFile(kProperties, "preferences.system.cmdlogmaxsize=500000\n");
  test::FailEachAllocation([] { return HeapArray<astring>(SUPTIntfGetCmdLogPathFileName()); },
                           [](const HeapArray<astring>& path) { EXPECT_FALSE(path); });
  u32 size = 0;
  test::FailEachAllocation([&size] { return SUPTIntfGetCmdLogMaxSize(&size); },
                           [&size](u32 status) {
                             EXPECT_EQ(status, SM_STATUS_SUCCESS);
                             EXPECT_EQ(size, 131072u);
                           });
  EXPECT_EQ(size, 500000u);
  u32 logged = 1;
  test::FailEachAllocation(
      [] { return SUPTIntfAppendToCmdLog(5002, "u", "s", "d", QVX_LOG_INFORMATION); },
      [&logged](u32 status) {
        if (status == SM_STATUS_SUCCESS) {
          ++logged;
        }
        EXPECT_EQ(test::ElementsOf(ReadFile(kLog), "ID").size(), logged + 1);
      });
}

TEST(CommandLog, ExportedNamesDoTheSame) {
  Attach();
  EXPECT_EQ(PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "u", "s", "d", QVX_LOG_INFORMATION),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(Created() + EntryOf(4, 5001, "u", "s", "d")));
  const HeapArray<astring> path(PXTGetCmdLogPathFileName());
  EXPECT_STREQ(path.get(), kLog);
  u32 size = 0;
  EXPECT_EQ(PXTGetCmdLogSize(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, ReadFile(kLog).size());
  EXPECT_EQ(PXTGetCmdLogMaxSize(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 131072u);
  EXPECT_EQ(PXTSetCmdLogMaxSize(QVX_CMDLOG_MAX_SIZE), SM_STATUS_SUCCESS);
  EXPECT_EQ(PXTSetCmdLogMaxSize(65536), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXTClearCmdLog("u", "s"), SM_STATUS_SUCCESS);
  EXPECT_EQ(LogNow(), LogOf(EntryOf(4, 0, "u", "s", "Log was cleared")));
}

}  // namespace
}  // namespace qvx
