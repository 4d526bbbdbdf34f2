// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/product_paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/paths.h"

#include "base/heap.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/sanitizers.h"

namespace qvx {
namespace {

constexpr char kTempDirectory[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/iws/temp";

std::string Text(astring* text) {
  const HeapArray<astring> owner(text);
  return text == nullptr ? "(null)" : text;
}

TEST(ProductPaths, AreTheFixedTextsOfTheLayout) {
  const struct {
    astring* (*call)(void);
    const char* expected;
  } cases[] = {
      {PXTGetProductIniPath, "/etc/cim/zarn/plinthos/vexilon/"},
      {PXTGetProductVarPath, "/etc/cim/zarn/plinthos/var/lib/vexilon/"},
      {PXTGetQVXWWWRootPath, "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot/"},
      {PXTGetQVXXSLRootPath, "/etc/cim/zarn/plinthos/var/lib/vexilon/xslroot/"},
      {PXTGetQVXDownloadPath, "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/download"},
      {PXTGetQVXUploadPath, "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/upload"},
      {PXTGetQVXCLIDocsPath, "/etc/cim/zarn/plinthos/var/lib/vexilon/cliroot//qvx/docs/en_US"},
      {PXTGetQVXWEBDocsPath, "/etc/cim/zarn/plinthos/var/lib/vexilon/wwwroot//qvx/docs/en_US"},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(Text(each.call()), each.expected);
  }
}

TEST(ProductPaths, TempDirectoryIsCreatedWhenMissing) {
  test::RequireSandbox();
  (void)rmdir(kTempDirectory);
  EXPECT_EQ(Text(PXTGetIWSTempDirPath()), kTempDirectory);
  struct stat status = {};
  ASSERT_EQ(stat(kTempDirectory, &status), 0);
  EXPECT_TRUE(S_ISDIR(status.st_mode));
  EXPECT_EQ(status.st_mode & 07777, 0755u);
}

TEST(ProductPaths, TempDirectoryIsCreatedOnEveryCall) {
  test::RequireSandbox();
  EXPECT_EQ(Text(PXTGetIWSTempDirPath()), kTempDirectory);
  EXPECT_EQ(Text(PXTGetIWSTempDirPath()), kTempDirectory);
  ASSERT_EQ(rmdir(kTempDirectory), 0);
  EXPECT_EQ(Text(PXTGetIWSTempDirPath()), kTempDirectory);
  EXPECT_TRUE(test::Exists(kTempDirectory));
}

TEST(ProductPaths, TempDirectoryThatCannotBeCreatedIsNull) {
  test::RequireSandbox();
  (void)rmdir(kTempDirectory);
  ASSERT_EQ(rmdir("/etc/cim/zarn/plinthos/var/lib/vexilon/iws"), 0);
  EXPECT_EQ(PXTGetIWSTempDirPath(), nullptr);
}

TEST(ProductPaths, TempDirectoryHiddenByAFileIsNull) {
  test::RequireSandbox();
  (void)rmdir(kTempDirectory);
  test::WriteFile(kTempDirectory, "");
  EXPECT_EQ(PXTGetIWSTempDirPath(), nullptr);
}

// The allocations are counted, which shows that a path is read on which another is built.
TEST(ProductPaths, AreNullWheneverAnAllocationFails) {
  const struct {
    astring* (*call)();
    u32 allocations;
  } cases[] = {
      {SUPTIntfGetProductIniPath, 1},  {SUPTIntfGetProductVarPath, 1},
      {SUPTIntfGetQVXWWWRootPath, 2},  {SUPTIntfGetQVXXSLRootPath, 2},  // the install path
      {SUPTIntfGetQVXDownloadPath, 2}, {SUPTIntfGetQVXUploadPath, 2},   // the var path
      {SUPTIntfGetQVXCLIDocsPath, 3},  {SUPTIntfGetQVXWEBDocsPath, 3},  // and the locale's name
      {SUPTIntfGetIWSTempDirPath, 2},                                   // the install path
  };
  for (const auto& each : cases) {
    HeapArray<astring> last;
    const u32 met = test::FailEachAllocation(
        [&] {
          last.reset(each.call());
          return last.get();
        },
        [](const astring* text) { EXPECT_EQ(text, nullptr); });
#if defined(__clang__) && QVX_SANITIZED == 0
    // Which may leave out a block that it sees freed unused.
    EXPECT_LE(met, each.allocations) << last.get();
    EXPECT_GE(met, 1u) << last.get();
#else
    EXPECT_EQ(met, each.allocations) << last.get();
#endif
    EXPECT_STREQ(last.get(), Text(each.call()).c_str());
  }
}

}  // namespace
}  // namespace qvx
