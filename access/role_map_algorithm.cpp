// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_algorithm.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "access/account.h"
#include "access/role_map_error.h"
#include "access/wide_text.h"
#include "base/heap.h"
#include "os/host_name.h"
#include "os/ip_address.h"
#include "os/ip_interfaces.h"

namespace qvx {

namespace {

using ZarnSupport::ZarnCriticalSection;
using HostMap = std::map<std::wstring, u32>;

// In a map with this many groups it pays to look for the greatest grant first.
constexpr size_t kFewGroups = 32;
// A user with this many groups for each group in the map is looked up in the groups of these names.
constexpr size_t kManyForEach = 4;

// This machine's address texts, in the order of its interfaces; none, with a count of 0, when they
// are not available.
class LocalAddresses {
 public:
  LocalAddresses() : list_(SUPTIntfHostGetHostIPAddrList(&count_)) {}
  u32 Count() const { return count_; }
  const astring* At(u32 index) const { return list_.get() + size_t{index} * kAddressSlotBytes; }

 private:
  u32 count_ = 0;
  HeapArray<astring> list_;
};

// Whether the key is the text of an address. Only then are the machine's own looked up.
bool IsAddress(const std::wstring& key) {
  if (key.find_first_not_of(L"0123456789ABCDEFabcdef:.") != std::wstring::npos) return false;
  const std::string text(key.begin(), key.end());
  u8 network[sizeof(in6_addr)];
  return inet_pton(AF_INET, text.c_str(), network) == 1 ||
         inet_pton(AF_INET6, text.c_str(), network) == 1;
}

// "*." and the computer's domain name, or "*." alone where there is none.
std::wstring DomainKey() {
  const HeapArray<astring> domain(OSGetComputerDomainName());
  const std::optional<std::wstring> wide = domain ? Widen(domain.get()) : std::nullopt;
  return kDomainPrefix + LowerCase(wide.value_or(std::wstring()));
}

// Deliberate: the host is searched for anywhere in the pattern, so a part of a name is found and
// the empty host is in every pattern. Held by RoleMapAlgorithm.TheEmptyHostIsInEveryDomainPattern.
bool IsDomainPatternOf(const std::wstring& key, const std::wstring& host) {
  return key.find(kDomainPrefix) != std::wstring::npos && key.find(host) != std::wstring::npos;
}

// The grant of exactly this key, or 0.
u32 GrantOf(const HostMap& hosts, const std::wstring& key) {
  const auto found = hosts.find(key);
  return found == hosts.end() ? QVX_PRIV_NONE : found->second;
}

// Whether any key is a domain's: they all begin alike, so they are neighbours.
bool NamesADomain(const HostMap& hosts) {
  const auto first = hosts.lower_bound(kDomainPrefix);
  return first != hosts.end() && first->first.starts_with(kDomainPrefix);
}

u32 GrantOfDomain(const HostMap& hosts) {
  const u32 grant = NamesADomain(hosts) ? GrantOf(hosts, DomainKey()) : QVX_PRIV_NONE;
  return grant != QVX_PRIV_NONE ? grant : GrantOf(hosts, kAnyHost);
}

// For each address the first key that is equal to it decides, and for all of them the greatest
// grant.
u32 GrantOfAddresses(const HostMap& hosts) {
  HostMap::const_iterator first = hosts.begin();
  while (first != hosts.end() && !IsAddress(first->first)) {
    ++first;
  }
  if (first == hosts.end()) return QVX_PRIV_NONE;
  std::deque<std::pair<std::string, u32>> keys;
  for (; first != hosts.end(); ++first) {
    if (IsAddress(first->first)) {
      keys.emplace_back(std::string(first->first.begin(), first->first.end()), first->second);
    }
  }
  const LocalAddresses addresses;
  u32 grant = QVX_PRIV_NONE;
  for (u32 at = 0; at < addresses.Count(); ++at) {
    const auto equal = std::find_if(keys.begin(), keys.end(), [&addresses, at](const auto& key) {
      return CheckIPEqual(key.first.c_str(), addresses.At(at)) == 1;
    });
    if (equal != keys.end()) grant = std::max(grant, equal->second);
  }
  return grant;
}

u32 GrantOfDomainPattern(const HostMap& hosts, const std::wstring& host) {
  for (const auto& [key, privileges] : hosts) {
    if (IsDomainPatternOf(key, host)) return privileges;
  }
  return QVX_PRIV_NONE;
}

// What the entries of one group grant on the host.
u32 GrantOfGroup(const HostMap& hosts, const std::wstring& host) {
  u32 grant = std::max(GrantOf(hosts, host), GrantOf(hosts, kAnyHost));
  for (const auto& [key, privileges] : hosts) {
    if (IsDomainPatternOf(key, host)) grant = std::max(grant, privileges);
  }
  return grant;
}

// "+" and the group's name; empty where the system has no name, or one that cannot be widened.
std::wstring KeyOfGroup(gid_t group) {
  const HeapArray<astring> name = NameOfGroup(group);
  const std::optional<std::wstring> wide = name ? Widen(name.get()) : std::nullopt;
  return wide ? kGroupPrefix + *wide : std::wstring();
}

// Whether the user is in the group that the system finds by the name of the key. When this is
// false, the user may still be in another group of that name.
bool IsInGroupOfKey(const std::wstring& key, std::span<const gid_t> groups) {
  const std::optional<std::string> name = Narrow(key.substr(1));
  const std::optional<gid_t> group = name ? FindGroup(name->c_str()) : std::nullopt;
  return group && std::find(groups.begin(), groups.end(), *group) != groups.end() &&
         KeyOfGroup(*group) == key;
}

}  // namespace

QVXRoleMapAlgorithm& QVXRoleMapAlgorithm::GetInstance() {
  static QVXRoleMapAlgorithm* const algorithm = new QVXRoleMapAlgorithm;
  return *algorithm;
}

void QVXRoleMapAlgorithm::DeleteInstance() { delete &GetInstance(); }

void QVXRoleMapAlgorithm::Initialize(const std::deque<QVAuthFileRecord*>& records) {
  const ZarnCriticalSection section(*this);
  // Deliberate: while the maps are in force other records change nothing, not even the default
  // records, so the file's roles decide logins too. Held by
  // UserRights.MapsOfTheFileInForceAnswerLoginsToo.
  if (initialized_) return;
  userMap_.clear();
  groupMap_.clear();
  anyUserMap_.clear();
  anyUserNamesAddress_ = false;
  std::deque<QVXRole*> roles;
  for (const QVAuthFileRecord* record : records) {
    record->GetRoles(roles);
    for (const QVXRole* role : roles) {
      if (AddRole(*role)) continue;
      throw QVXRoleMapFileReaderException(RoleConflict,
                                          static_cast<unsigned long>(record->GetLineNumber()));
    }
  }
  initialized_ = true;
}

// False when a plain user has this host already. Repeated grants to anyone and to groups merge: the
// higher role wins, whatever their order.
bool QVXRoleMapAlgorithm::AddRole(const QVXRole& role) {
  const bool isGroup = !role.user.empty() && role.user.front() == kGroupPrefix;
  if (role.user != kAnyone && !isGroup) {
    return userMap_[role.user].emplace(role.host, role.privileges).second;
  }
  if (!isGroup && IsAddress(role.host)) anyUserNamesAddress_ = true;
  u32& grant = isGroup ? groupMap_[role.user][role.host] : anyUserMap_[role.host];
  grant = std::max(grant, role.privileges);
  return true;
}

void QVXRoleMapAlgorithm::GetUserPrivileges(QVXRole& query) const {
  const std::optional<std::string> name = Narrow(query.user);
  SystemUser user(name ? name->c_str() : nullptr);
  GetUserPrivileges(query, user);
}

void QVXRoleMapAlgorithm::GetUserPrivileges(QVXRole& query, SystemUser& user) const {
  // Deliberate: an entry that names the user decides, even where it grants less than a group's or
  // anyone's entry does. Held by RoleMapAlgorithm.APersonalEntryBeatsAGreaterGroupEntry.
  query.privileges = GrantByUser(query);
  if (query.privileges != QVX_PRIV_NONE) return;
  query.privileges = GrantByGroups(query, user);
  if (query.privileges == QVX_PRIV_NONE) query.privileges = GrantByAnyUser(query);
}

u32 QVXRoleMapAlgorithm::GrantByUser(const QVXRole& query) const {
  const auto found = userMap_.find(query.user);
  if (found == userMap_.end()) return QVX_PRIV_NONE;
  const HostMap& hosts = found->second;
  // Deliberate: the plain host name is no key of this phase, though it is one for groups and for
  // anyone; and addresses come before the domain here, after the host name there. Held by
  // RoleMapAlgorithm.AUserEntryForThePlainHostNameGrantsNothing.
  if (const u32 grant = GrantOfDomainPattern(hosts, query.host)) return grant;
  if (const u32 grant = GrantOfAddresses(hosts)) return grant;
  return GrantOfDomain(hosts);
}

// The most that any group is granted on the host, or more.
u32 QVXRoleMapAlgorithm::MostOfGroups(const std::wstring& host) const {
  if (groupMap_.size() > kFewGroups) return QVX_PRIV_ADMINISTRATOR;
  u32 most = QVX_PRIV_NONE;
  for (const auto& [key, hosts] : groupMap_) {
    most = std::max(most, GrantOfGroup(hosts, host));
  }
  return most;
}

// The grants of all groups count, the greatest wins; the search ends once it is reached.
u32 QVXRoleMapAlgorithm::GrantByGroups(const QVXRole& query, SystemUser& user) const {
  const u32 most = MostOfGroups(query.host);
  if (groupMap_.empty() || most == QVX_PRIV_NONE) return QVX_PRIV_NONE;
  const std::span<const gid_t> groups = user.Groups();
  u32 grant = QVX_PRIV_NONE;
  // Naming each of hundreds of groups is slow, so the few groups of the map come first.
  if (groupMap_.size() <= std::min(kFewGroups, groups.size() / kManyForEach)) {
    for (const auto& [key, hosts] : groupMap_) {
      const u32 grantOfKey = GrantOfGroup(hosts, query.host);
      if (grantOfKey > grant && IsInGroupOfKey(key, groups)) grant = grantOfKey;
    }
  }
  for (size_t at = 0; at < groups.size() && grant < most; ++at) {
    const auto found = groupMap_.find(KeyOfGroup(groups[at]));
    if (found == groupMap_.end()) continue;
    grant = std::max(grant, GrantOfGroup(found->second, query.host));
  }
  return grant;
}

u32 QVXRoleMapAlgorithm::GrantByAnyUser(const QVXRole& query) const {
  if (const u32 grant = GrantOf(anyUserMap_, query.host)) return grant;
  u32 grant = QVX_PRIV_NONE;
  if (anyUserNamesAddress_) {
    const LocalAddresses addresses;
    for (u32 at = 0; at < addresses.Count(); ++at) {
      const std::optional<std::wstring> address = Widen(addresses.At(at));
      if (address) grant = std::max(grant, GrantOf(anyUserMap_, *address));
    }
  }
  return grant != QVX_PRIV_NONE ? grant : GrantOfDomain(anyUserMap_);
}

}  // namespace qvx
