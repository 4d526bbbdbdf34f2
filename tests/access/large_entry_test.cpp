// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// An account or a group whose entry is larger than the largest room offered for one.
#include <gtest/gtest.h>

#include <string>

#include "access/account.h"
#include "access/os_privilege.h"
#include "support/alloc_fault.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

TEST(LargeEntry, AnAccountBeyondTheRoomIsNotFound) {
  test::OnlyRoot();
  test::AppendTo("/etc/passwd",
                 "alice:x:0:0:" + std::string(kMaxEntryRoom, 'x') + ":/tmp:/bin/sh\n");
  Account account = {7, 8};
  EXPECT_FALSE(FindAccount("alice", &account));
  EXPECT_EQ(account.user, 7u);
  EXPECT_EQ(account.group, 8u);
  EXPECT_EQ(GetOSPrivilege("alice"), 0u);
  EXPECT_EQ(isuserroot("alice"), -1);
}

TEST(LargeEntry, GroupsAreCountedUpToOneBeyondTheRoom) {
  test::OnlyRoot();
  test::AddGroup("before", 7010, "alice");
  test::AddGroup("beyond", 7011, "alice," + std::string(kMaxEntryRoom, 'x'));
  test::AddGroup("behind", 7012, "alice");
  u32 groups[4] = {1, 1, 1, 1};
  EXPECT_EQ(getugroups(4, groups, "alice"), 1u);
  EXPECT_EQ(groups[0], 7010u);
  EXPECT_EQ(groups[1], 1u);
  EXPECT_FALSE(NameOfGroup(7011));
}

TEST(LargeEntry, WithoutMemoryForARoomNoGroupIsCounted) {
  test::OnlyRoot();
  test::AddGroup("users", 7010, "alice");
  ASSERT_EQ(getugroups(0, nullptr, "alice"), 1u);
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(getugroups(0, nullptr, "alice"), 0u);
  EXPECT_TRUE(test::FailNthAllocation::Fired());
}

}  // namespace
}  // namespace qvx
