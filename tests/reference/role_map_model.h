// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_ROLE_MAP_MODEL_H
#define QVX_TESTS_REFERENCE_ROLE_MAP_MODEL_H

#include <random>
#include <string>
#include <vector>

#include "qvxcs/types.h"

// A slow, obvious model of the role map: a file's bytes become records, and a question is answered
// by walking over all of their entries. Nothing is shared with the library.
namespace qvx::test {

struct ModelRole {
  std::string user;
  std::string host;
  u32 rights = 0;
};

struct ModelRoleRecord {
  std::string text;
  u32 line = 0;
  std::vector<ModelRole> roles;
};

// Code 0 is no fault.
struct ModelRoleFault {
  u32 code = 0;
  u32 line = 0;
};

// The command log's identifier and description of a fault.
u32 ModelRoleFaultId(u32 code);
std::string ModelRoleFaultText(const ModelRoleFault& fault);

struct ModelRoleReading {
  std::vector<ModelRoleRecord> records;  // those before the fault, too
  ModelRoleFault fault;
  size_t stopped = 0;  // where a reading after the fault goes on
};
ModelRoleReading ModelReadRoles(const std::string& file, size_t from = 0);
// The text's entries, or a fault.
ModelRoleFault ModelParseRoles(ModelRoleRecord* record);
std::vector<ModelRoleRecord> ModelDefaultRoles();
// The record that names the same host for a plain user again.
ModelRoleFault ModelRoleConflict(const std::vector<ModelRoleRecord>& records);

struct ModelMachine {
  std::vector<std::string> addresses;
  bool hasDomain = false;
  std::string domain;
};

struct ModelQuestion {
  std::string user;
  std::string host;                 // in lower case
  std::vector<std::string> groups;  // none for a user whom nobody knows
};

bool ModelSameAddress(const std::string& one, const std::string& other);
// For records without a conflict.
u32 ModelRights(const std::vector<ModelRoleRecord>& records, const ModelMachine& machine,
                const ModelQuestion& question);

// Files that look for trouble, the same on every run. `users`, `groups` and `hosts` are the names
// that the questions are about.
class HostileRoleMaps {
 public:
  HostileRoleMaps(u32 seed, std::vector<std::string> users, std::vector<std::string> groups,
                  std::vector<std::string> hosts)
      : next_(seed),
        users_(std::move(users)),
        groups_(std::move(groups)),
        hosts_(std::move(hosts)) {}
  u32 Below(u32 limit) { return static_cast<u32>(next_() % limit); }
  std::string Pick(const std::vector<std::string>& pieces) {
    return pieces[Below(static_cast<u32>(pieces.size()))];
  }
  // Lines of which most are faulty in some way.
  std::string HostileFile();
  // Sound lines only, about few users and hosts, so that their entries meet.
  std::string SoundFile();
  // A host of the files as a question would name it.
  std::string HostOfQuestion();

 private:
  std::string UserName();
  std::string Users(u32 most);
  std::string Hosts(u32 most);
  std::string Blanks();
  std::string Role();
  std::string SoundLine();
  std::string HostileLine();
  std::string AnyCase(std::string text);
  std::mt19937 next_;
  std::vector<std::string> users_;
  std::vector<std::string> groups_;
  std::vector<std::string> hosts_;
};

}  // namespace qvx::test

#endif
