// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// What a login queries from the system: only what can still change its result.
#include <dlfcn.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <ifaddrs.h>
#include <pwd.h>
#include <unistd.h>

#include <string>

#include "qvxcs/access.h"

#include "access/user_rights.h"
#include "frame/module.h"
#include "support/kill_at_stop.h"
#include "tests/access/accounts.h"

namespace {

struct Asked {
  int accounts = 0;
  int groupLists = 0;
  int groupNames = 0;
  int groupsByName = 0;
  int addresses = 0;
  int domains = 0;
  bool operator==(const Asked&) const = default;
};
Asked asked;

template <typename Call>
Call* TheSystems(const char* name) {
  return reinterpret_cast<Call*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// Each replaces the C library's function and counts its calls.
extern "C" {
int getpwnam_r(const char* name, passwd* entry, char* room, size_t size, passwd** found) {
  ++asked.accounts;
  return TheSystems<decltype(getpwnam_r)>("getpwnam_r")(name, entry, room, size, found);
}
int getgrouplist(const char* user, gid_t group, gid_t* groups, int* count) {
  ++asked.groupLists;
  return TheSystems<decltype(getgrouplist)>("getgrouplist")(user, group, groups, count);
}
int getgrgid_r(gid_t id, group* entry, char* room, size_t size, group** found) {
  ++asked.groupNames;
  return TheSystems<decltype(getgrgid_r)>("getgrgid_r")(id, entry, room, size, found);
}
int getgrnam_r(const char* name, group* entry, char* room, size_t size, group** found) {
  ++asked.groupsByName;
  return TheSystems<decltype(getgrnam_r)>("getgrnam_r")(name, entry, room, size, found);
}
int getifaddrs(ifaddrs** list) noexcept {
  ++asked.addresses;
  return TheSystems<int(ifaddrs**)>("getifaddrs")(list);
}
int getdomainname(char* name, size_t size) noexcept {
  ++asked.domains;
  return TheSystems<int(char*, size_t)>("getdomainname")(name, size);
}
// The same where a hardened build knows the room.
int __getdomainname_chk(char* name, size_t size, size_t room) noexcept {
  ++asked.domains;
  return TheSystems<int(char*, size_t, size_t)>("__getdomainname_chk")(name, size, room);
}
}

namespace qvx {
namespace {

u32 RightsOf(std::string login) { return get_user_rights(login.data()); }

// What the user's login queries, with these lines in force; it must return these rights.
Asked AskedFor(const std::string& user, u32 rights) {
  asked = {};
  EXPECT_EQ(RightsOf(user), rights) << user;
  return asked;
}

void Load(const std::string& roleMap) {
  test::WriteRoleMap(roleMap);
  (void)PXTOpenRolemapFile();
  (void)PXTGetRightsUsingRolemap();
}

class AskedOfTheSystem : public testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::AddUser("alice", 7001, 7100);
    test::AddGroup("users", 7100);
    test::AddGroup("wheel", 7101, "alice");
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(AskedOfTheSystem, OfTheSuperuserOnlyTheAccount) {
  EXPECT_EQ(AskedFor("root", u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR}), (Asked{.accounts = 1}))
      << "by the built-in lines";
  Load("root 192.0.2.7,*.lab user\n+wheel 192.0.2.7 user\n* 192.0.2.7 user\n");
  EXPECT_EQ(AskedFor("root", u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR}), (Asked{.accounts = 1}));
}

TEST_F(AskedOfTheSystem, OfAUserWithALineTheGroupsOnlyWhereGroup0CanRaiseTheLine) {
  Load("alice * user\n+wheel * administrator\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_USER), (Asked{.accounts = 1, .groupLists = 1}));
}

TEST_F(AskedOfTheSystem, OfAUserWithAPowerUsersLineNoGroups) {
  Load("alice * poweruser\n+wheel * administrator\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER), (Asked{.accounts = 1}));
}

TEST_F(AskedOfTheSystem, OfAUserWithoutALineTheNamesOfTheGroups) {
  Load("+wheel * poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER),
            (Asked{.accounts = 1, .groupLists = 1, .groupNames = 2}));
}

TEST_F(AskedOfTheSystem, NoGroupsWhereTheMapNamesNone) {
  Load("* * poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER), (Asked{.accounts = 1}));
}

TEST_F(AskedOfTheSystem, NoGroupsWhereTheirLinesAreForOtherHosts) {
  Load("+wheel elsewhere administrator\n* * poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER), (Asked{.accounts = 1}));
}

TEST_F(AskedOfTheSystem, NoMoreNamesOnceTheGreatestGrantIsReached) {
  Load("+users * poweruser\n+audit * user\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER),
            (Asked{.accounts = 1, .groupLists = 1, .groupNames = 1}));
}

TEST_F(AskedOfTheSystem, TheGroupListIsAskedForOnceForMapAndSystem) {
  Load("+wheel * user\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_USER),
            (Asked{.accounts = 1, .groupLists = 1, .groupNames = 2}));
}

TEST_F(AskedOfTheSystem, TheAddressesOnlyWhereAnEntryIsOne) {
  Load("alice 999,1.2.3,a:b,srv1,* poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER), (Asked{.accounts = 1}));
  Load("bob 192.0.2.7 user\n* srv:1,* poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER), (Asked{.accounts = 1}));
}

TEST_F(AskedOfTheSystem, TheAddressesOnceForAUsersEntry) {
  Load("alice 192.0.2.7,192.0.2.8,::7,* poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER), (Asked{.accounts = 1, .addresses = 1}));
}

TEST_F(AskedOfTheSystem, TheAddressesOnceForAnEntryOfAnyone) {
  Load("* 2001:db8::7,* poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER), (Asked{.accounts = 1, .addresses = 1}));
}

TEST_F(AskedOfTheSystem, TheDomainOnlyWhereAnEntryIsOne) {
  Load("alice *.lab,* poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER), (Asked{.accounts = 1, .domains = 1}));
}

// A user with this many groups is looked up only in the few that the map names, and found at once.
TEST_F(AskedOfTheSystem, OfHundredsOfGroupsOnlyTheOneThatTheMapNames) {
  for (u32 at = 0; at < 120; ++at)
    test::AddGroup("g" + std::to_string(at), 8000 + at, "alice");
  Load("+g119 * poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER),
            (Asked{.accounts = 1, .groupLists = 2, .groupNames = 1, .groupsByName = 1}));
}

// Two groups of one name: the system finds the first by the name, the user is in the second.
TEST_F(AskedOfTheSystem, OfHundredsOfGroupsASecondGroupOfTheNameIsFoundToo) {
  test::AddGroup("twice", 7998);
  for (u32 at = 0; at < 60; ++at)
    test::AddGroup("g" + std::to_string(at), 8000 + at, "alice");
  test::AddGroup("twice", 7999, "alice");
  Load("+twice * poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER).groupsByName, 1);
}

// A group has two names: the system returns the first, so the second grants nothing.
TEST_F(AskedOfTheSystem, OfHundredsOfGroupsASecondNameOfAGroupIsNone) {
  for (u32 at = 0; at < 60; ++at)
    test::AddGroup("g" + std::to_string(at), 8000 + at, "alice");
  test::AddGroup("second", 8000);
  Load("+second * administrator\n* * poweruser\n");
  EXPECT_EQ(AskedFor("alice", QVX_PRIV_POWERUSER).groupsByName, 1);
}

u32 StopsOf(u32 logins) {
  u32 stops = 0;
  const auto body = [logins] {
    for (u32 at = 0; at < logins; ++at)
      (void)RightsOf("root");
    return 0;
  };
  EXPECT_EQ(test::RunStepwise(body, [&stops] { return ++stops != 0; }), 0);
  return stops;
}

// A traced process stops before and after each system call.
u32 CallsOfALogin() { return (StopsOf(4) - StopsOf(3)) / 2; }

TEST_F(AskedOfTheSystem, ALoginOfRootTakesAtMostTwelveSystemCalls) {
  EXPECT_LE(CallsOfALogin(), 12u) << "by the built-in lines";
  std::string lines;
  for (u32 at = 0; at < 10000; ++at) {
    const std::string number = std::to_string(at);
    lines += "user" + number + ",+group" + number + " srv" + number + " poweruser\n";
  }
  Load(lines);
  EXPECT_LE(CallsOfALogin(), 12u) << "by 10,000 lines";
}

}  // namespace
}  // namespace qvx
