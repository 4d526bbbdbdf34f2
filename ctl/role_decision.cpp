// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/role_decision.h"

#include <cstdio>
#include <cstring>
#include <cwchar>
#include <optional>
#include <tuple>
#include <utility>

#include "qvxcs/status.h"

#include "access/auth_file_record.h"
#include "access/os_privilege.h"
#include "access/role.h"
#include "access/role_map_algorithm.h"
#include "access/user_rights.h"
#include "ctl/output.h"
#include "os/host_name.h"
#include "os/ip_support.h"

namespace qvx::ctl {
namespace {

using Records = std::deque<QVAuthFileRecord*>;

constexpr unsigned kRankBits = 24;
constexpr u32 kMostEntries = (u32{1} << kRankBits) - 1;
constexpr size_t kHostNameRoom = 65;

std::optional<std::wstring> Widen(const std::string& text) {
  std::wstring wide(text.size() + 1, L'\0');
  const char* from = text.c_str();
  std::mbstate_t state{};
  const size_t length = std::mbsrtowcs(wide.data(), &from, wide.size(), &state);
  if (length == static_cast<size_t>(-1)) return std::nullopt;
  wide.resize(length);
  return wide;
}

std::string Narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

std::string ThisHost() {
  (void)LoadIPSupt();
  astring name[kHostNameRoom] = {};
  u32 size = sizeof(name);
  if (GetIPHostName(name, &size) != SM_STATUS_SUCCESS) return "";
  return {name, strnlen(name, sizeof(name))};
}

// The entries of all records in their order.
std::vector<QVXRole*> EntriesOf(const Records& records) {
  std::vector<QVXRole*> entries;
  for (const QVAuthFileRecord* record : records) {
    std::deque<QVXRole*> roles;
    record->GetRoles(roles);
    entries.insert(entries.end(), roles.begin(), roles.end());
  }
  return entries;
}

unsigned long LineOf(const Records& records, const QVXRole* wanted) {
  for (const QVAuthFileRecord* record : records) {
    std::deque<QVXRole*> roles;
    record->GetRoles(roles);
    for (const QVXRole* role : roles) {
      if (role == wanted) return static_cast<unsigned long>(record->GetLineNumber());
    }
  }
  return 0;
}

// Lends each entry a rank below its role while the algorithm runs. The algorithm only compares what
// an entry grants, so the greater role still wins and the answer names its entry; among equals the
// first one.
class RankedEntries {
 public:
  explicit RankedEntries(const std::vector<QVXRole*>& entries) : entries_(entries) {
    if (entries.size() >= kMostEntries) throw Failure(kUnknown, "rights: too many entries");
    u32 rank = kMostEntries;
    for (QVXRole* entry : entries_) {
      entry->privileges = entry->privileges << kRankBits | rank--;
    }
  }
  ~RankedEntries() {
    for (QVXRole* entry : entries_) {
      entry->privileges >>= kRankBits;
    }
  }
  RankedEntries(const RankedEntries&) = delete;
  RankedEntries& operator=(const RankedEntries&) = delete;

  [[nodiscard]] const QVXRole* EntryOf(u32 answer) const {
    return answer == 0 ? nullptr : entries_[kMostEntries - (answer & kMostEntries)];
  }

 private:
  const std::vector<QVXRole*>& entries_;
};

void UseRecords(const Records& records) {
  QVXRoleMapAlgorithm& algorithm = QVXRoleMapAlgorithm::GetInstance();
  algorithm.ForgetInitialized();
  algorithm.Initialize(records);
}

void AskMap(const Records& records, RoleDecision* decision) {
  const std::optional<std::wstring> user = Widen(decision->user);
  const std::optional<std::wstring> host = Widen(decision->host);
  if (!user || !host) return;
  const std::vector<QVXRole*> entries = EntriesOf(records);
  const QVXRole* decided = nullptr;
  {
    const RankedEntries ranked(entries);
    UseRecords(records);
    QVXRole query{*user, LowerCase(*host), QVX_PRIV_NONE};
    QVXRoleMapAlgorithm::GetInstance().GetUserPrivileges(query);
    decided = ranked.EntryOf(query.privileges);
  }
  if (decided == nullptr) return;
  decision->byMap = decided->privileges;
  decision->line = LineOf(records, decided);
  decision->entry = Narrow(decided->user) + " " + Narrow(decided->host);
}

// The first two tokens, each empty where there is none.
std::pair<std::string, std::string> TokensOf(const std::string& login, const char* separator) {
  std::string text = login;  // strtok_r() writes into it
  char* rest = nullptr;
  const char* const first = strtok_r(text.data(), separator, &rest);
  const char* const second = first == nullptr ? nullptr : strtok_r(nullptr, separator, &rest);
  return {first == nullptr ? "" : first, second == nullptr ? "" : second};
}

// As a login is split: "@" before the backslash.
void SplitLogin(const std::string& login, RoleDecision* decision) {
  if (login.find('@') != std::string::npos) {
    std::tie(decision->user, decision->host) = TokensOf(login, "@");
  } else if (login.find('\\') != std::string::npos) {
    std::tie(decision->host, decision->user) = TokensOf(login, "\\");
  } else {
    decision->user = login;
    decision->host = ThisHost();
  }
}

}  // namespace

RoleDecision DecideRights(const std::string& login) {
  RoleDecision decision;
  SplitLogin(login, &decision);
  const RoleMapRecords map = RoleMapRecords::OfLiveMap();
  decision.faults = map.Faults();
  const bool isUsed = decision.faults.empty();
  const Records records = isUsed ? map.List() : QVAuthFileReader::GetInstance().GetDefaultRecords();
  AskMap(records, &decision);
  UseRecords(records);
  std::string text = login;
  decision.rights = get_user_rights(text.data());
  decision.bySystem = GetOSPrivilege(text.c_str());
  return decision;
}

std::string TextOfRights(u32 rights) {
  const char* level = "none";
  if ((rights & 0xFFFF) == QVX_PRIV_ADMINISTRATOR) level = "administrator";
  if ((rights & 0xFFFF) == QVX_PRIV_POWERUSER) level = "poweruser";
  if ((rights & 0xFFFF) == QVX_PRIV_USER) level = "user";
  char number[16];
  (void)snprintf(number, sizeof(number), " (0x%X)", rights);
  const char* const root = (rights & QVX_PRIV_ROOT) != 0 ? ", superuser" : "";
  return std::string(level) + root + number;
}

}  // namespace qvx::ctl
