// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "qvxcs/access.h"

#include "base/layout.h"
#include "frame/module.h"
#include "support/cancelled.h"
#include "support/files.h"
#include "support/processes.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

using Units = std::vector<ustring>;

class CancelAccess : public ::testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::AddGroup("users", 7100);
    test::AddUser("alice", 7001, 7100, test::Hash("Wonder-1and"));
    // Without "nodelay": a wrong password makes the login sleep for two seconds.
    test::WriteFile("/etc/pam.d/qvauth",
                    "auth required pam_unix.so nullok\naccount required pam_unix.so\n");
    ASSERT_EQ(ModuleAttach(), 1);
  }
  void TearDown() override { EXPECT_TRUE(test::LockIsFree()); }
};

u32 LogIn(Units* secret) {
  const Units name = {'a', 'l', 'i', 'c', 'e', 0};
  return PXTAuthenticateUser(nullptr, name.data(), secret->data());
}

Units Text(const std::string& text) {
  Units units(text.begin(), text.end());
  units.push_back(0);
  return units;
}

bool IsWiped(const Units& secret) {
  return std::all_of(secret.begin(), secret.end(), [](ustring unit) { return unit == 0; });
}

TEST_F(CancelAccess, ALoginWithinPamsDelayIsDoneFirstAndItsPasswordWiped) {
  Units secret = Text("Wonder-2and");
  u32 rights = 77;
  EXPECT_TRUE(test::EndsAfter([&] { rights = LogIn(&secret); }));
  EXPECT_EQ(rights, 0U);
  EXPECT_TRUE(IsWiped(secret));
  secret = Text("Wonder-1and");
  EXPECT_EQ(LogIn(&secret), 0x1U) << "the next login works";
}

TEST_F(CancelAccess, ALoginThatSucceedsGivesItsRights) {
  Units secret = Text("Wonder-1and");
  u32 rights = 77;
  EXPECT_TRUE(test::EndsAfter([&] { rights = LogIn(&secret); }));
  EXPECT_EQ(rights, 0x1U);
  EXPECT_TRUE(IsWiped(secret));
}

TEST_F(CancelAccess, TheRoleMapIsOpenedAndReadFirst) {
  test::WriteFile(kRoleMapPath, "root * poweruser\n");
  ASSERT_EQ(chmod(kRoleMapPath, 0640), 0);
  EXPECT_TRUE(test::EndsAfter([] { (void)PXTOpenRolemapFile(); }));
  u32 rights = 77;
  EXPECT_TRUE(test::EndsAfter([&rights] { rights = PXTGetRightsUsingRolemap(); }));
  EXPECT_EQ(rights, 0x3U);
}

}  // namespace
}  // namespace qvx
