// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/os_privilege.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

#include "qvxcs/access.h"

#include "access/role.h"
#include "base/heap.h"
#include "support/alloc_fault.h"
#include "support/processes.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

// OSGetProcessRights of a process with these identities: its levels as 0 to 7, plus 100 for root's
// bit.
int RightsAs(uid_t real, uid_t effective, gid_t effectiveGroup) {
  return test::InChild([=] {
    if (setresgid(1000, effectiveGroup, 1000) != 0) return 255;
    if (setresuid(real, effective, 0) != 0) return 254;
    const u32 rights = OSGetProcessRights();
    return static_cast<int>((rights & 7) + ((rights & QVX_PRIV_ROOT) != 0 ? 100 : 0) +
                            ((rights & ~u32{QVX_PRIV_ROOT | 7}) != 0 ? 50 : 0));
  });
}

TEST(OsPrivilege, ProcessRightsFollowEffectiveUserGroupAndRealUser) {
  EXPECT_EQ(RightsAs(1000, 1000, 1000), 1);
  EXPECT_EQ(RightsAs(0, 1000, 1000), 1);
  EXPECT_EQ(RightsAs(1000, 1000, 0), 3);
  EXPECT_EQ(RightsAs(0, 1000, 0), 3);
  EXPECT_EQ(RightsAs(1000, 0, 1000), 7);
  EXPECT_EQ(RightsAs(1000, 0, 0), 7);
  EXPECT_EQ(RightsAs(0, 0, 1000), 107);
  EXPECT_EQ(RightsAs(0, 0, 0), 107);
}

TEST(OsPrivilege, TheProcessUserIsTheRealUsersName) {
  test::OnlyRoot();
  test::AddUser("alice", 7001, 7001);
  EXPECT_EQ(test::InChild([] {
              if (setresuid(7001, 0, 0) != 0) return 2;
              astring* name = OSGetProcessUser();
              const bool right = name != nullptr && strcmp(name, "alice") == 0;
              free(name);
              return right ? 0 : 1;
            }),
            0);
}

TEST(OsPrivilege, AProcessUserWithoutANameIsNull) {
  test::OnlyRoot();
  EXPECT_EQ(test::InChild([] {
              if (setresuid(54321, 0, 0) != 0) return 2;
              return OSGetProcessUser() == nullptr ? 0 : 1;
            }),
            0);
}

TEST(OsPrivilege, TheProcessUserIsNullWithoutMemory) {
  test::OnlyRoot();
  const u32 met =
      test::FailEachAllocation([] { return HeapArray<astring>(OSGetProcessUser()); },
                               [](const HeapArray<astring>& name) { EXPECT_FALSE(name); });
  EXPECT_GE(met, 2u);
}

TEST(OsPrivilege, TheSystemKnowsSuperuserMembersOfGroupZeroAndOthers) {
  test::OnlyRoot();
  test::AddUser("toor", 0, 7001);
  test::AddUser("alice", 7001, 7001);
  test::AddUser("member", 7002, 7002);
  test::AddUser("primary", 7003, 0);
  test::WriteFile("/etc/group", "root:x:0:member\nstaff:x:50:alice,member\n");
  EXPECT_EQ(GetOSPrivilege("root"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(GetOSPrivilege("toor"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(GetOSPrivilege("alice"), QVX_PRIV_USER);
  EXPECT_EQ(GetOSPrivilege("member"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(GetOSPrivilege("primary"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(GetOSPrivilege("nobody-here"), QVX_PRIV_NONE);
  EXPECT_EQ(GetOSPrivilege(""), QVX_PRIV_NONE);
  EXPECT_EQ(GetOSPrivilege(nullptr), QVX_PRIV_NONE);
}

TEST(OsPrivilege, ManyGroupsAreAllSeen) {
  test::OnlyRoot();
  test::AddUser("alice", 7001, 7001);
  std::string groups;
  for (int at = 0; at < 300; ++at) {
    groups += "g" + std::to_string(at) + ":x:" + std::to_string(8000 + at) + ":alice\n";
  }
  test::WriteFile("/etc/group", groups + "root:x:0:alice\n");
  EXPECT_EQ(GetOSPrivilege("alice"), QVX_PRIV_POWERUSER);
}

// Its answers with each allocation failing in turn: the account's entry, then the group list.
std::vector<u32> PrivilegesWithoutMemory(const char* user) {
  std::vector<u32> found;
  (void)test::FailEachAllocation([user] { return GetOSPrivilege(user); },
                                 [&found](u32 privilege) { found.push_back(privilege); });
  return found;
}

TEST(OsPrivilege, WithoutMemoryForTheGroupListAMemberOfGroupZeroIsAUser) {
  test::OnlyRoot();
  test::AddUser("member", 7002, 7002);
  test::WriteFile("/etc/group", "root:x:0:member\n");
  EXPECT_EQ(PrivilegesWithoutMemory("member"), (std::vector<u32>{QVX_PRIV_NONE, QVX_PRIV_USER}));
  EXPECT_EQ(PrivilegesWithoutMemory("root"), (std::vector<u32>{QVX_PRIV_NONE}));
}

TEST(OsPrivilege, GroupsAreThoseThatListTheUserCaseKept) {
  test::OnlyRoot();
  test::AddUser("alice", 7001, 7001);
  test::WriteFile("/etc/group", "alice:x:7001:\na:x:11:bob,alice\nb:x:12:Alice\nc:x:13:alice\n");
  EXPECT_EQ(getugroups(0, nullptr, "alice"), 2u);
  u32 groups[3] = {99, 99, 99};
  EXPECT_EQ(getugroups(3, groups, "alice"), 2u);
  EXPECT_EQ(groups[0], 11u);
  EXPECT_EQ(groups[1], 13u);
  EXPECT_EQ(groups[2], 99u);
}

TEST(OsPrivilege, GroupsBeyondTheRoomAreNotStored) {
  test::OnlyRoot();
  test::WriteFile("/etc/group", "a:x:11:alice\nb:x:12:alice\nc:x:13:alice\n");
  u32 groups[3] = {99, 99, 99};
  EXPECT_EQ(getugroups(2, groups, "alice"), 2u);
  EXPECT_EQ(groups[1], 12u);
  EXPECT_EQ(groups[2], 99u);
}

TEST(OsPrivilege, AGroupThatListsTheUserTwiceCountsTwice) {
  test::OnlyRoot();
  test::WriteFile("/etc/group", "a:x:11:alice,alice\n");
  EXPECT_EQ(getugroups(0, nullptr, "alice"), 2u);
}

TEST(OsPrivilege, GroupsOfNobodyAndWithoutRoomAreNone) {
  EXPECT_EQ(getugroups(0, nullptr, nullptr), 0u);
  EXPECT_EQ(getugroups(3, nullptr, "root"), 0u);
}

TEST(OsPrivilege, AGroupOfManyMembersIsWalkedWhole) {
  test::OnlyRoot();
  std::string members = "member";
  for (int at = 0; at < 3000; ++at)
    members += ",member" + std::to_string(at);
  test::WriteFile("/etc/group", "crowd:x:11:" + members + ",alice\nb:x:12:alice\n");
  u32 groups[2] = {};
  EXPECT_EQ(getugroups(2, groups, "alice"), 2u);
  EXPECT_EQ(groups[0], 11u);
  EXPECT_EQ(groups[1], 12u);
}

TEST(OsPrivilege, OnlyUserZeroIsRoot) {
  test::OnlyRoot();
  test::AddUser("toor", 0, 7001);
  test::AddUser("alice", 7001, 0);
  EXPECT_EQ(isuserroot("root"), 0);
  EXPECT_EQ(isuserroot("toor"), 0);
  EXPECT_EQ(isuserroot("alice"), -1);
  EXPECT_EQ(isuserroot("missing"), -1);
  EXPECT_EQ(isuserroot(nullptr), -1);
}

}  // namespace
}  // namespace qvx
