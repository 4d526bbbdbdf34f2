// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/auth_file_record.h"

#include <gtest/gtest.h>

#include <clocale>
#include <vector>

#include "qvxcs/access.h"

#include "access/role_map_error.h"

namespace qvx {
namespace {

struct Entry {
  std::wstring user;
  std::wstring host;
  u32 privileges;
  bool operator==(const Entry&) const = default;
};
using Entries = std::vector<Entry>;

Entries EntriesOf(const std::wstring& line) {
  QVAuthFileRecord record(line, 1);
  record.PopulateQVXRoles();
  std::deque<QVXRole*> roles;
  record.GetRoles(roles);
  Entries entries;
  for (const QVXRole* role : roles)
    entries.push_back({role->user, role->host, role->privileges});
  return entries;
}

// The fault's code; 0 for a line that parses.
int FaultOf(const std::wstring& line, unsigned long expectedLine = 23) {
  QVAuthFileRecord record(line, static_cast<s32>(expectedLine));
  try {
    record.PopulateQVXRoles();
  } catch (const QVXRoleMapFileReaderException& fault) {
    EXPECT_EQ(fault.GetLineNumber(), expectedLine);
    return fault.getErrorCode();
  }
  return 0;
}

TEST(AuthFileRecord, PairsEachUserWithEachHostUserByUser) {
  EXPECT_EQ(EntriesOf(L"root,+wheel   *.lab,srv1  PowerUser"),
            (Entries{{L"root", L"*.lab", QVX_PRIV_POWERUSER},
                     {L"root", L"srv1", QVX_PRIV_POWERUSER},
                     {L"+wheel", L"*.lab", QVX_PRIV_POWERUSER},
                     {L"+wheel", L"srv1", QVX_PRIV_POWERUSER}}));
}

TEST(AuthFileRecord, RoleWordsGiveTheirMasksInAnyCase) {
  EXPECT_EQ(EntriesOf(L"a * administrator"), (Entries{{L"a", L"*", QVX_PRIV_ADMINISTRATOR}}));
  EXPECT_EQ(EntriesOf(L"a * poweruser"), (Entries{{L"a", L"*", QVX_PRIV_POWERUSER}}));
  EXPECT_EQ(EntriesOf(L"a * user"), (Entries{{L"a", L"*", QVX_PRIV_USER}}));
  EXPECT_EQ(EntriesOf(L"ROOT * ADMINISTRATOR"), (Entries{{L"ROOT", L"*", QVX_PRIV_ADMINISTRATOR}}));
  EXPECT_EQ(EntriesOf(L"a * UsEr"), (Entries{{L"a", L"*", QVX_PRIV_USER}}));
}

TEST(AuthFileRecord, FewerThanThreeFieldsIsAMissingField) {
  EXPECT_EQ(FaultOf(L"root *"), RoleMissingField);
  EXPECT_EQ(FaultOf(L"root"), RoleMissingField);
  EXPECT_EQ(FaultOf(L""), RoleMissingField);
  EXPECT_EQ(FaultOf(L" \t "), RoleMissingField);
  EXPECT_EQ(FaultOf(L"root * "), RoleMissingField);
}

TEST(AuthFileRecord, AnotherThirdWordIsAnInvalidRole) {
  EXPECT_EQ(FaultOf(L"root * admin"), RoleInvalidRole);
  EXPECT_EQ(FaultOf(L"root * users"), RoleInvalidRole);
  EXPECT_EQ(FaultOf(L"root * user,poweruser"), RoleInvalidRole);
  EXPECT_EQ(FaultOf(L"root * user#"), RoleInvalidRole);
}

TEST(AuthFileRecord, ACarriageReturnIsPartOfTheRoleWord) {
  EXPECT_EQ(FaultOf(L"root * user\r"), RoleInvalidRole);
}

TEST(AuthFileRecord, TheFaultIsSeenBeforeAnyEntryIsMade) {
  QVAuthFileRecord record(L"a,b h admin", 4);
  EXPECT_THROW(record.PopulateQVXRoles(), QVXRoleMapFileReaderException);
  std::deque<QVXRole*> roles;
  record.GetRoles(roles);
  EXPECT_TRUE(roles.empty());
}

TEST(AuthFileRecord, WhatFollowsTheRoleIsNotRead) {
  EXPECT_EQ(EntriesOf(L"root * user extra words"), (Entries{{L"root", L"*", QVX_PRIV_USER}}));
  EXPECT_EQ(EntriesOf(L"root * user\t# note"), (Entries{{L"root", L"*", QVX_PRIV_USER}}));
}

TEST(AuthFileRecord, AdjacentCommasKeepTheEmptyNameBetweenThem) {
  EXPECT_EQ(EntriesOf(L"a,,b * user"), (Entries{{L"a", L"*", QVX_PRIV_USER},
                                                {L"", L"*", QVX_PRIV_USER},
                                                {L"b", L"*", QVX_PRIV_USER}}));
  EXPECT_EQ(EntriesOf(L",a h, user"), (Entries{{L"", L"h", QVX_PRIV_USER},
                                               {L"", L"", QVX_PRIV_USER},
                                               {L"a", L"h", QVX_PRIV_USER},
                                               {L"a", L"", QVX_PRIV_USER}}));
}

TEST(AuthFileRecord, SeveralBlanksOfBothKindsAreOneSeparator) {
  EXPECT_EQ(EntriesOf(L"a \t \tb\t\t  user"), (Entries{{L"a", L"b", QVX_PRIV_USER}}));
}

TEST(AuthFileRecord, RoleWordsAreFoldedFromAToZWhateverTheLocale) {
  for (const char* locale : {"tr_TR.UTF-8", "az_AZ.UTF-8", "tr_TR.ISO-8859-9", "C"}) {
    ASSERT_NE(setlocale(LC_ALL, locale), nullptr) << locale;
    EXPECT_EQ(EntriesOf(L"root * ADMINISTRATOR"),
              (Entries{{L"root", L"*", QVX_PRIV_ADMINISTRATOR}}))
        << locale;
    EXPECT_EQ(EntriesOf(L"root * PowerUser"), (Entries{{L"root", L"*", QVX_PRIV_POWERUSER}}))
        << locale;
    EXPECT_EQ(FaultOf(L"root * adm\u0131n\u0131strator"), RoleInvalidRole) << locale;
  }
}

TEST(AuthFileRecord, HostsAreFoldedByTheTableOfTheLocale) {
  ASSERT_NE(setlocale(LC_ALL, "tr_TR.ISO-8859-9"), nullptr);
  EXPECT_EQ(EntriesOf(L"root SRVI user"), (Entries{{L"root", L"srv\u00FD", QVX_PRIV_USER}}));
  ASSERT_NE(setlocale(LC_ALL, "C"), nullptr);
  EXPECT_EQ(EntriesOf(L"root SRVI user"), (Entries{{L"root", L"srvi", QVX_PRIV_USER}}));
}

TEST(AuthFileRecord, HostsBecomeLowerCaseUsersDoNot) {
  EXPECT_EQ(EntriesOf(L"Alice,+Wheel SRV1,*.Example user"),
            (Entries{{L"Alice", L"srv1", QVX_PRIV_USER},
                     {L"Alice", L"*.example", QVX_PRIV_USER},
                     {L"+Wheel", L"srv1", QVX_PRIV_USER},
                     {L"+Wheel", L"*.example", QVX_PRIV_USER}}));
}

TEST(AuthFileRecord, NamesWithDomainsAreOrdinaryNames) {
  EXPECT_EQ(EntriesOf(L"u@d,D\\v * user"),
            (Entries{{L"u@d", L"*", QVX_PRIV_USER}, {L"D\\v", L"*", QVX_PRIV_USER}}));
}

TEST(AuthFileRecord, ARoleBeginsEmptyAndWithoutPrivileges) {
  const QVXRole role;
  EXPECT_EQ(role.user, L"");
  EXPECT_EQ(role.host, L"");
  EXPECT_EQ(role.privileges, 0u);
}

TEST(AuthFileRecord, GetRolesReplacesWhatTheQueueHeld) {
  QVAuthFileRecord record(L"a b user", 9);
  record.PopulateQVXRoles();
  std::deque<QVXRole*> roles(3, nullptr);
  record.GetRoles(roles);
  EXPECT_EQ(roles.size(), 1u);
  EXPECT_EQ(record.GetLineNumber(), 9);
}

TEST(AuthFileRecord, TrimsLeftRightOrBothOfSpacesAndTabsOnly) {
  EXPECT_EQ(TrimWhitespace(L" \ta b\t ", TrimMode::kLeft), L"a b\t ");
  EXPECT_EQ(TrimWhitespace(L" \ta b\t ", TrimMode::kRight), L" \ta b");
  EXPECT_EQ(TrimWhitespace(L" \ta b\t ", TrimMode::kBoth), L"a b");
  for (const TrimMode mode : {TrimMode::kLeft, TrimMode::kRight, TrimMode::kBoth}) {
    EXPECT_EQ(TrimWhitespace(L" \t ", mode), L"");
    EXPECT_EQ(TrimWhitespace(L"", mode), L"");
    EXPECT_EQ(TrimWhitespace(L"\ra\v", mode), L"\ra\v");
  }
}

TEST(AuthFileRecord, LowerCaseLeavesCharactersBeyondSevenBits) {
  EXPECT_EQ(LowerCase(L"SRV-1\u00C9\u212A"), L"srv-1\u00C9\u212A");
}

}  // namespace
}  // namespace qvx
