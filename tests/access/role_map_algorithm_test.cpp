// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_algorithm.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <memory>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "qvxcs/access.h"

#include "access/role_map_error.h"
#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/threads.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

// Records of the lines, numbered from 1.
class Records {
 public:
  explicit Records(const std::vector<std::wstring>& lines) {
    for (const std::wstring& line : lines) {
      owned_.push_back(std::make_unique<QVAuthFileRecord>(line, static_cast<s32>(list.size()) + 1));
      owned_.back()->PopulateQVXRoles();
      list.push_back(owned_.back().get());
    }
  }
  std::deque<QVAuthFileRecord*> list;

 private:
  std::vector<std::unique_ptr<QVAuthFileRecord>> owned_;
};

QVXRoleMapAlgorithm& Algorithm() { return QVXRoleMapAlgorithm::GetInstance(); }

void Build(const std::vector<std::wstring>& lines) {
  Algorithm().ForgetInitialized();
  Algorithm().Initialize(Records(lines).list);
}

u32 Ask(const std::wstring& user, const std::wstring& host) {
  QVXRole query{user, host, 0x55};
  Algorithm().GetUserPrivileges(query);
  return query.privileges;
}

u32 Grant(const std::vector<std::wstring>& lines, const std::wstring& user,
          const std::wstring& host = L"srv1") {
  Build(lines);
  return Ask(user, host);
}

// The line of a conflict; 0 without one.
unsigned long ConflictLine(const std::vector<std::wstring>& lines) {
  try {
    Build(lines);
  } catch (const QVXRoleMapFileReaderException& fault) {
    EXPECT_EQ(fault.getErrorCode(), RoleConflict);
    return fault.GetLineNumber();
  }
  return 0;
}

// alice is in the groups users (primary), wheel and audit; bob only in users.
class RoleMapAlgorithm : public ::testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::AddUser("alice", 7001, 7100);
    test::AddUser("bob", 7002, 7100);
    test::AddGroup("users", 7100);
    test::AddGroup("wheel", 7101, "alice");
    test::AddGroup("audit", 7102, "alice");
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

TEST_F(RoleMapAlgorithm, APersonalEntryBeatsAGreaterGroupEntry) {
  EXPECT_EQ(Grant({L"alice * user", L"+wheel * administrator", L"* * administrator"}, L"alice"),
            QVX_PRIV_USER);
}

TEST_F(RoleMapAlgorithm, APersonalEntryForAnotherHostLeavesTheGroups) {
  EXPECT_EQ(Grant({L"alice otherhost user", L"+wheel * administrator"}, L"alice"),
            QVX_PRIV_ADMINISTRATOR);
}

TEST_F(RoleMapAlgorithm, AUserEntryForThePlainHostNameGrantsNothing) {
  EXPECT_EQ(Grant({L"alice srv1 administrator"}, L"alice", L"srv1"), QVX_PRIV_NONE);
  EXPECT_EQ(Grant({L"+wheel srv1 administrator"}, L"alice", L"srv1"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant({L"* srv1 administrator"}, L"alice", L"srv1"), QVX_PRIV_ADMINISTRATOR);
}

TEST_F(RoleMapAlgorithm, ADomainPatternThatBearsTheHostDecides) {
  EXPECT_EQ(Grant({L"alice *.srv1 administrator"}, L"alice", L"srv1"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant({L"alice a*.srv1.x administrator"}, L"alice", L"srv1"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant({L"alice *srv1. administrator"}, L"alice", L"srv1"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, TheFirstPatternInOrderDecidesNotTheGreatest) {
  EXPECT_EQ(Grant({L"alice *.a.srv1 user", L"alice *.b.srv1 administrator"}, L"alice", L"srv1"),
            QVX_PRIV_USER);
}

TEST_F(RoleMapAlgorithm, APatternBeatsTheDomainKeyAndTheWildcard) {
  EXPECT_EQ(Grant({L"alice *.srv1 user", L"alice *.example,* administrator"}, L"alice", L"srv1"),
            QVX_PRIV_USER);
}

TEST_F(RoleMapAlgorithm, TheComputersDomainIsAKeyOfTheUserPhase) {
  EXPECT_EQ(Grant({L"alice *.example administrator"}, L"alice", L"srv1"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant({L"alice *.example poweruser", L"alice * administrator"}, L"alice", L"srv1"),
            QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"alice *.example.org administrator"}, L"alice", L"srv1"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, TheDomainKeyIsLowerCase) {
  ASSERT_EQ(setdomainname("EXAMPLE.Org", 11), 0);
  EXPECT_EQ(Grant({L"alice *.Example.ORG administrator"}, L"alice", L"srv1"),
            QVX_PRIV_ADMINISTRATOR);
}

TEST_F(RoleMapAlgorithm, WithoutADomainNameTheKeyIsTheBarePrefix) {
  ASSERT_EQ(setdomainname("(none)", 6), 0);
  EXPECT_EQ(Grant({L"alice *. administrator"}, L"alice", L"srv1"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant({L"* *. poweruser"}, L"alice", L"srv1"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"alice *.example administrator"}, L"alice", L"srv1"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, TheWildcardComesLastInTheUserPhase) {
  EXPECT_EQ(Grant({L"alice * poweruser"}, L"alice"), QVX_PRIV_POWERUSER);
}

TEST_F(RoleMapAlgorithm, TheEmptyHostIsInEveryDomainPattern) {
  EXPECT_EQ(Grant({L"alice *.elsewhere poweruser"}, L"alice", L""), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"alice *.elsewhere poweruser"}, L"alice", L"srv1"), QVX_PRIV_NONE);
  EXPECT_EQ(Grant({L"+wheel *.elsewhere poweruser"}, L"alice", L""), QVX_PRIV_POWERUSER);
}

TEST_F(RoleMapAlgorithm, UserNamesKeepTheirCase) {
  EXPECT_EQ(Grant({L"Alice * administrator"}, L"alice"), QVX_PRIV_NONE);
  EXPECT_EQ(Grant({L"Alice * administrator"}, L"Alice"), QVX_PRIV_ADMINISTRATOR);
}

TEST_F(RoleMapAlgorithm, AUserNamedLikeAGroupOrLikeAnyoneIsNeither) {
  EXPECT_EQ(Grant({L"+wheel * administrator"}, L"+wheel"), QVX_PRIV_NONE);
  EXPECT_EQ(Grant({L"+wheel * administrator", L"* * user"}, L"+wheel"), QVX_PRIV_USER);
  EXPECT_EQ(Grant({L"* h administrator"}, L"*"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, GroupGrantsCombineByMaximum) {
  EXPECT_EQ(Grant({L"+wheel * user", L"+audit * poweruser"}, L"alice"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"+wheel * poweruser", L"+audit * user"}, L"alice"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"+wheel *.srv1 user", L"+wheel srv1 poweruser", L"+wheel * administrator"},
                  L"alice", L"srv1"),
            QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant({L"+wheel *.srv1 administrator", L"+wheel srv1 poweruser", L"+wheel * user"},
                  L"alice", L"srv1"),
            QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant({L"+wheel *.srv1 user", L"+wheel srv1 administrator", L"+wheel * poweruser"},
                  L"alice", L"srv1"),
            QVX_PRIV_ADMINISTRATOR);
}

TEST_F(RoleMapAlgorithm, TheDomainKeyIsNoKeyOfTheGroupPhase) {
  EXPECT_EQ(Grant({L"+wheel *.example administrator"}, L"alice", L"srv1"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, ThePrimaryGroupCounts) {
  EXPECT_EQ(Grant({L"+users * poweruser"}, L"bob"), QVX_PRIV_POWERUSER);
}

TEST_F(RoleMapAlgorithm, GroupsOfOthersAndUnknownGroupsGrantNothing) {
  EXPECT_EQ(Grant({L"+wheel * administrator"}, L"bob"), QVX_PRIV_NONE);
  EXPECT_EQ(Grant({L"+nogroup * administrator"}, L"alice"), QVX_PRIV_NONE);
  EXPECT_EQ(Grant({L"+Wheel * administrator"}, L"alice"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, AGroupGrantBeatsTheAnyUserEntries) {
  EXPECT_EQ(Grant({L"+wheel * user", L"* * administrator"}, L"alice"), QVX_PRIV_USER);
  EXPECT_EQ(Grant({L"+wheel otherhost user", L"* * administrator"}, L"alice"),
            QVX_PRIV_ADMINISTRATOR);
}

TEST_F(RoleMapAlgorithm, MoreThanAHundredGroupsAreAllSeen) {
  for (u32 at = 0; at < 150; ++at)
    test::AddGroup("g" + std::to_string(at), 8000 + at, "alice");
  EXPECT_EQ(Grant({L"+g149 * administrator"}, L"alice"), QVX_PRIV_ADMINISTRATOR);
}

// alice's rights with each allocation failing in turn; kThrown where the query was abandoned.
constexpr u32 kThrown = 99;
std::vector<u32> RightsWithoutMemory(const std::vector<std::wstring>& lines) {
  Build(lines);
  std::vector<u32> rights;
  QVXRole query{L"alice", L"srv1", 0x55};
  (void)test::FailEachAllocation(
      [&query] {
        try {
          Algorithm().GetUserPrivileges(query);
        } catch (const std::bad_alloc&) {
          return kThrown;
        }
        return query.privileges;
      },
      [&rights](u32 found) { rights.push_back(found); });
  return rights;
}

// The account's entry, the list, and the entry and the name of the one group that counts.
TEST_F(RoleMapAlgorithm, WithoutMemoryForTheGroupListOnlyTheAnyUserEntriesCount) {
  const std::vector<u32> rights = RightsWithoutMemory({L"+wheel * user", L"* * administrator"});
  EXPECT_EQ(std::count(rights.begin(), rights.end(), QVX_PRIV_ADMINISTRATOR), 4);
  EXPECT_GE(std::count(rights.begin(), rights.end(), QVX_PRIV_USER), 2)
      << "the other group's entry and name";
  EXPECT_GE(std::count(rights.begin(), rights.end(), kThrown), 1);
}

TEST_F(RoleMapAlgorithm, WithoutMemoryForTheGroupListAGroupGrantsNothing) {
  const std::vector<u32> rights = RightsWithoutMemory({L"+wheel * administrator"});
  EXPECT_EQ(std::count(rights.begin(), rights.end(), QVX_PRIV_NONE), 4);
  for (const u32 found : rights)
    EXPECT_TRUE(found == QVX_PRIV_NONE || found == QVX_PRIV_ADMINISTRATOR || found == kThrown)
        << found;
}

// More groups than the list's first buffer holds: the allocations for the account's entry, that
// buffer and the larger one can fail. The one group that counts is looked up twice, by name first.
TEST_F(RoleMapAlgorithm, WithoutMemoryForALongerGroupListThereAreNoGroups) {
  for (u32 at = 0; at < 98; ++at)
    test::AddGroup("g" + std::to_string(at), 8000 + at, "alice");
  const std::vector<u32> rights = RightsWithoutMemory({L"+wheel * user", L"* * administrator"});
  EXPECT_EQ(std::count(rights.begin(), rights.end(), QVX_PRIV_ADMINISTRATOR), 3);
}

TEST_F(RoleMapAlgorithm, AGroupWithoutANameIsPassedOver) {
  test::AddUser("carol", 7003, 9999);
  test::AddGroup("crew", 7103, "carol");
  EXPECT_EQ(Grant({L"+crew * poweruser"}, L"carol"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"+ * poweruser"}, L"carol"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, AGroupWhoseNameCannotBeWidenedIsPassedOver) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  test::AddUser("carol", 7003, 9999);
  test::AddGroup("cr\xFFw", 7103, "carol");
  test::AddGroup("crew", 7104, "carol");
  EXPECT_EQ(Grant({L"+cr,+cr\u00FFw,+crew * poweruser"}, L"carol"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"+cr,+cr\u00FFw * poweruser"}, L"carol"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, NamesAreWidenedByTheLocaleInForce) {
  ASSERT_NE(setlocale(LC_ALL, "en_GB.ISO-8859-1"), nullptr);
  test::AddUser("carol", 7003, 9999);
  test::AddGroup("cr\xFFw", 7103, "carol");
  EXPECT_EQ(Grant({L"+cr\u00FFw * poweruser"}, L"carol"), QVX_PRIV_POWERUSER);
}

TEST_F(RoleMapAlgorithm, AnUnknownUserHasTheAnyUserEntries) {
  EXPECT_EQ(Grant({L"+wheel * administrator", L"* * user"}, L"nobody-here"), QVX_PRIV_USER);
}

TEST_F(RoleMapAlgorithm, TheAnyUserPhaseTriesHostThenDomainThenWildcard) {
  const std::vector<std::wstring> lines = {L"* srv1 user", L"* *.example poweruser",
                                           L"* * administrator"};
  EXPECT_EQ(Grant(lines, L"bob", L"srv1"), QVX_PRIV_USER);
  EXPECT_EQ(Grant(lines, L"bob", L"srv2"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"* srv1 user", L"* * administrator"}, L"bob", L"srv2"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant({L"* srv1 user"}, L"bob", L"srv2"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, TheAnyUserPhaseKnowsNoPatterns) {
  EXPECT_EQ(Grant({L"* *.srv1 administrator"}, L"bob", L"srv1"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, DefaultRecordsGiveRootItsGroupAndOthersTheirLevels) {
  test::AddUser("member", 7003, 0);
  const std::vector<std::wstring> lines = {L"root \t* \tadministrator", L"+root \t* \tpoweruser",
                                           L"* \t* \tuser"};
  EXPECT_EQ(Grant(lines, L"root"), QVX_PRIV_ADMINISTRATOR);
  EXPECT_EQ(Grant(lines, L"member"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant(lines, L"bob"), QVX_PRIV_USER);
  EXPECT_EQ(Grant(lines, L"nobody-here"), QVX_PRIV_USER);
}

TEST_F(RoleMapAlgorithm, RepeatedGroupAndAnyUserGrantsNeverLower) {
  EXPECT_EQ(Grant({L"+wheel * user", L"+wheel * poweruser"}, L"alice"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"+wheel * poweruser", L"+wheel * user"}, L"alice"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"* * user", L"* * poweruser"}, L"bob"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"* * poweruser", L"* * user"}, L"bob"), QVX_PRIV_POWERUSER);
}

TEST_F(RoleMapAlgorithm, APlainUserGivenTheSameHostTwiceIsAConflict) {
  EXPECT_EQ(ConflictLine({L"alice h1 user", L"bob h1 user", L"alice h2,H1 poweruser"}), 3u);
  EXPECT_EQ(ConflictLine({L"bob * user", L"alice h1,h1 user"}), 2u);
  EXPECT_EQ(ConflictLine({L"alice,alice h1 user"}), 1u);
  EXPECT_EQ(ConflictLine({L"alice h1 user", L"Alice h1 user"}), 0u);
}

TEST_F(RoleMapAlgorithm, AfterAConflictTheNextRecordsReplaceEverything) {
  EXPECT_EQ(ConflictLine({L"bob * administrator", L"alice h,h user"}), 2u);
  Algorithm().Initialize(Records({L"* * user"}).list);
  EXPECT_EQ(Ask(L"bob", L"srv1"), QVX_PRIV_USER);
}

TEST_F(RoleMapAlgorithm, WhatAConflictLeftStandsUntilTheNextRecords) {
  EXPECT_EQ(ConflictLine({L"bob * administrator", L"alice h,h user"}), 2u);
  EXPECT_EQ(Ask(L"bob", L"srv1"), QVX_PRIV_ADMINISTRATOR);
}

TEST_F(RoleMapAlgorithm, OtherRecordsHaveNoEffectWhileInitialized) {
  Build({L"bob * user"});
  Algorithm().Initialize(Records({L"bob * administrator"}).list);
  EXPECT_EQ(Ask(L"bob", L"srv1"), QVX_PRIV_USER);
  Algorithm().ForgetInitialized();
  Algorithm().Initialize(Records({L"bob * administrator"}).list);
  EXPECT_EQ(Ask(L"bob", L"srv1"), QVX_PRIV_ADMINISTRATOR);
}

TEST_F(RoleMapAlgorithm, TheMapsAreBuiltUnderTheirLock) {
  const Records records({L"bob * user"});
  std::optional<ZarnSupport::ZarnCriticalSection> section(std::in_place, Algorithm());
  EXPECT_TRUE(test::WaitsFor([&records] { Algorithm().Initialize(records.list); },
                             [&section] { section.reset(); }));
  EXPECT_EQ(Ask(L"bob", L"srv1"), QVX_PRIV_USER);
}

TEST_F(RoleMapAlgorithm, ALookUpAddsNothingToTheMaps) {
  Build({L"+wheel h user"});
  EXPECT_EQ(Ask(L"alice", L"srv1"), QVX_PRIV_NONE);
  EXPECT_EQ(Ask(L"", L""), QVX_PRIV_NONE);
  EXPECT_EQ(Ask(L"alice", L"srv1"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, ANameThatCannotBeNarrowedHasNoGroups) {
  EXPECT_EQ(Grant({L"+users * administrator"}, L"\u20ACuro"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAlgorithm, AnEmptyUserNameIsAPlainUser) {
  EXPECT_EQ(Grant({L"a,,b * poweruser"}, L""), QVX_PRIV_POWERUSER);
}

class RoleMapAddresses : public RoleMapAlgorithm {
 protected:
  void SetUp() override {
    RoleMapAlgorithm::SetUp();
    test::AddLocalAddresses("192.0.2.7", "198.51.100.9");
  }
};

TEST_F(RoleMapAddresses, AnAddressOfThisMachineGrantsToItsUser) {
  EXPECT_EQ(Grant({L"alice 192.0.2.7 poweruser"}, L"alice"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"alice 192.0.2.8 poweruser"}, L"alice"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAddresses, AddressGrantsOfAUserCombineByMaximumWhateverTheOrder) {
  EXPECT_EQ(Grant({L"alice 192.0.2.7 poweruser", L"alice 198.51.100.9 user"}, L"alice"),
            QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"alice 192.0.2.7 user", L"alice 198.51.100.9 poweruser"}, L"alice"),
            QVX_PRIV_POWERUSER);
}

TEST_F(RoleMapAddresses, InTheUserPhaseAPatternBeatsAddressesWhichBeatTheDomain) {
  EXPECT_EQ(Grant({L"alice *.srv1 user", L"alice 192.0.2.7 administrator"}, L"alice"),
            QVX_PRIV_USER);
  EXPECT_EQ(Grant({L"alice 192.0.2.7 user", L"alice *.example,* administrator"}, L"alice"),
            QVX_PRIV_USER);
}

TEST_F(RoleMapAddresses, GroupsKnowNoAddresses) {
  EXPECT_EQ(Grant({L"+wheel 192.0.2.7 administrator"}, L"alice"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAddresses, InTheAnyUserPhaseTheHostBeatsAddressesWhichBeatTheDomain) {
  EXPECT_EQ(Grant({L"* srv1 user", L"* 192.0.2.7 administrator"}, L"bob", L"srv1"), QVX_PRIV_USER);
  EXPECT_EQ(Grant({L"* 192.0.2.7 user", L"* *.example,* administrator"}, L"bob"), QVX_PRIV_USER);
  EXPECT_EQ(Grant({L"* 192.0.2.7 user", L"* 198.51.100.9 poweruser"}, L"bob"), QVX_PRIV_POWERUSER);
}

TEST_F(RoleMapAddresses, AnEmptyHostNameIsNoAddress) {
  EXPECT_EQ(Grant({L"alice h, administrator"}, L"alice"), QVX_PRIV_NONE);
}

TEST_F(RoleMapAddresses, AHostKeyThatCannotBeNarrowedEqualsNoAddress) {
  EXPECT_EQ(Grant({L"alice 192.0.2.7\u20AC administrator"}, L"alice"), QVX_PRIV_NONE);
  EXPECT_EQ(Grant({std::wstring(L"alice 192.0.2.7\0x administrator", 31)}, L"alice"),
            QVX_PRIV_NONE);
}

TEST_F(RoleMapAddresses, AnIpv6AddressIsFoundInEverySpellingByTheUserPhaseOnly) {
  test::Run("echo 0 > /proc/sys/net/ipv6/conf/qvxa/disable_ipv6");
  test::Run("ip -6 addr add 2001:db8::7/64 dev qvxa nodad");
  EXPECT_EQ(Grant({L"alice 2001:DB8:0:0:0:0:0:7 poweruser"}, L"alice"), QVX_PRIV_POWERUSER);
  EXPECT_EQ(Grant({L"* 2001:db8:0:0:0:0:0:7 poweruser"}, L"bob"), QVX_PRIV_NONE);
  EXPECT_EQ(Grant({L"* 2001:db8::7 poweruser"}, L"bob"), QVX_PRIV_POWERUSER);
}

// "0" sorts before ":", so the full spelling is found first.
TEST_F(RoleMapAddresses, TheFirstOfTwoSpellingsOfAnAddressDecides) {
  test::Run("echo 0 > /proc/sys/net/ipv6/conf/qvxa/disable_ipv6");
  test::Run("ip -6 addr add 2001:db8::7/64 dev qvxa nodad");
  EXPECT_EQ(
      Grant({L"alice 2001:db8::7 administrator", L"alice 2001:db8:0:0:0:0:0:7 user"}, L"alice"),
      QVX_PRIV_USER);
}

}  // namespace
}  // namespace qvx
