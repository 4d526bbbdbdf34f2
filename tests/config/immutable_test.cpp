// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Files that carry the immutable flag: not even root may change them, and no writer damages them.
#include "support/immutable.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>

#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "frame/module.h"
#include "os/file_util.h"
#include "support/files.h"
#include "support/processes.h"
#include "support/small_disk.h"

namespace qvx {
namespace {

using test::Exists;
using test::Immutable;
using test::LockIsFree;
using test::ReadFile;
using test::WriteFile;

constexpr char kPath[] = "/tmp/d/a.ini";
constexpr s32 kText = 1;

u32 WriteIni(const char* section, const char* value) {
  return PXTWriteINIPathFileValue(section, "key", kText, value, 2, kPath, QVX_LOCK_WAIT);
}

u32 SetPair() {
  char key[] = "key";
  char value[] = "2";
  const PXTKeyValue pair = {key, value};
  return PXTCFGSetKeyValue(kPath, &pair, 0);
}

class ImmutableFile : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ModuleAttach(), 1);
    ASSERT_EQ(mkdir("/tmp/d", 0755), 0);
  }
};

TEST_F(ImmutableFile, KeepsItsIniValue) {
  WriteFile(kPath, "[A]\nkey=1\n");
  {
    const Immutable immutable(kPath);
    EXPECT_EQ(WriteIni("A", "2"), SM_STATUS_FILE_DELETE_FAILED);
    EXPECT_EQ(ReadFile(kPath), "[A]\nkey=1\n");
    EXPECT_TRUE(LockIsFree());
  }
  EXPECT_EQ(WriteIni("A", "2"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=2\n");
}

TEST_F(ImmutableFile, TakesNoNewIniSection) {
  WriteFile(kPath, "[A]\nkey=1\n");
  {
    const Immutable immutable(kPath);
    EXPECT_EQ(WriteIni("B", "2"), SM_STATUS_FILE_OPEN_FAILED);
    EXPECT_EQ(ReadFile(kPath), "[A]\nkey=1\n");
    EXPECT_FALSE(Exists("/tmp/d/pxtini32.tmp"));
    EXPECT_TRUE(LockIsFree());
  }
  EXPECT_EQ(WriteIni("B", "2"), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[A]\nkey=1\n[B]\nkey=2\n");
}

TEST_F(ImmutableFile, KeepsItsKeyValuePairs) {
  WriteFile(kPath, "# pairs\nkey=1\n");
  {
    const Immutable immutable(kPath);
    EXPECT_EQ(SetPair(), SM_STATUS_FILE_DELETE_FAILED);
    EXPECT_EQ(ReadFile(kPath), "# pairs\nkey=1\n");
    EXPECT_TRUE(LockIsFree());
  }
  EXPECT_EQ(SetPair(), SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "# pairs\nkey=2\n");
}

TEST_F(ImmutableFile, IsNeitherReplacedNorDeleted) {
  WriteFile(kPath, "old");
  WriteFile("/tmp/d/source", "new");
  const Immutable immutable(kPath);
  EXPECT_EQ(ReplaceFile(kPath, "/tmp/d/source"), SM_STATUS_FILE_DELETE_FAILED);
  EXPECT_EQ(DelFile(kPath), 0xFFFFFFFF);
  EXPECT_EQ(ReadFile(kPath), "old");
  EXPECT_EQ(ReadFile("/tmp/d/source"), "new");
}

}  // namespace
}  // namespace qvx
