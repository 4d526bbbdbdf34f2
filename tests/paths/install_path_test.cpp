// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/install_path.h"

#include <gtest/gtest.h>

#include <string>

#include "qvxcs/paths.h"
#include "qvxcs/status.h"

#include "base/heap.h"
#include "support/alloc_fault.h"
#include "support/guard_buffer.h"

namespace qvx {
namespace {

std::string Text(astring* text) {
  const HeapArray<astring> owner(text);
  return text == nullptr ? "(null)" : text;
}

TEST(InstallPath, IsTheFixedDirectoryWithItsSlash) {
  EXPECT_EQ(Text(PXTGetQVXInstallPath()), "/opt/zarn/plinthos/");
}

TEST(InstallPath, IsTheSameAfterTheAttachHasFilledTheCache) {
  EXPECT_EQ(SUPTIntfInitQVXInstallPath(), SM_STATUS_SUCCESS);
  EXPECT_EQ(Text(PXTGetQVXInstallPath()), "/opt/zarn/plinthos/");
}

TEST(InstallPath, RootInstallPathHasNoTrailingSlash) {
  EXPECT_EQ(Text(PXTGetRootInstallPath()), "/opt/zarn/plinthos");
}

TEST(InstallPath, EachCallGivesACopyOfItsOwn) {
  const HeapArray<astring> first(PXTGetQVXInstallPath());
  ASSERT_NE(first, nullptr);
  first[0] = '#';
  EXPECT_EQ(Text(PXTGetQVXInstallPath()), "/opt/zarn/plinthos/");
}

TEST(InstallPath, PlatformPathNeedsTwentyBytes) {
  test::GuardBuffer<astring> buffer(20);
  u32 size = 20;
  EXPECT_EQ(OSInitQVXInstallPath(buffer.data(), &size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 20u);
  EXPECT_STREQ(buffer.data(), "/opt/zarn/plinthos/");
  EXPECT_TRUE(buffer.FrontUntouched());
}

TEST(InstallPath, PlatformPathTellsTheSizeNeededAndWritesNothing) {
  for (const u32 room : {0u, 19u}) {
    test::GuardBuffer<astring> buffer(19);
    u32 size = room;
    EXPECT_EQ(OSInitQVXInstallPath(buffer.data(), &size), SM_STATUS_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 20u);
    EXPECT_TRUE(buffer.UntouchedFrom(0));
  }
}

TEST(InstallPath, PlatformPathRefusesNullPointers) {
  astring buffer[20];
  u32 size = 20;
  EXPECT_EQ(OSInitQVXInstallPath(nullptr, &size), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(OSInitQVXInstallPath(buffer, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(size, 20u);
}

TEST(InstallPath, CutsAtTheLastSlashOnly) {
  astring path[] = "/a/b/c";
  EXPECT_TRUE(CutAtLastSlash(path));
  EXPECT_STREQ(path, "/a/b");
}

TEST(InstallPath, DoesNotCutWithoutSlashBehindTheFirstCharacter) {
  astring relative[] = "abc";
  astring root[] = "/abc";
  astring empty[] = "";
  EXPECT_FALSE(CutAtLastSlash(relative));
  EXPECT_FALSE(CutAtLastSlash(root));
  EXPECT_FALSE(CutAtLastSlash(empty));
  EXPECT_STREQ(root, "/abc");
}

TEST(InstallPath, WithoutMemoryIsNullAndTheNextCallWorks) {
  {
    const test::FailNthAllocation fault(1);
    EXPECT_EQ(SUPTIntfGetQVXInstallPath(), nullptr);
  }
  EXPECT_EQ(Text(SUPTIntfGetQVXInstallPath()), "/opt/zarn/plinthos/");
}

}  // namespace
}  // namespace qvx
