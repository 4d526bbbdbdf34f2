// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/auth_file_reader.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <optional>
#include <utility>
#include <vector>

#include "qvxcs/access.h"

#include "access/role_map_algorithm.h"
#include "access/role_map_error.h"
#include "support/threads.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

using test::WriteRoleMap;
using Lines = std::vector<s32>;

QVAuthFileReader& Reader() { return QVAuthFileReader::GetInstance(); }

// The fault's code and 100 times its line; 0 without one.
template <typename Call>
u32 FaultOf(Call call) {
  try {
    call();
  } catch (const QVXRoleMapFileReaderException& fault) {
    return static_cast<u32>(fault.getErrorCode() + 100 * fault.GetLineNumber());
  }
  return 0;
}

u32 Open() {
  return FaultOf([] { Reader().Open(); });
}

u32 Read() {
  return FaultOf([] { Reader().GetRecords(); });
}

Lines LineNumbers(const std::deque<QVAuthFileRecord*>& records) {
  Lines numbers;
  for (const QVAuthFileRecord* record : records)
    numbers.push_back(record->GetLineNumber());
  return numbers;
}

QVXRole OnlyRoleOf(const QVAuthFileRecord& record) {
  std::deque<QVXRole*> roles;
  record.GetRoles(roles);
  EXPECT_EQ(roles.size(), 1u);
  return roles.empty() ? QVXRole() : *roles.front();
}

// The descriptor that is open on the role map, or -1.
int RoleMapDescriptor() {
  int found = -1;
  DIR* folder = opendir("/proc/self/fd");
  while (const dirent* entry = folder == nullptr ? nullptr : readdir(folder)) {
    char target[256] = {};
    const std::string link = std::string("/proc/self/fd/") + entry->d_name;
    if (readlink(link.c_str(), target, sizeof(target) - 1) < 0) continue;
    if (std::string(target) == test::kRoleMap) found = atoi(entry->d_name);
  }
  if (folder != nullptr) closedir(folder);
  return found;
}

TEST(AuthFileReader, AFileOfCommentsAndBlankLinesHasNoRecords) {
  WriteRoleMap("# note\n\n \t \n\t# root * administrator\n");
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), u32{RoleNoRecords});
}

TEST(AuthFileReader, AReaderOfItsOwnReadsADraftWhateverItsMode) {
  test::WriteFile("/tmp/draft", "# note\nalice * user\nbob * nobody\n");
  ASSERT_EQ(chmod("/tmp/draft", 0666), 0);
  QVAuthFileReader draft("/tmp/draft");
  EXPECT_EQ(FaultOf([&] { draft.Open(); }), u32{RoleBadPermissions});
  EXPECT_EQ(FaultOf([&] { draft.OpenDraft(); }), 0u);
  EXPECT_EQ(FaultOf([&] { draft.GetRecords(); }), 300u + RoleInvalidRole);
}

TEST(AuthFileReader, AnEmptyFileHasNoRecords) {
  WriteRoleMap("");
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), u32{RoleNoRecords});
}

TEST(AuthFileReader, RecordsCarryTheirPhysicalLine) {
  WriteRoleMap("# one\n# two\nroot * administrator\n\n  alice\t*\tuser \t\n");
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), (Lines{3, 5}));
}

TEST(AuthFileReader, ANumberSignElsewhereIsOrdinaryText) {
  WriteRoleMap("a#b * user\n");
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(OnlyRoleOf(*Reader().GetRecords().front()).user, L"a#b");
}

TEST(AuthFileReader, AMissingFileIsAFailedOpen) {
  test::RequireSandbox();
  EXPECT_EQ(Open(), u32{RoleFileOpenFailed});
  EXPECT_EQ(Read(), u32{RoleFileOpenFailed}) << "there is no stream";
}

TEST(AuthFileReader, OnlyTwoModesPass) {
  for (const mode_t mode : {0644U, 0600U, 0660U, 0666U, 0440U, 0750U, 02640U, 04640U, 0641U, 0U}) {
    WriteRoleMap("root * user\n", mode);
    EXPECT_EQ(Open(), u32{RoleBadPermissions}) << std::oct << mode;
  }
  WriteRoleMap("root * user\n", 01640);
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), 0u);
  WriteRoleMap("root * user\n", 0640, 1000001);
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), 0u);
}

TEST(AuthFileReader, ADirectoryHasBadPermissions) {
  test::RequireSandbox();
  ASSERT_EQ(mkdir(test::kRoleMap, 0640), 0);
  EXPECT_EQ(Open(), u32{RoleBadPermissions});
}

TEST(AuthFileReader, ALinkIsFollowed) {
  test::WriteFile("/tmp/map", "root * user\n");
  ASSERT_EQ(chmod("/tmp/map", 0640), 0);
  ASSERT_EQ(symlink("/tmp/map", test::kRoleMap), 0);
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), Lines{1});
}

TEST(AuthFileReader, ARefusedModeDoesNotRememberTheTime) {
  WriteRoleMap("root * user\n", 0640, 1000);
  ASSERT_EQ(Open(), 0u);
  ASSERT_EQ(Read(), 0u);
  WriteRoleMap("a * user\nb * user\n", 0600, 2000);
  ASSERT_EQ(Open(), u32{RoleBadPermissions});
  WriteRoleMap("a * user\nb * user\n", 0640, 2000);
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), (Lines{1, 2}));
}

TEST(AuthFileReader, FaultyLinesCarryTheirNumber) {
  WriteRoleMap("# one\nroot *\n");
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), RoleMissingField + 200u);
}

TEST(AuthFileReader, TheFirstFaultyLineWins) {
  WriteRoleMap("root * user\nroot * admin\nroot\n");
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), RoleInvalidRole + 200u);
}

TEST(AuthFileReader, AfterABadRoleEveryLaterOpenAndReadFindsNoRecords) {
  WriteRoleMap("root * admin\nroot * user\n");
  ASSERT_EQ(Open(), 0u);
  ASSERT_EQ(Read(), RoleInvalidRole + 100u);
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), u32{RoleNoRecords});
  WriteRoleMap("root * user\n", 0640, 2000000);
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), u32{RoleNoRecords}) << "also when the file has been corrected";
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), u32{RoleNoRecords});
}

TEST(AuthFileReader, AValidFileOpenedTwiceBeforeItIsReadIsNeverRead) {
  WriteRoleMap("root * user\n");
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), u32{RoleNoRecords});
  WriteRoleMap("root * user\n", 0640, 2000000);
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), u32{RoleNoRecords}) << "nor a later one";
}

TEST(AuthFileReader, WithoutAnOpenReadingGoesOnBehindTheFaultyLineAndCountsFromOne) {
  WriteRoleMap("# one\nroot * admin\n# three\nroot * user\n");
  ASSERT_EQ(Open(), 0u);
  ASSERT_EQ(Read(), RoleInvalidRole + 200u);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), Lines{2});
  EXPECT_EQ(RoleMapDescriptor(), -1) << "a complete read closes the file";
  WriteRoleMap("a * user\n", 0640, 2000000);
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), Lines{1}) << "and later opens work";
}

TEST(AuthFileReader, RecordsBeforeAFaultStayInTheListButAreNotLoaded) {
  WriteRoleMap("root * user\nroot * admin\n");
  ASSERT_EQ(Open(), 0u);
  ASSERT_EQ(Read(), RoleInvalidRole + 200u);
  EXPECT_EQ(Read(), u32{RoleNoRecords});
}

TEST(AuthFileReader, ALastLineWithoutItsNewlineIsNoRecord) {
  WriteRoleMap("root * user\nalice * user");
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), Lines{1});
}

TEST(AuthFileReader, AByteAboveSevenBitsEndsTheReading) {
  WriteRoleMap("root * user\nb\xC3\xB6rse * user\nalice * user\n");
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), Lines{1});
}

TEST(AuthFileReader, AByteAboveSevenBitsInTheFirstLineLeavesNoRecords) {
  WriteRoleMap("\xEF\xBB\xBFroot * user\nalice * user\n");
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(Read(), u32{RoleNoRecords});
}

TEST(AuthFileReader, LoadedRecordsAreNotReadAgainWhileTheTimeIsUnchanged) {
  WriteRoleMap("root * user\n");
  ASSERT_EQ(Open(), 0u);
  ASSERT_EQ(Read(), 0u);
  WriteRoleMap("a * user\nb * user\n");
  EXPECT_EQ(Open(), 0u);
  EXPECT_EQ(RoleMapDescriptor(), -1);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), Lines{1});
}

TEST(AuthFileReader, AnotherTimeIsReadAgainAndTheMapsAreRebuilt) {
  WriteRoleMap("alice * user\n");
  ASSERT_EQ(Open(), 0u);
  QVXRoleMapAlgorithm& algorithm = QVXRoleMapAlgorithm::GetInstance();
  algorithm.Initialize(Reader().GetRecords());
  WriteRoleMap("alice * administrator\n", 0640, 999999);
  ASSERT_EQ(Open(), 0u);
  algorithm.Initialize(Reader().GetRecords());
  QVXRole query{L"alice", L"here", 0};
  algorithm.GetUserPrivileges(query);
  EXPECT_EQ(query.privileges, QVX_PRIV_ADMINISTRATOR);
}

TEST(AuthFileReader, DefaultRecordsAreThreeBuiltInLinesOfOneEntryEach) {
  const std::deque<QVAuthFileRecord*>& records = Reader().GetDefaultRecords();
  ASSERT_EQ(LineNumbers(records), (Lines{0, 0, 0}));
  const QVXRole expected[] = {{L"root", L"*", QVX_PRIV_ADMINISTRATOR},
                              {L"+root", L"*", QVX_PRIV_POWERUSER},
                              {L"*", L"*", QVX_PRIV_USER}};
  for (size_t at = 0; at < 3; ++at) {
    const QVXRole role = OnlyRoleOf(*records[at]);
    EXPECT_EQ(role.user, expected[at].user);
    EXPECT_EQ(role.host, expected[at].host);
    EXPECT_EQ(role.privileges, expected[at].privileges);
  }
  EXPECT_EQ(Reader().GetDefaultRecords().size(), 3u) << "again three, not six";
}

TEST(AuthFileReader, DefaultRecordsDoNotCountAsLoaded) {
  WriteRoleMap("# one\nroot * user\n");
  (void)Reader().GetDefaultRecords();
  ASSERT_EQ(Open(), 0u);
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), Lines{2});
}

TEST(AuthFileReader, DefaultRecordsStandInForLoadedOnesUntilTheTimeChanges) {
  WriteRoleMap("a * user\nb * user\n");
  ASSERT_EQ(Open(), 0u);
  ASSERT_EQ(Reader().GetRecords().size(), 2u);
  (void)Reader().GetDefaultRecords();
  EXPECT_EQ(LineNumbers(Reader().GetRecords()), (Lines{0, 0, 0}));
}

TEST(AuthFileReader, EveryOperationWaitsForTheReadersLock) {
  WriteRoleMap("root * user\n");
  using Operation = void (*)();
  const Operation operations[] = {
      [] { (void)Open(); },
      [] { (void)Read(); },
      [] { (void)Reader().GetDefaultRecords(); },
      [] { Reader().StopReading(); },
  };
  for (const Operation operation : operations) {
    std::optional<ZarnSupport::ZarnCriticalSection> section(std::in_place, Reader());
    EXPECT_TRUE(test::WaitsFor(operation, [&section] { section.reset(); }));
  }
}

TEST(AuthFileReader, ItsDescriptorIsCloseOnExec) {
  WriteRoleMap("root * user\n");
  ASSERT_EQ(Open(), 0u);
  const int descriptor = RoleMapDescriptor();
  ASSERT_GE(descriptor, 0);
  EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  ASSERT_EQ(Read(), 0u);
  EXPECT_EQ(RoleMapDescriptor(), -1);
}

}  // namespace
}  // namespace qvx
