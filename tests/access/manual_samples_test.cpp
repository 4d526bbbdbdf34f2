// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The sample of the page qvxrolemap(5), as the library reads it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "qvxcs/access.h"

#include "frame/module.h"
#include "support/manual_sample.h"
#include "tests/access/accounts.h"

QVX_MANUAL_SAMPLE(RoleMapSample, "qvxrolemap")

namespace qvx {
namespace {

constexpr gid_t kUsers = 7100;
constexpr gid_t kOperators = 7200;

u32 RightsOf(const std::u16string& name) {
  std::vector<ustring> units(name.begin(), name.end());
  units.push_back(0);
  return PXTAuthorizeUser(nullptr, units.data());
}

// The sample applies on a machine in this domain.
void Load(const char* domain) {
  test::OnlyRoot();
  test::AddGroup("users", kUsers);
  test::AddGroup("operators", kOperators, "carol,trainee");
  test::AddUser("alice", 7001, kUsers);
  test::AddUser("bob", 7002, kUsers);
  test::AddUser("carol", 7003, kUsers);
  test::AddUser("trainee", 7004, kUsers);
  test::AddUser("dave", 7005, kUsers);
  ASSERT_EQ(setdomainname(domain, std::string(domain).size()), 0);
  ASSERT_EQ(ModuleAttach(), 1);
  test::WriteRoleMap(RoleMapSample());
  ASSERT_EQ(PXTOpenRolemapFile(), 0u);
  ASSERT_EQ(PXTGetRightsUsingRolemap(), 7u) << "root";
}

TEST(ManualRoleMap, SampleHasNoFault) {
  Load("lab");
  EXPECT_FALSE(test::Exists(test::kCommandLog) &&
               test::ReadFile(test::kCommandLog).find("QVXSERVER") != std::string::npos);
}

TEST(ManualRoleMap, RootAndAliceAdminister) {
  Load("example");
  EXPECT_EQ(RightsOf(u"root"), u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR});
  EXPECT_EQ(RightsOf(u"alice"), 7u);
}

TEST(ManualRoleMap, BobIsAPowerUserInTheDomainLab) {
  Load("lab");
  EXPECT_EQ(RightsOf(u"bob"), 3u);
}

TEST(ManualRoleMap, BobIsAUserElsewhere) {
  Load("example");
  EXPECT_EQ(RightsOf(u"bob"), 1u);
}

TEST(ManualRoleMap, OperatorsArePowerUsersButForTheTraineeWhoseOwnLineComesFirst) {
  Load("example");
  EXPECT_EQ(RightsOf(u"carol"), 3u);
  EXPECT_EQ(RightsOf(u"trainee"), 1u);
}

TEST(ManualRoleMap, AnyoneElseIsAUser) {
  Load("example");
  EXPECT_EQ(RightsOf(u"dave"), 1u);
}

}  // namespace
}  // namespace qvx
