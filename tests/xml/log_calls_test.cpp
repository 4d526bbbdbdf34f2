// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// How many system calls an entry costs.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "qvxcs/command_log.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "support/sanitizers.h"
#include "xml/command_log.h"
#include "xml/log_files.h"
#include "xml/xml_log.h"

namespace qvx {
namespace {

constexpr char kProperties[] = "/etc/cim/zarn/plinthos/vexilon//qvx/ini/qvx.properties";

// The system calls of `work`, which has run once before.
template <typename Work>
u32 CallsOf(Work work) {
  const auto stopsOf = [&work](int times) {
    u32 stops = 0;
    EXPECT_EQ(test::RunStepwise(
                  [&work, times] {
                    for (int i = 0; i < times; ++i) {
                      if (work() != 0) return 1;
                    }
                    return 0;
                  },
                  [&stops] {
                    ++stops;
                    return true;
                  }),
              0);
    return stops;
  };
  const u32 once = stopsOf(1);
  return (stopsOf(2) - once) / 2;  // a stop before each call and one after it
}

u32 AppendShort() {
  return AppendToXMLLog("/tmp/log.xml", QVX_LOG_INFORMATION, 1, "user", "source", "text", nullptr,
                        0, test::kNoMaximum);
}

class LogCalls : public testing::Test {
 protected:
  void SetUp() override {
    if (QVX_SANITIZED != 0) GTEST_SKIP() << "a sanitizer makes its own system calls";
    test::RequireSandbox();
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(LogCalls, AnEntryCostsAtMostTwelve) {
  ASSERT_EQ(AppendShort(), 0u);
  EXPECT_LE(CallsOf(AppendShort), 12u);
}

// Its size is found with the entry's own look at it, and once more under the lock.
TEST_F(LogCalls, ALogThatMovesToItsBackupIsMeasuredOnceMore) {
  const auto appendToFull = [] {
    return AppendToXMLLog("/tmp/log.xml", QVX_LOG_INFORMATION, 1, "user", "source", "text", nullptr,
                          0, 1);
  };
  ASSERT_EQ(appendToFull(), 0u);
  EXPECT_LE(CallsOf(appendToFull), 60u);
}

TEST_F(LogCalls, ACommandLogEntryCostsAtMostEighteenAndTwentyOneWithItsProperties) {
  const auto append = [] {
    return SUPTIntfAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "user", "source", "text",
                                  QVX_LOG_INFORMATION);
  };
  ASSERT_EQ(append(), 0u);
  EXPECT_LE(CallsOf(append), 18u);
  test::WriteFile(kProperties, "other=1\npreferences.system.cmdlogmaxsize=500000\n");
  EXPECT_LE(CallsOf(append), 21u);
}

}  // namespace
}  // namespace qvx
