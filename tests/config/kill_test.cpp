// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A writer of a configuration file that is killed at any moment leaves the old file or the new one.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "frame/module.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"

namespace qvx {
namespace {

constexpr char kIniFile[] = "/tmp/kill/a.ini";
constexpr char kPairFile[] = "/tmp/kill/a.properties";
constexpr s32 kText = 1;

// The lock, the copy, the flush and the rename are about twenty system calls, with two stops each.
constexpr u32 kFewestStops = 20;

class Kill : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ModuleAttach(), 1);
    ASSERT_EQ(mkdir("/tmp/kill", 0755), 0);
  }

  // How often each of the two files was found.
  void Count(const std::string& found, const std::string& oldText, const std::string& newText) {
    if (found == oldText) {
      ++oldSeen_;
    } else if (found == newText) {
      ++newSeen_;
    } else {
      ADD_FAILURE() << "neither the old file nor the new one: " << found.size() << " bytes";
    }
  }

  u32 oldSeen_ = 0;
  u32 newSeen_ = 0;
};

// More than a block, so that the copy takes several writes.
std::string Filler() {
  std::string text;
  for (int at = 0; at < 1700; ++at) {
    text += "filler" + std::to_string(at) + "=" + std::string(30, 'f') + "\n";
  }
  return text;
}

std::string IniText(const std::string& value) {
  return "# settings\n[first]\n" + Filler() + "[second]\nkey=" + value + "\nother=1\n[third]\n" +
         Filler();
}

u32 WriteIni(const std::string& section, const std::string& value) {
  return PXTWriteINIPathFileValue(section.c_str(), "key", kText, value.c_str(),
                                  static_cast<s32>(value.size() + 1), kIniFile, QVX_LOCK_WAIT);
}

TEST_F(Kill, AnUpdatedIniFileIsTheOldOneOrTheNewOne) {
  const u32 stops = test::KillAtEachStop(
      [] { test::WriteFile(kIniFile, IniText("before")); },
      [] { return WriteIni("second", "a longer value") == SM_STATUS_SUCCESS; },
      [this](u32 nth) {
        SCOPED_TRACE(nth);
        Count(test::ReadFile(kIniFile), IniText("before"), IniText("a longer value"));
        EXPECT_TRUE(test::LockIsFree());
        EXPECT_EQ(WriteIni("second", "after"), SM_STATUS_SUCCESS);
        EXPECT_EQ(test::ReadFile(kIniFile), IniText("after"));
        EXPECT_FALSE(test::Exists("/tmp/kill/pxtini32.tmp")) << "the next write clears it away";
      });
  EXPECT_GE(stops, kFewestStops);
  EXPECT_GE(oldSeen_, kFewestStops / 2);
  EXPECT_GE(newSeen_, 2u) << "killed after the rename, and not at all";
}

TEST_F(Kill, ADeletedIniKeyIsThereOrGone) {
  const std::string without = "[first]\n" + Filler() + "[second]\nother=1\n";
  const std::string with = "[first]\n" + Filler() + "[second]\nkey=gone\nother=1\n";
  (void)test::KillAtEachStop([&with] { test::WriteFile(kIniFile, with); },
                             [] {
                               return PXTWriteINIPathFileValue("second", "key", kText, nullptr, 0,
                                                               kIniFile,
                                                               QVX_LOCK_WAIT) == SM_STATUS_SUCCESS;
                             },
                             [&](u32 nth) {
                               SCOPED_TRACE(nth);
                               Count(test::ReadFile(kIniFile), with, without);
                               EXPECT_TRUE(test::LockIsFree());
                             });
  EXPECT_GE(oldSeen_, kFewestStops / 2);
  EXPECT_GE(newSeen_, 2u);
}

TEST_F(Kill, ANewIniSectionLeavesTheOldFileOrTheNewOne) {
  const std::string standing = IniText("before");
  const std::string appended = standing + "[fourth]\nkey=a value\n";
  const u32 stops = test::KillAtEachStop(
      [&standing] { test::WriteFile(kIniFile, standing); },
      [] { return WriteIni("fourth", "a value") == SM_STATUS_SUCCESS; },
      [&](u32 nth) {
        SCOPED_TRACE(nth);
        Count(test::ReadFile(kIniFile), standing, appended);
        EXPECT_TRUE(test::LockIsFree());
        EXPECT_EQ(WriteIni("fourth", "after"), SM_STATUS_SUCCESS);
        EXPECT_EQ(test::ReadFile(kIniFile), standing + "[fourth]\nkey=after\n");
      });
  EXPECT_GE(stops, kFewestStops);
  EXPECT_GE(oldSeen_, kFewestStops / 2);
  EXPECT_GE(newSeen_, 2u);
}

TEST_F(Kill, ANewIniFileIsMissingOrWhole) {
  u32 missing = 0;
  u32 whole = 0;
  const u32 stops =
      test::KillAtEachStop([] { (void)unlink(kIniFile); },
                           [] { return WriteIni("first", "a value") == SM_STATUS_SUCCESS; },
                           [&](u32 nth) {
                             SCOPED_TRACE(nth);
                             if (test::Exists(kIniFile)) {
                               EXPECT_EQ(test::ReadFile(kIniFile), "[first]\nkey=a value\n");
                               ++whole;
                             } else {
                               ++missing;
                             }
                             EXPECT_TRUE(test::LockIsFree());
                             EXPECT_EQ(WriteIni("first", "after"), SM_STATUS_SUCCESS);
                             EXPECT_EQ(test::ReadFile(kIniFile), "[first]\nkey=after\n");
                             EXPECT_FALSE(test::Exists("/tmp/kill/pxtini32.tmp"));
                           });
  EXPECT_GE(stops, 10u);
  EXPECT_GE(missing, 5u);
  EXPECT_GE(whole, 2u);
}

std::string PairText(const std::string& value) {
  return "#comment\n" + Filler() + "key=first\nkey=" + value + "\n" + Filler();
}

u32 SetPair(std::string key, std::string value, u32 index) {
  const PXTKeyValue pair = {key.data(), value.data()};
  return PXTCFGSetKeyValue(kPairFile, &pair, index);
}

TEST_F(Kill, AKeyValueFileIsTheOldOneOrTheNewOne) {
  const u32 stops = test::KillAtEachStop(
      [] { test::WriteFile(kPairFile, PairText("before")); },
      [] { return SetPair("key", "a longer value", 1) == SM_STATUS_SUCCESS; },
      [this](u32 nth) {
        SCOPED_TRACE(nth);
        Count(test::ReadFile(kPairFile), PairText("before"), PairText("a longer value"));
        EXPECT_TRUE(test::LockIsFree());
        EXPECT_EQ(SetPair("key", "after", 1), SM_STATUS_SUCCESS);
        EXPECT_EQ(test::ReadFile(kPairFile), PairText("after"));
        EXPECT_FALSE(test::Exists("/tmp/kill/pxtcfg32.tmp")) << "the next write clears it away";
      });
  EXPECT_GE(stops, kFewestStops);
  EXPECT_GE(oldSeen_, kFewestStops / 2);
  EXPECT_GE(newSeen_, 2u);
}

TEST_F(Kill, AnAppendedPairIsThereWholeOrNotAtAll) {
  const std::string standing = PairText("before");
  (void)test::KillAtEachStop([&standing] { test::WriteFile(kPairFile, standing); },
                             [] { return SetPair("new", "a value", 0) == SM_STATUS_SUCCESS; },
                             [&](u32 nth) {
                               SCOPED_TRACE(nth);
                               Count(test::ReadFile(kPairFile), standing,
                                     standing + "new=a value\n");
                               EXPECT_TRUE(test::LockIsFree());
                             });
  EXPECT_GE(oldSeen_, kFewestStops / 2);
  EXPECT_GE(newSeen_, 2u);
}

}  // namespace
}  // namespace qvx
