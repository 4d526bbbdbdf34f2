// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/role_map_entries.h"

#include <grp.h>
#include <pwd.h>

#include <map>
#include <set>
#include <string>

#include "access/auth_file_record.h"
#include "access/role.h"
#include "os/ip_address.h"

namespace qvx::ctl {
namespace {

// The map is 7-bit text.
std::string Narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

struct Grant {
  u32 privileges;
  unsigned long line;
};

class EntryChecker {
 public:
  explicit EntryChecker(std::vector<RoleMapFinding>* findings) : findings_(findings) {}

  void Collect(const std::deque<QVAuthFileRecord*>& records) {
    for (const QVAuthFileRecord* record : records) {
      line_ = static_cast<unsigned long>(record->GetLineNumber());
      std::deque<QVXRole*> roles;
      record->GetRoles(roles);
      for (const QVXRole* role : roles) {
        Check(*role);
      }
    }
    for (const auto& [user, hosts] : shared_) {
      if (user != "*") CheckHosts(user, hosts);
    }
  }

 private:
  void Check(const QVXRole& role) {
    const std::string user = Narrow(role.user);
    const std::string host = Narrow(role.host);
    if (user.empty()) return Warn("an empty user name: two commas, or one at an end");
    if (host.empty()) return Warn("an empty host name: two commas, or one at an end");
    const bool isGroup = user.front() == '+';
    if (isGroup || user == "*") {
      if (isGroup) CheckGroup(user);
      return CheckShared(user, host, role.privileges);
    }
    CheckUser(user, host);
  }

  void CheckGroup(const std::string& group) {
    if (!seen_.insert(group).second || getgrnam(group.c_str() + 1) != nullptr) return;
    Warn("group " + group.substr(1) + " is unknown here");
  }

  // Groups and anyone: the greater role of a repeated host wins, wherever it is.
  void CheckShared(const std::string& user, const std::string& host, u32 privileges) {
    const auto [found, isNew] = shared_[user].emplace(host, Grant{privileges, line_});
    if (isNew) return;
    Grant& first = found->second;
    const bool isGreater = privileges > first.privileges;
    const unsigned long winner = isGreater ? line_ : first.line;
    const unsigned long loser = isGreater ? first.line : line_;
    Warn(loser, user + " on " + host + " is shadowed by line " + std::to_string(winner));
    if (isGreater) first = {privileges, line_};
  }

  // The hosts of a group add up, so that a lesser or equal role beside "*" never decides.
  void CheckHosts(const std::string& group, const std::map<std::string, Grant>& hosts) {
    const auto everywhere = hosts.find("*");
    if (everywhere == hosts.end()) return;
    const std::string begin = group + " on ";
    const std::string end = " is shadowed by line " + std::to_string(everywhere->second.line);
    for (const auto& [host, grant] : hosts) {
      if (host == "*" || grant.privileges > everywhere->second.privileges) continue;
      Warn(grant.line, std::string(begin).append(host).append(end));
    }
  }

  void CheckUser(const std::string& user, const std::string& host) {
    if (seen_.insert(user).second && getpwnam(user.c_str()) == nullptr) {
      Warn("user " + user + " is unknown here");
    }
    const auto [found, isNew] = users_.emplace(user, line_);
    if (!isNew && found->second != line_) {
      Warn("user " + user + " is in line " + std::to_string(found->second) +
           " already: `qvxctl rights` shows which line decides");
    }
    const bool isPattern = host == "*" || host.find("*.") != std::string::npos;
    if (isPattern || IsIPv4(host.c_str()) == 1 || IsIPv6(host.c_str()) == 1) return;
    Warn(
        "a plain host name grants a named user nothing: write an address, \"*.domain\" or \"*\" "
        "for " +
        user + " on " + host);
  }

  void Warn(const std::string& text) { Warn(line_, text); }
  void Warn(unsigned long line, const std::string& text) {
    findings_->push_back({line, Weight::kWarning, text});
  }

  std::vector<RoleMapFinding>* findings_;
  unsigned long line_ = 0;
  std::set<std::string> seen_;
  std::map<std::string, unsigned long> users_;
  std::map<std::string, std::map<std::string, Grant>> shared_;
};

}  // namespace

void CheckEntries(const std::deque<QVAuthFileRecord*>& records,
                  std::vector<RoleMapFinding>* findings) {
  EntryChecker(findings).Collect(records);
}

}  // namespace qvx::ctl
