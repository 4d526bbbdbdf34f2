// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/role_map_model.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "qvxcs/access.h"

#include "access/auth_file_reader.h"
#include "access/role_map_algorithm.h"
#include "access/role_map_error.h"
#include "access/user_rights.h"
#include "frame/module.h"
#include "support/processes.h"
#include "tests/access/accounts.h"

namespace {

using qvx::QVAuthFileReader;
using qvx::QVXRoleMapAlgorithm;
using qvx::test::HostileRoleMaps;
using qvx::test::ModelMachine;
using qvx::test::ModelQuestion;
using qvx::test::ModelRole;
using qvx::test::ModelRoleFault;
using qvx::test::ModelRoleReading;
using qvx::test::ModelRoleRecord;
using Records = std::vector<ModelRoleRecord>;
using Faults = std::vector<ModelRoleFault>;
using Names = std::vector<std::string>;

constexpr u32 kInputs = 2500;
constexpr u32 kLoggedInputs = 500;
constexpr u32 kQuestions = 3;

// The groups of each user whom the system knows.
const std::map<std::string, Names>& GroupsOfUsers() {
  static const std::map<std::string, Names> groups = {{"root", {"root"}},
                                                      {"alice", {"users", "wheel", "audit"}},
                                                      {"bob", {"users"}},
                                                      {"member", {"root", "audit"}},
                                                      {"carol", {"wheel"}}};
  return groups;
}

constexpr uid_t kNobody = 7777;

std::string NameOf(uid_t asker) {
  const std::map<uid_t, std::string> names = {
      {0, "root"}, {7001, "alice"}, {7002, "bob"}, {7003, "member"}, {7004, "carol"}};
  return names.at(asker);
}

Names WordsOf(const std::string& text) {
  std::istringstream words(text);
  return {std::istream_iterator<std::string>(words), {}};
}

Names Users() { return WordsOf("root alice alice bob member carol ghost Alice"); }

// Hosts that matter for srv1 occur more often than others.
Names Hosts() {
  return WordsOf(
      "* * * * srv1 srv1 srv1 srv1 *.srv1 *.srv1 x*.srv1 *srv1. *.example *.example *. *.lab "
      "srv1.lab *.srv1.lab 192.0.2.7 192.0.2.7 192.0.2.8 198.51.100.9 192.0.2.07 2001:db8::7 "
      "2001:db8:0:0:0:0:0:7 127.0.0.1 ::1 999 *.192.0.2.7 elsewhere *.elsewhere");
}

std::string InLowerCase(std::string text) {
  for (char& each : text) {
    if (each >= 'A' && each <= 'Z') each = static_cast<char>(each + 32);
  }
  return text;
}

HostileRoleMaps Maps(u32 seed) {
  return {seed, Users(), {"root", "users", "wheel", "audit", "nobodys", "Wheel", ""}, Hosts()};
}

ModelQuestion QuestionOf(const std::string& user, const std::string& host) {
  const auto known = GroupsOfUsers().find(user);
  return {user, host, known == GroupsOfUsers().end() ? Names() : known->second};
}

std::wstring Wide(const std::string& text) { return {text.begin(), text.end()}; }

std::string Shown(const std::string& file) { return testing::PrintToString(file); }

QVAuthFileReader& Reader() { return QVAuthFileReader::GetInstance(); }
QVXRoleMapAlgorithm& Algorithm() { return QVXRoleMapAlgorithm::GetInstance(); }

template <typename Call>
ModelRoleFault FaultOf(Call call) {
  try {
    call();
  } catch (const qvx::QVXRoleMapFileReaderException& fault) {
    const auto code = static_cast<u32>(fault.getErrorCode());
    EXPECT_EQ(fault.MapErrorCodeToCmdId(), qvx::test::ModelRoleFaultId(code));
    return {code, static_cast<u32>(fault.GetLineNumber())};
  }
  return {};
}

void ExpectFault(const ModelRoleFault& seen, const ModelRoleFault& expected) {
  ASSERT_EQ(seen.code, expected.code);
  ASSERT_EQ(seen.line, expected.line);
}

void ExpectRecords(const std::deque<qvx::QVAuthFileRecord*>& seen, const Records& expected) {
  ASSERT_EQ(seen.size(), expected.size());
  for (size_t at = 0; at < expected.size(); ++at) {
    ASSERT_EQ(seen[at]->GetLineNumber(), static_cast<s32>(expected[at].line));
    std::deque<qvx::QVXRole*> roles;
    seen[at]->GetRoles(roles);
    ASSERT_EQ(roles.size(), expected[at].roles.size());
    for (size_t each = 0; each < roles.size(); ++each) {
      const ModelRole& role = expected[at].roles[each];
      ASSERT_EQ(roles[each]->user, Wide(role.user));
      ASSERT_EQ(roles[each]->host, Wide(role.host));
      ASSERT_EQ(roles[each]->privileges, role.rights);
    }
  }
}

bool IsOfALine(const ModelRoleFault& fault) {
  return fault.code == qvx::RoleMissingField || fault.code == qvx::RoleInvalidRole;
}

// Whether a process that reads on after each fault, or reopens the file there, can never read the
// role map again.
bool SpoilsTheReader(const std::string& file, bool opensAgain) {
  ModelRoleReading reading;
  do {
    reading = qvx::test::ModelReadRoles(file, reading.stopped);
  } while (IsOfALine(reading.fault) && !opensAgain);
  return reading.fault.code != 0;
}

// Reads a role map that this process has not read, and builds the maps.
class Judge {
 public:
  // The list belongs to the reader, so that it can be inspected after a fault.
  explicit Judge(const std::string& file) : file_(file), list_(Reader().GetDefaultRecords()) {}

  // Continues after each faulty line, or reopens the file there, which ends all reading.
  void Read(bool opensAgain) {
    ASSERT_NO_FATAL_FAILURE(ExpectRecords(list_, qvx::test::ModelDefaultRoles()));
    ASSERT_NO_FATAL_FAILURE(Opens());
    ModelRoleReading expected;
    do {
      expected = qvx::test::ModelReadRoles(file_, expected.stopped);
      ASSERT_NO_FATAL_FAILURE(Reads(expected.fault));
      ASSERT_NO_FATAL_FAILURE(ExpectRecords(list_, expected.records));
    } while (IsOfALine(expected.fault) && !opensAgain);
    if (IsOfALine(expected.fault)) {
      ASSERT_NO_FATAL_FAILURE(Opens());
      expected.fault = {qvx::RoleNoRecords, 0};
      ASSERT_NO_FATAL_FAILURE(Reads(expected.fault));
    }
    records_ = expected.records;
    if (expected.fault.code != 0) StandIn();
  }

  void Build() {
    const ModelRoleFault conflict = qvx::test::ModelRoleConflict(records_);
    const ModelRoleFault seen = FaultOf([this] { Algorithm().Initialize(list_); });
    ASSERT_NO_FATAL_FAILURE(ExpectFault(seen, conflict));
    if (conflict.code == 0) return;
    StandIn();
    Algorithm().Initialize(list_);
  }

  void Answer(const ModelMachine& machine, const ModelQuestion& question) {
    qvx::QVXRole query{Wide(question.user), Wide(question.host), 0x55};
    Algorithm().GetUserPrivileges(query);
    ASSERT_EQ(query.privileges, qvx::test::ModelRights(records_, machine, question))
        << question.user << " on " << Shown(question.host) << ", domain " << machine.domain;
    ASSERT_EQ(query.user, Wide(question.user));
    ASSERT_EQ(query.host, Wide(question.host));
  }

 private:
  static void Opens() {
    ExpectFault(FaultOf([] { Reader().Open(); }), {});
  }
  static void Reads(const ModelRoleFault& fault) {
    ExpectFault(FaultOf([] { Reader().GetRecords(); }), fault);
  }
  void StandIn() {
    Reader().GetDefaultRecords();
    records_ = qvx::test::ModelDefaultRoles();
  }

  const std::string& file_;
  const std::deque<qvx::QVAuthFileRecord*>& list_;
  Records records_;  // those that the list should hold
};

class RoleMapModel : public testing::Test {
 protected:
  void SetUp() override {
    qvx::test::OnlyRoot();
    qvx::test::AddUser("alice", 7001, 7100);
    qvx::test::AddUser("bob", 7002, 7100);
    qvx::test::AddUser("member", 7003, 0);
    qvx::test::AddUser("carol", 7004, 7999);
    qvx::test::AddGroup("users", 7100);
    qvx::test::AddGroup("wheel", 7101, "alice,carol");
    qvx::test::AddGroup("audit", 7102, "alice,member");
    qvx::test::AddGroup("nobodys", 7103);
    qvx::test::AddLocalAddresses("192.0.2.7", "198.51.100.9");
    qvx::test::Run("echo 0 > /proc/sys/net/ipv6/conf/qvxa/disable_ipv6");
    qvx::test::Run("ip -6 addr add 2001:db8::7/64 dev qvxa nodad");
    ASSERT_EQ(qvx::ModuleAttach(), 1);
  }
  // A machine in the domain that the sandbox now has.
  static ModelMachine InDomain(const std::string& domain) {
    if (setdomainname(domain.data(), domain.size()) != 0) abort();
    const bool none = domain.substr(0, 6) == "(none)";
    return {{"192.0.2.7", "198.51.100.9", "2001:db8::7"}, !none, none ? "" : domain};
  }
  static void ExpectAnswers(const std::string& file, bool opensAgain, const ModelMachine& machine,
                            const std::vector<ModelQuestion>& questions) {
    Judge judge(file);
    ASSERT_NO_FATAL_FAILURE(judge.Read(opensAgain));
    ASSERT_NO_FATAL_FAILURE(judge.Build());
    for (const ModelQuestion& question : questions)
      ASSERT_NO_FATAL_FAILURE(judge.Answer(machine, question));
  }
  static void ExpectAgreement(HostileRoleMaps* maps, const std::string& file, time_t time) {
    qvx::test::WriteRoleMap(file, 0640, time);
    const ModelMachine machine =
        InDomain(maps->Pick({"example", "Example", "lab", "srv1", "(none)", "(none).x", ""}));
    std::vector<ModelQuestion> questions;
    for (u32 at = 0; at < kQuestions; ++at) {
      const std::string user =
          maps->Below(8) == 0 ? maps->Pick({"", "*", "+wheel"}) : maps->Pick(Users());
      questions.push_back(QuestionOf(user, maps->HostOfQuestion()));
    }
    const bool opensAgain = maps->Below(32) == 0;
    if (!SpoilsTheReader(file, opensAgain)) {
      return ExpectAnswers(file, opensAgain, machine, questions);
    }
    const int verdict = qvx::test::InChild([&] {
      ExpectAnswers(file, opensAgain, machine, questions);
      return HasFailure() ? 1 : 0;
    });
    ASSERT_EQ(verdict, 0);
  }
};

TEST(RoleMapModelItself, KnowsWhatALineMeans) {
  ModelRoleRecord record = {"root,+wheel   *.lab,SRV1  PowerUser", 4, {}};
  EXPECT_EQ(qvx::test::ModelParseRoles(&record).code, 0u);
  ASSERT_EQ(record.roles.size(), 4u);
  EXPECT_EQ(record.roles[1].user, "root");
  EXPECT_EQ(record.roles[1].host, "srv1");
  EXPECT_EQ(record.roles[2].user, "+wheel");
  EXPECT_EQ(record.roles[2].host, "*.lab");
  EXPECT_EQ(record.roles[2].rights, 3u);
  record = {"a,,b * user", 1, {}};
  EXPECT_EQ(qvx::test::ModelParseRoles(&record).code, 0u);
  ASSERT_EQ(record.roles.size(), 3u);
  EXPECT_EQ(record.roles[1].user, "");
}

TEST(RoleMapModelItself, KnowsTheFaultsOfAFile) {
  ModelRoleReading reading = qvx::test::ModelReadRoles("# one\n\nroot * administrator\nroot *\n");
  ASSERT_EQ(reading.records.size(), 1u);
  EXPECT_EQ(reading.records[0].line, 3u);
  EXPECT_EQ(reading.fault.code, 2u);
  EXPECT_EQ(reading.fault.line, 4u);
  EXPECT_EQ(qvx::test::ModelReadRoles("root * admin\n").fault.code, 3u);
  EXPECT_EQ(qvx::test::ModelReadRoles("# only\n \t\n").fault.code, 5u);
  EXPECT_EQ(qvx::test::ModelReadRoles("root * user").fault.code, 5u);
  EXPECT_EQ(qvx::test::ModelReadRoles("a * user\n\xFF * bad\n").fault.code, 0u);
  reading = qvx::test::ModelReadRoles("b h user\na h,h user\n");
  EXPECT_EQ(qvx::test::ModelRoleConflict(reading.records).code, 6u);
  EXPECT_EQ(qvx::test::ModelRoleConflict(reading.records).line, 2u);
}

TEST(RoleMapModelItself, KnowsWhoseEntriesDecide) {
  const ModelMachine machine = {{"192.0.2.7"}, true, "example"};
  const auto rights = [&machine](const std::string& file, const std::string& host) {
    const ModelQuestion question = {"alice", host, {"users", "wheel"}};
    return qvx::test::ModelRights(qvx::test::ModelReadRoles(file).records, machine, question);
  };
  EXPECT_EQ(rights("alice * user\n+wheel * administrator\n", "srv1"), 1u);
  EXPECT_EQ(rights("alice otherhost user\n+wheel * administrator\n", "srv1"), 7u);
  EXPECT_EQ(rights("alice srv1 administrator\n", "srv1"), 0u);
  EXPECT_EQ(rights("alice *.srv1 administrator\n", "srv1"), 7u);
  EXPECT_EQ(rights("alice *.example administrator\n", "srv1"), 7u);
  EXPECT_EQ(rights("alice 192.0.2.7 poweruser\nalice * user\n", "srv1"), 3u);
  EXPECT_EQ(rights("+wheel * poweruser\n+wheel * user\n", "srv1"), 3u);
  EXPECT_EQ(rights("* srv1 user\n* * administrator\n", "srv1"), 1u);
  EXPECT_EQ(rights("* srv1 user\n* * administrator\n", "srv2"), 7u);
  EXPECT_TRUE(qvx::test::ModelSameAddress("::1", "0:0:0:0:0:0:0:1"));
  EXPECT_FALSE(qvx::test::ModelSameAddress("", ""));
}

TEST_F(RoleMapModel, HostileFilesAreReadAndJudgedAsTheModelDoes) {
  HostileRoleMaps maps = Maps(41);
  for (u32 input = 0; input < kInputs; ++input) {
    std::string file = maps.HostileFile();
    // Mostly with a readable line after all faults.
    if (maps.Below(12) != 0) file += "\n" + maps.SoundFile();
    if (!file.empty() && maps.Below(8) == 0) file.pop_back();
    ASSERT_NO_FATAL_FAILURE(
        ExpectAgreement(&maps, file, time_t{1000000} + static_cast<time_t>(input)))
        << input << ": " << Shown(file);
  }
}

TEST_F(RoleMapModel, SoundFilesAreReadAndJudgedAsTheModelDoes) {
  HostileRoleMaps maps = Maps(42);
  for (u32 input = 0; input < kInputs; ++input) {
    const std::string file = maps.SoundFile();
    ASSERT_NO_FATAL_FAILURE(
        ExpectAgreement(&maps, file, time_t{1000000} + static_cast<time_t>(input)))
        << input << ": " << Shown(file);
  }
}

// A role map as a host finds it, and the expected outcome.
struct Met {
  std::string file;
  bool exists;
  mode_t mode;
  uid_t asker;
};

struct Outcome {
  Faults faults;    // in the order of the log
  Records inForce;  // for every answer
};

Outcome ExpectedOf(const Met& met) {
  Outcome outcome = {{}, qvx::test::ModelDefaultRoles()};
  if (!met.exists) {
    outcome.faults.push_back({qvx::RoleFileOpenFailed, 0});
  } else if (met.mode != 0640 && met.mode != 01640) {
    outcome.faults.push_back({qvx::RoleBadPermissions, 0});
  }
  if (met.asker == kNobody) return outcome;
  if (!outcome.faults.empty()) {
    outcome.faults.push_back({qvx::RoleFileOpenFailed, 0});
    return outcome;
  }
  const ModelRoleReading reading = qvx::test::ModelReadRoles(met.file);
  const ModelRoleFault conflict = qvx::test::ModelRoleConflict(reading.records);
  const ModelRoleFault fault = reading.fault.code != 0 ? reading.fault : conflict;
  if (fault.code == 0) {
    outcome.inForce = reading.records;
  } else {
    outcome.faults.push_back(fault);
  }
  return outcome;
}

// The log's entries of type 2, without their times and the machine.
Names LoggedFaults() {
  Names entries;
  if (!qvx::test::Exists(qvx::test::kCommandLog)) return entries;
  const std::string log = qvx::test::ReadFile(qvx::test::kCommandLog);
  for (size_t at = log.find("<Type>2<"); at != std::string::npos; at = log.find("<Type>2<", at + 1))
    entries.push_back(log.substr(at, log.find("</LogEntry>", at) - at));
  return entries;
}

Names LoggedFaults(const Faults& faults) {
  Names entries;
  for (const ModelRoleFault& fault : faults) {
    entries.push_back("<Type>2</Type><ID>" +
                      std::to_string(qvx::test::ModelRoleFaultId(fault.code)) +
                      "</ID><UserInfo>root</UserInfo><Source>QVXSERVER</Source><Description>" +
                      qvx::test::ModelRoleFaultText(fault) + "</Description><Data></Data>");
  }
  return entries;
}

// What the system grants without a role map.
u32 RightsOfSystem(const std::string& user) {
  const std::map<std::string, u32> rights = {
      {"root", 7}, {"member", 3}, {"alice", 1}, {"bob", 1}, {"carol", 1}};
  const auto found = rights.find(user);
  return found == rights.end() ? 0 : found->second;
}

// A login, and how it is split: the system is queried for the first part.
struct Login {
  const char* text;
  const char* user;
  const char* host;  // null means this machine
  const char* first;
};

constexpr Login kLogins[] = {
    {"alice", "alice", nullptr, "alice"},
    {"root@srv1", "root", "srv1", "root"},
    {"SRV1.lab\\carol", "carol", "srv1.lab", "SRV1.lab"},
    {"member@", "member", "", "member"},
    {"ghost@*.LAB", "ghost", "*.lab", "ghost"},
    {"root\\bob", "bob", "root", "root"},
    {"bob@elsewhere", "bob", "elsewhere", "bob"},
};

void ExpectLogins(const Records& records, const ModelMachine& machine, const std::string& host) {
  for (const Login& login : kLogins) {
    const std::string asked = login.host == nullptr ? host : login.host;
    const u32 byMap = qvx::test::ModelRights(records, machine, QuestionOf(login.user, asked));
    const u32 bySystem = RightsOfSystem(login.first);
    const u32 both = byMap == 0 ? 0 : std::max(byMap, bySystem);
    std::string text = login.text;
    ASSERT_EQ(qvx::get_user_rights(text.data()),
              bySystem == 7 ? u32{QVX_PRIV_ROOT | QVX_PRIV_ADMINISTRATOR} : both)
        << login.text;
  }
}

void ExpectOutcome(const Met& met, const ModelMachine& machine, const std::string& host) {
  const Outcome expected = ExpectedOf(met);
  ASSERT_EQ(setreuid(met.asker, static_cast<uid_t>(-1)), 0);
  ASSERT_EQ(PXTOpenRolemapFile(), 0u);
  u32 rights = 0;
  if (met.asker != kNobody) {
    const std::string user = NameOf(met.asker);
    rights = qvx::test::ModelRights(expected.inForce, machine, QuestionOf(user, host));
    if (rights == 0 && user == "root") rights = 7;
  }
  ASSERT_EQ(PXTGetRightsUsingRolemap(), rights) << "for " << met.asker << " on " << host;
  ASSERT_EQ(LoggedFaults(), LoggedFaults(expected.faults));
  ExpectLogins(expected.inForce, machine, host);
}

TEST_F(RoleMapModel, FaultsAreLoggedAndTheBuiltInLinesAnswerAsTheModelSays) {
  HostileRoleMaps maps = Maps(43);
  const mode_t modes[] = {0640, 0640, 0640, 0640, 01640, 0644};
  const uid_t askers[] = {0, 7001, 7002, 7003, 7004, kNobody};
  for (u32 input = 0; input < kLoggedInputs; ++input) {
    const bool sound = maps.Below(2) == 0;
    const Met met = {sound ? maps.SoundFile() : maps.HostileFile(), maps.Below(24) != 0,
                     modes[maps.Below(6)], askers[maps.Below(6)]};
    qvx::test::WriteRoleMap(met.file, met.mode);
    if (!met.exists) unlink(qvx::test::kRoleMap);
    unlink(qvx::test::kCommandLog);
    const std::string host = maps.Pick({"SRV1", "elsewhere", "qvxtest", "srv1.Lab"});
    ASSERT_EQ(sethostname(host.data(), host.size()), 0);
    const ModelMachine machine = InDomain(maps.Pick({"example", "LAB", "(none)"}));
    const int verdict = qvx::test::InChild([&] {
      ExpectOutcome(met, machine, InLowerCase(host));
      return HasFailure() ? 1 : 0;
    });
    ASSERT_EQ(verdict, 0) << input << ": " << Shown(met.file) << std::oct << met.mode;
  }
}

}  // namespace
