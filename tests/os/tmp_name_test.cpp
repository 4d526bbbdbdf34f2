// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Temporary names when chance is against them.
#include <gtest/gtest.h>
#include <sys/random.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "qvxcs/status.h"

#include "os/file_util.h"
#include "support/files.h"

namespace {

enum class Chance { kTheSystems, kAlwaysTheSame, kNone };
Chance chance = Chance::kTheSystems;

}  // namespace

// Stands for the C library's in this program.
extern "C" ssize_t getrandom(void* buffer, size_t size, unsigned int flags) {
  switch (chance) {
    case Chance::kAlwaysTheSame:
      memset(buffer, 0, size);
      return static_cast<ssize_t>(size);
    case Chance::kNone:
      errno = ENOSYS;
      return -1;
    default:
      return syscall(SYS_getrandom, buffer, size, flags);
  }
}

namespace qvx {
namespace {

class TmpName : public testing::Test {
 protected:
  void SetUp() override { test::RequireSandbox(); }
  void TearDown() override { chance = Chance::kTheSystems; }
};

TEST_F(TmpName, IsNeverThatOfAFileThatIsThere) {
  chance = Chance::kAlwaysTheSame;
  astring first[20] = {};
  u32 size = sizeof(first);
  ASSERT_EQ(GetTmpFile("/", first, &size), SM_STATUS_SUCCESS);
  ASSERT_EQ(size, strlen(first) + 1);
  test::WriteFile(first, "taken");
  astring second[20] = "as it was";
  size = sizeof(second);
  EXPECT_EQ(GetTmpFile("/", second, &size), SM_STATUS_FILE_CREATE_FAILED);
  EXPECT_STREQ(second, "as it was");
  EXPECT_EQ(size, sizeof(second));
  EXPECT_EQ(test::ReadFile(first), "taken");
}

TEST_F(TmpName, IsNotMadeWithoutChance) {
  chance = Chance::kNone;
  ASSERT_EQ(chdir("/usr"), 0);
  astring name[20] = "as it was";
  u32 size = sizeof(name);
  EXPECT_EQ(GetTmpFile("/", name, &size), SM_STATUS_FILE_CREATE_FAILED);
  EXPECT_STREQ(name, "as it was");
  EXPECT_EQ(size, sizeof(name));
  astring here[32] = {};
  ASSERT_NE(getcwd(here, sizeof(here)), nullptr);
  EXPECT_STREQ(here, "/usr");
}

}  // namespace
}  // namespace qvx
