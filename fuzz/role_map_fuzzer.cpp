// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: the user and the host asked about, one a line, then the role map file.
#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "access/auth_file_reader.h"
#include "access/auth_file_record.h"
#include "access/role_map_algorithm.h"
#include "access/role_map_error.h"
#include "access/role_map_stream.h"
#include "base/layout.h"
#include "fuzz/fuzz_support.h"
#include "reference/role_map_model.h"
#include "support/files.h"

namespace {

using qvx::QVAuthFileReader;
using qvx::QVAuthFileRecord;
using qvx::QVXRole;
using qvx::QVXRoleMapAlgorithm;
using qvx::QVXRoleMapFileReaderException;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::test::ModelQuestion;
using qvx::test::ModelRoleFault;
using qvx::test::ModelRoleReading;
using qvx::test::ModelRoleRecord;

constexpr int kMostGroups = 64;

// 7-bit text both ways.
std::wstring Wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

// Each file needs its own modification time, or it would not be read.
void WriteRoleMap(const std::string& file) {
  static time_t modified = 1000000000;
  ++modified;
  qvx::test::WriteFile(qvx::kRoleMapPath, file);
  const timespec times[2] = {{modified, 0}, {modified, 0}};
  Require(
      chmod(qvx::kRoleMapPath, 0640) == 0 && utimensat(AT_FDCWD, qvx::kRoleMapPath, times, 0) == 0,
      "mode and time can be set");
}

void RequireRecord(const QVAuthFileRecord& record, const ModelRoleRecord& expected) {
  Require(record.GetLineNumber() == static_cast<s32>(expected.line), "a record knows its line");
  std::deque<QVXRole*> roles;
  record.GetRoles(roles);
  Require(roles.size() == expected.roles.size(), "a record has an entry for each user and host");
  for (size_t at = 0; at < roles.size(); ++at) {
    Require(roles[at]->user == Wide(expected.roles[at].user) &&
                roles[at]->host == Wide(expected.roles[at].host) &&
                roles[at]->privileges == expected.roles[at].rights,
            "an entry is the model's");
  }
}

bool IsFault(const QVXRoleMapFileReaderException& thrown, const ModelRoleFault& expected) {
  return static_cast<u32>(thrown.getErrorCode()) == expected.code &&
         thrown.GetLineNumber() == expected.line &&
         thrown.MapErrorCodeToCmdId() == qvx::test::ModelRoleFaultId(expected.code);
}

// After a fault the reader does not read on in this process, so faulty files are read line by line
// here.
void CheckLines(const ModelRoleReading& expected) {
  qvx::RoleMapStream stream;
  stream.Open(qvx::kRoleMapPath);
  std::wstring line;
  size_t found = 0;
  for (s32 number = 1; stream.GetLine(line); ++number) {
    const std::wstring trimmed = qvx::TrimWhitespace(line, qvx::TrimMode::kBoth);
    if (trimmed.empty() || trimmed.front() == L'#') continue;
    QVAuthFileRecord record(trimmed, number);
    try {
      record.PopulateQVXRoles();
    } catch (const QVXRoleMapFileReaderException& thrown) {
      Require(IsFault(thrown, expected.fault), "a fault is the model's");
      Require(found == expected.records.size(), "the first fault ends the reading");
      return;
    }
    Require(found < expected.records.size(), "there are no more records than in the model");
    RequireRecord(record, expected.records[found]);
    ++found;
  }
  Require(found == expected.records.size(), "there are as many records as in the model");
  Require(expected.fault.code == (found == 0 ? qvx::RoleNoRecords : 0), "there is no fault");
}

std::vector<std::string> GroupsOf(const std::string& user) {
  std::vector<std::string> names;
  const passwd* const account = getpwnam(user.c_str());
  if (account == nullptr) return names;
  gid_t groups[kMostGroups];
  int count = kMostGroups;
  if (getgrouplist(user.c_str(), account->pw_gid, groups, &count) < 0) return names;
  for (int at = 0; at < count; ++at) {
    const group* const entry = getgrgid(groups[at]);
    if (entry != nullptr) names.emplace_back(entry->gr_name);
  }
  return names;
}

void CheckAnswer(const std::vector<ModelRoleRecord>& records, const ModelQuestion& question) {
  QVXRole query{Wide(question.user), Wide(question.host), 0};
  QVXRoleMapAlgorithm::GetInstance().GetUserPrivileges(query);
  // The sandbox's domain. Its interfaces are down.
  const u32 expected = qvx::test::ModelRights(records, {{}, true, "example"}, question);
  Require(query.privileges == expected, "the rights are the model's");
}

void CheckFile(const std::vector<ModelRoleRecord>& expected, const ModelQuestion& question) {
  QVAuthFileReader& reader = QVAuthFileReader::GetInstance();
  reader.Open();
  const std::deque<QVAuthFileRecord*>& records = reader.GetRecords();
  Require(records.size() == expected.size(), "the reader finds the model's records");
  for (size_t at = 0; at < records.size(); ++at) {
    RequireRecord(*records[at], expected[at]);
  }
  const ModelRoleFault conflict = qvx::test::ModelRoleConflict(expected);
  try {
    QVXRoleMapAlgorithm::GetInstance().Initialize(records);
  } catch (const QVXRoleMapFileReaderException& thrown) {
    Require(IsFault(thrown, conflict), "a conflict is the model's");
    return;
  }
  Require(conflict.code == 0, "a conflict is thrown");
  CheckAnswer(expected, question);
}

std::string SevenBit(std::string text) {
  for (char& each : text) {
    each = static_cast<char>(each & 0x7F);
  }
  return text;
}

std::string Lower(std::string text) {
  for (char& each : text) {
    if (each >= 'A' && each <= 'Z') each = static_cast<char>(each - 'A' + 'a');
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  ModelQuestion question;
  question.user = SevenBit(input.Word()).c_str();
  question.host = Lower(SevenBit(input.Word())).c_str();
  question.groups = GroupsOf(question.user);
  const std::string file = input.Rest();
  WriteRoleMap(file);
  const ModelRoleReading expected = qvx::test::ModelReadRoles(file);
  CheckLines(expected);
  if (expected.fault.code == 0) CheckFile(expected.records, question);
  return 0;
}
