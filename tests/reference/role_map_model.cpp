// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/role_map_model.h"

#include <arpa/inet.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace qvx::test {
namespace {

constexpr u32 kMissingField = 2;
constexpr u32 kInvalidRole = 3;
constexpr u32 kNoRecords = 5;
constexpr u32 kConflict = 6;

using Roles = std::vector<ModelRole>;

bool IsBlank(char each) { return each == ' ' || each == '\t'; }

std::string Trimmed(std::string text) {
  while (!text.empty() && IsBlank(text.front()))
    text = text.substr(1);
  while (!text.empty() && IsBlank(text.back()))
    text.pop_back();
  return text;
}

std::string Lower(std::string text) {
  for (char& each : text) {
    if (each >= 'A' && each <= 'Z') each = static_cast<char>(each - 'A' + 'a');
  }
  return text;
}

// Fields are parted by blanks and never empty.
std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields;
  std::string field;
  for (const char each : line + " ") {
    if (!IsBlank(each)) {
      field += each;
    } else if (!field.empty()) {
      fields.push_back(field);
      field.clear();
    }
  }
  return fields;
}

// Names are parted by commas and may be empty.
std::vector<std::string> Names(const std::string& field) {
  std::vector<std::string> names(1);
  for (const char each : field) {
    if (each == ',') {
      names.emplace_back();
    } else {
      names.back() += each;
    }
  }
  return names;
}

bool Holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

bool IsGroup(const std::string& user) { return !user.empty() && user[0] == '+'; }

Roles AllRoles(const std::vector<ModelRoleRecord>& records) {
  Roles all;
  for (const ModelRoleRecord& record : records)
    all.insert(all.end(), record.roles.begin(), record.roles.end());
  return all;
}

// The user's entries, in the order of their hosts.
Roles RolesOf(const Roles& all, const std::string& user) {
  Roles found;
  for (const ModelRole& role : all) {
    if (role.user == user) found.push_back(role);
  }
  std::sort(found.begin(), found.end(),
            [](const ModelRole& one, const ModelRole& other) { return one.host < other.host; });
  return found;
}

// The greatest of the rights given on a host; 0 where nothing is given.
u32 RightsOn(const Roles& roles, const std::string& host) {
  u32 rights = 0;
  for (const ModelRole& role : roles) {
    if (role.host == host) rights = std::max(rights, role.rights);
  }
  return rights;
}

u32 OnDomainOrAnyHost(const Roles& roles, const std::string& domainKey) {
  const u32 onDomain = RightsOn(roles, domainKey);
  return onDomain != 0 ? onDomain : RightsOn(roles, "*");
}

u32 RightsOfUser(const Roles& own, const ModelMachine& machine, const std::string& host,
                 const std::string& domainKey) {
  for (const ModelRole& role : own) {
    if (Holds(role.host, "*.") && Holds(role.host, host)) return role.rights;
  }
  u32 rights = 0;
  for (const std::string& address : machine.addresses) {
    for (const ModelRole& role : own) {
      if (!ModelSameAddress(role.host, address)) continue;
      rights = std::max(rights, role.rights);
      break;
    }
  }
  return rights != 0 ? rights : OnDomainOrAnyHost(own, domainKey);
}

u32 RightsOfGroup(const Roles& roles, const std::string& host) {
  u32 rights = std::max(RightsOn(roles, host), RightsOn(roles, "*"));
  for (const ModelRole& role : roles) {
    if (Holds(role.host, "*.") && Holds(role.host, host)) rights = std::max(rights, role.rights);
  }
  return rights;
}

u32 RightsOfAnyone(const Roles& roles, const ModelMachine& machine, const std::string& host,
                   const std::string& domainKey) {
  u32 rights = RightsOn(roles, host);
  if (rights != 0) return rights;
  for (const std::string& address : machine.addresses)
    rights = std::max(rights, RightsOn(roles, address));
  return rights != 0 ? rights : OnDomainOrAnyHost(roles, domainKey);
}

}  // namespace

u32 ModelRoleFaultId(u32 code) {
  const std::map<u32, u32> ids = {{1, 0x1718}, {2, 0x1717}, {3, 0x171B},
                                  {4, 0x1719}, {5, 0x171A}, {6, 0x171C}};
  const auto found = ids.find(code);
  return found == ids.end() ? 0x170C : found->second;
}

std::string ModelRoleFaultText(const ModelRoleFault& fault) {
  return "<Parameter name=\"line\" value=\"" + std::to_string(fault.line) + "\"/>";
}

ModelRoleFault ModelParseRoles(ModelRoleRecord* record) {
  const std::vector<std::string> fields = Fields(record->text);
  if (fields.size() < 3) return {kMissingField, record->line};
  const std::map<std::string, u32> words = {{"administrator", 7}, {"poweruser", 3}, {"user", 1}};
  const auto word = words.find(Lower(fields[2]));
  if (word == words.end()) return {kInvalidRole, record->line};
  for (const std::string& user : Names(fields[0])) {
    for (const std::string& host : Names(Lower(fields[1])))
      record->roles.push_back({user, host, word->second});
  }
  return {};
}

ModelRoleReading ModelReadRoles(const std::string& file, size_t from) {
  // What follows a byte that is not ASCII is never seen.
  std::string rest = file.substr(from);
  const auto foreign =
      std::find_if(rest.begin(), rest.end(), [](char each) { return static_cast<u8>(each) > 127; });
  rest.erase(foreign, rest.end());
  ModelRoleReading reading;
  reading.stopped = file.size();
  u32 number = 0;
  // A last line without its newline is lost.
  for (size_t end = rest.find('\n'), start = 0; end != std::string::npos;
       start = end + 1, end = rest.find('\n', start)) {
    ++number;
    const std::string line = Trimmed(rest.substr(start, end - start));
    if (line.empty() || line[0] == '#') continue;
    ModelRoleRecord record = {line, number, {}};
    reading.fault = ModelParseRoles(&record);
    if (reading.fault.code != 0) {
      reading.stopped = from + end + 1;
      return reading;
    }
    reading.records.push_back(record);
  }
  if (reading.records.empty()) reading.fault = {kNoRecords, 0};
  return reading;
}

std::vector<ModelRoleRecord> ModelDefaultRoles() {
  return {{"root \t* \tadministrator", 0, {{"root", "*", 7}}},
          {"+root \t* \tpoweruser", 0, {{"+root", "*", 3}}},
          {"* \t* \tuser", 0, {{"*", "*", 1}}}};
}

ModelRoleFault ModelRoleConflict(const std::vector<ModelRoleRecord>& records) {
  std::set<std::pair<std::string, std::string>> given;
  for (const ModelRoleRecord& record : records) {
    for (const ModelRole& role : record.roles) {
      if (role.user == "*" || IsGroup(role.user)) continue;
      if (!given.insert({role.user, role.host}).second) return {kConflict, record.line};
    }
  }
  return {};
}

bool ModelSameAddress(const std::string& one, const std::string& other) {
  const std::string texts[] = {one, other};
  const bool wide = Holds(texts[0], ":") && Holds(texts[1], ":");
  u8 bytes[2][16] = {};
  for (u32 at = 0; at < 2; ++at) {
    // An 8-bit text cannot hold a NUL.
    if (texts[at].find('\0') != std::string::npos) return false;
    const bool digitsOnly = texts[at].find_first_not_of("0123456789.") == std::string::npos;
    if (!wide && !digitsOnly) return false;
    if (inet_pton(wide ? AF_INET6 : AF_INET, texts[at].c_str(), bytes[at]) != 1) return false;
  }
  return std::equal(bytes[0], bytes[0] + 16, bytes[1]);
}

u32 ModelRights(const std::vector<ModelRoleRecord>& records, const ModelMachine& machine,
                const ModelQuestion& question) {
  const Roles all = AllRoles(records);
  const std::string domainKey = machine.hasDomain ? "*." + Lower(machine.domain) : "*.";
  // "*" and groups are never a user's own entries, whatever the user is called.
  const bool plain = question.user != "*" && !IsGroup(question.user);
  const Roles own = plain ? RolesOf(all, question.user) : Roles();
  u32 rights = RightsOfUser(own, machine, question.host, domainKey);
  if (rights != 0) return rights;
  for (const std::string& group : question.groups)
    rights = std::max(rights, RightsOfGroup(RolesOf(all, "+" + group), question.host));
  if (rights != 0) return rights;
  return RightsOfAnyone(RolesOf(all, "*"), machine, question.host, domainKey);
}

std::string HostileRoleMaps::AnyCase(std::string text) {
  if (Below(4) != 0) return text;
  for (char& each : text) {
    if (each >= 'a' && each <= 'z' && Below(2) == 0) each = static_cast<char>(each - 'a' + 'A');
  }
  return text;
}

std::string HostileRoleMaps::Blanks() { return Pick({" ", " ", "\t", "   ", " \t ", "\t\t"}); }

std::string HostileRoleMaps::Role() {
  return AnyCase(Pick({"administrator", "poweruser", "user"}));
}

std::string HostileRoleMaps::UserName() {
  if (Below(6) == 0) return "*";
  return Below(2) == 0 ? Pick(users_) : "+" + Pick(groups_);
}

std::string HostileRoleMaps::Users(u32 most) {
  std::string users = UserName();
  for (u32 more = Below(most); more > 0; --more)
    users += "," + UserName();
  return Below(24) == 0 ? users + "," : users;
}

std::string HostileRoleMaps::Hosts(u32 most) {
  std::string hosts = AnyCase(Pick(hosts_));
  for (u32 more = Below(most); more > 0; --more)
    hosts += "," + AnyCase(Pick(hosts_));
  return Below(24) == 0 ? "," + hosts : hosts;
}

std::string HostileRoleMaps::SoundLine() {
  return Pick({"", "", " ", "\t"}) + Users(2) + Blanks() + Hosts(2) + Blanks() + Role() +
         Pick({"", "", " ", "\t", " more words", " # no comment"});
}

std::string HostileRoleMaps::SoundFile() {
  std::string file;
  for (u32 lines = 1 + Below(5); lines > 0; --lines) {
    if (Below(8) == 0) file += Pick({"\n", "# comment\n", " \t\n", "  #\n"});
    file += SoundLine() + "\n";
  }
  return file;
}

std::string HostileRoleMaps::HostileLine() {
  const std::string nul(1, '\0');
  switch (Below(12)) {
    case 0:
      return Pick({"", "#", "# a * user", "\t# b", "   ", "\t", ",", "+", "*", "* *", "* * *"});
    case 1:
      return Users(2) + Blanks() + Hosts(2) + Blanks() +
             Pick({"admin", "users", "use", "user,", "user\r", "none", "7", "*", "#", "user" + nul,
                   "\vuser", "administrator,user", "ADMINISTRATOR", "PowerUser"});
    case 2: {
      const std::string name(250 + Below(12), 'n');
      return Pick({name, "a," + name, name + ",b", "a\t" + name}) + " * " + Pick({"user", name});
    }
    case 3: {
      const std::string line = SoundLine();
      const std::string odd = Pick({"\xFF", "\x80", "\xC0\x80", "\xC3\xA9", nul, "\r", "\v", "\f",
                                    "\x7F", "\x01", ",", ",,", "#", "+", " "});
      const size_t at = Below(static_cast<u32>(line.size() + 1));
      return line.substr(0, at) + odd + line.substr(at);
    }
    case 4: {
      std::string line;
      for (u32 pieces = Below(10); pieces > 0; --pieces)
        line += Pick({"a", "b", "+g", "*", ",", ",", " ", " ", "\t", "user", "poweruser", "#",
                      "*.x", "\r", "@", "\\", "\""});
      return line;
    }
    case 5:
      return SoundLine() + "\r";
    default:
      return SoundLine();
  }
}

std::string HostileRoleMaps::HostileFile() {
  std::string file;
  for (u32 lines = Below(6); lines > 0; --lines)
    file += HostileLine() + "\n";
  if (!file.empty() && Below(5) == 0) file.pop_back();
  return file;
}

std::string HostileRoleMaps::HostOfQuestion() {
  std::string host = Lower(Pick(hosts_));
  if (host.substr(0, 2) == "*." && Below(3) != 0) host = host.substr(2);
  return Below(12) == 0 ? "" : host;
}

}  // namespace qvx::test
