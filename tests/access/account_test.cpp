// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/account.h"

#include <gtest/gtest.h>

#include "tests/access/accounts.h"

namespace qvx {
namespace {

TEST(Account, FindsAUserAndItsPrimaryGroup) {
  test::OnlyRoot();
  test::AddUser("alice", 7001, 7002);
  Account account{};
  ASSERT_TRUE(FindAccount("alice", &account));
  EXPECT_EQ(account.user, 7001u);
  EXPECT_EQ(account.group, 7002u);
  EXPECT_FALSE(FindAccount("Alice", &account));
  EXPECT_FALSE(FindAccount("", &account));
}

TEST(Account, NamesUsersAndGroups) {
  test::OnlyRoot();
  test::AddUser("alice", 7001, 7002);
  test::AddGroup("wheel", 7003);
  ASSERT_TRUE(NameOfUser(7001));
  EXPECT_STREQ(NameOfUser(7001).get(), "alice");
  EXPECT_FALSE(NameOfUser(7002));
  ASSERT_TRUE(NameOfGroup(7003));
  EXPECT_STREQ(NameOfGroup(7003).get(), "wheel");
  EXPECT_FALSE(NameOfGroup(7002));
}

TEST(Account, AnEntryOfManyMembersIsReadWhole) {
  test::OnlyRoot();
  std::string members = "alice";
  for (int at = 0; at < 2000; ++at)
    members += ",member" + std::to_string(at);
  test::AddGroup("crowd", 7010, members);
  ASSERT_TRUE(NameOfGroup(7010));
  EXPECT_STREQ(NameOfGroup(7010).get(), "crowd");
}

}  // namespace
}  // namespace qvx
