// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_algorithm.h"

#include <grp.h>

#include <algorithm>
#include <optional>

#include "access/account.h"
#include "access/role_map_error.h"
#include "base/heap.h"
#include "os/host_name.h"
#include "os/ip_address.h"
#include "os/ip_interfaces.h"
#include "zsupt/zarn_locale_factory.h"
#include "zsupt/zarn_string_utilities.h"

namespace qvx {

// This machine's address texts, in the order of its interfaces; none when they cannot be had.
class LocalAddresses {
 public:
  LocalAddresses() : list_(SUPTIntfHostGetHostIPAddrList(&count_)) {}
  u32 Count() const { return list_ ? count_ : 0; }
  const astring* At(u32 index) const { return list_.get() + size_t{index} * kAddressSlotBytes; }

 private:
  u32 count_ = 0;
  HeapArray<astring> list_;
};

namespace {

using ZarnSupport::ZarnCriticalSection;
using ZarnSupport::ZarnLocaleFactory;
using ZarnSupport::ZarnStringUtilities;

constexpr u32 kGroupRoom = 100;

std::optional<std::wstring> Widen(const astring* text) {
  return ZarnStringUtilities::widen(text, ZarnLocaleFactory::getDefaultLocale());
}

// An 8-bit text ends at its NUL, so a text with one inside has no 8-bit form.
std::optional<std::string> Narrow(const std::wstring& text) {
  if (text.find(L'\0') != std::wstring::npos) return std::nullopt;
  return ZarnStringUtilities::narrow(text, ZarnLocaleFactory::getDefaultLocale());
}

// "*." and the computer's domain name, or "*." alone where there is none.
std::wstring DomainKey() {
  const HeapArray<astring> domain(OSGetComputerDomainName());
  const std::optional<std::wstring> wide = domain ? Widen(domain.get()) : std::nullopt;
  return kDomainPrefix + LowerCase(wide.value_or(std::wstring()));
}

// Deliberate: the host is sought anywhere in the pattern, so that a part of a name is found and the
// empty host is in every pattern. Held by RoleMapAlgorithm.TheEmptyHostIsInEveryDomainPattern.
bool IsDomainPatternOf(const std::wstring& key, const std::wstring& host) {
  return key.find(kDomainPrefix) != std::wstring::npos && key.find(host) != std::wstring::npos;
}

void Raise(QVXRole& query, u32 privileges) {
  query.privileges = std::max(query.privileges, privileges);
}

// The grant of this very key, or 0.
u32 GrantOf(const std::map<std::wstring, u32>& hosts, const std::wstring& key) {
  const auto found = hosts.find(key);
  return found == hosts.end() ? QVX_PRIV_NONE : found->second;
}

u32 GrantOfDomain(const std::map<std::wstring, u32>& hosts, const std::wstring& domainKey) {
  const u32 grant = GrantOf(hosts, domainKey);
  return grant != QVX_PRIV_NONE ? grant : GrantOf(hosts, kAnyHost);
}

u32 GrantOfAddress(const std::map<std::wstring, u32>& hosts, const astring* address) {
  for (const auto& [key, privileges] : hosts) {
    const std::optional<std::string> text = Narrow(key);
    if (text && CheckIPEqual(text->c_str(), address) == 1) return privileges;
  }
  return QVX_PRIV_NONE;
}

u32 GrantOfDomainPattern(const std::map<std::wstring, u32>& hosts, const std::wstring& host) {
  for (const auto& [key, privileges] : hosts) {
    if (IsDomainPatternOf(key, host)) return privileges;
  }
  return QVX_PRIV_NONE;
}

struct GroupList {
  HeapArray<gid_t> groups;
  int count = 0;
};

// Deliberate: without memory for the list the user has no groups, so that the entries for anyone
// decide, also where they grant more. Held by
// RoleMapAlgorithm.WithoutMemoryForTheGroupListOnlyTheAnyUserEntriesCount.
GroupList GroupsOf(const astring* user, gid_t primary) {
  GroupList list{HeapArray<gid_t>(static_cast<gid_t*>(AllocMem(kGroupRoom * sizeof(gid_t)))), 0};
  int count = kGroupRoom;
  if (!list.groups) return list;
  if (getgrouplist(user, primary, list.groups.get(), &count) < 0) {
    const u64 bytes = static_cast<u64>(std::max(count, 1)) * sizeof(gid_t);
    if (bytes > UINT32_MAX) return list;
    void* grown = ReAllocMem(list.groups.get(), static_cast<u32>(bytes));
    if (grown == nullptr) return list;
    (void)list.groups.release();
    list.groups.reset(static_cast<gid_t*>(grown));
    count = std::max(count, 1);
    if (getgrouplist(user, primary, list.groups.get(), &count) < 0) return list;
  }
  list.count = count;
  return list;
}

// "+" and its name for each of the user's groups; none for an unknown user.
std::deque<std::wstring> GroupKeysOf(const std::wstring& user) {
  std::deque<std::wstring> keys;
  Account account{};
  const std::optional<std::string> name = Narrow(user);
  if (!name || !FindAccount(name->c_str(), &account)) return keys;
  const GroupList list = GroupsOf(name->c_str(), account.group);
  for (int at = 0; at < list.count; ++at) {
    const HeapArray<astring> group = NameOfGroup(list.groups[static_cast<size_t>(at)]);
    const std::optional<std::wstring> wide = group ? Widen(group.get()) : std::nullopt;
    if (wide) keys.push_back(kGroupPrefix + *wide);
  }
  return keys;
}

}  // namespace

QVXRoleMapAlgorithm& QVXRoleMapAlgorithm::GetInstance() {
  static QVXRoleMapAlgorithm* const algorithm = new QVXRoleMapAlgorithm;
  return *algorithm;
}

void QVXRoleMapAlgorithm::DeleteInstance() { delete &GetInstance(); }

void QVXRoleMapAlgorithm::Initialize(const std::deque<QVAuthFileRecord*>& records) {
  const ZarnCriticalSection section(*this);
  // Deliberate: while the maps are in force other records change nothing, the default records too,
  // so that the file's roles answer logins as well. Held by
  // UserRights.MapsOfTheFileInForceAnswerLoginsToo.
  if (initialized_) return;
  userMap_.clear();
  groupMap_.clear();
  anyUserMap_.clear();
  for (const QVAuthFileRecord* record : records) {
    std::deque<QVXRole*> roles;
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
// higher role wins, in whichever order they stand.
bool QVXRoleMapAlgorithm::AddRole(const QVXRole& role) {
  const bool isGroup = !role.user.empty() && role.user.front() == kGroupPrefix;
  if (role.user != kAnyone && !isGroup) {
    return userMap_[role.user].emplace(role.host, role.privileges).second;
  }
  u32& grant = isGroup ? groupMap_[role.user][role.host] : anyUserMap_[role.host];
  grant = std::max(grant, role.privileges);
  return true;
}

void QVXRoleMapAlgorithm::GetUserPrivileges(QVXRole& query) const {
  query.privileges = QVX_PRIV_NONE;
  const LocalAddresses addresses;
  const std::wstring domainKey = DomainKey();
  // Deliberate: an entry that names the user decides, also where it grants less than a group's or
  // anyone's does. Held by RoleMapAlgorithm.APersonalEntryBeatsAGreaterGroupEntry.
  if (DecideByUser(query, addresses, domainKey)) return;
  RaiseByGroups(query);
  if (query.privileges == QVX_PRIV_NONE) DecideByAnyUser(query, addresses, domainKey);
}

// True when an entry that names the user grants something here.
bool QVXRoleMapAlgorithm::DecideByUser(QVXRole& query, const LocalAddresses& addresses,
                                       const std::wstring& domainKey) const {
  const auto found = userMap_.find(query.user);
  if (found == userMap_.end()) return false;
  const HostMap& hosts = found->second;
  // Deliberate: the plain host name is no key of this phase, though it is one for groups and for
  // anyone; and addresses come before the domain here, behind the host name there. Held by
  // RoleMapAlgorithm.AUserEntryForThePlainHostNameGrantsNothing.
  query.privileges = GrantOfDomainPattern(hosts, query.host);
  if (query.privileges != QVX_PRIV_NONE) return true;
  for (u32 at = 0; at < addresses.Count(); ++at) {
    Raise(query, GrantOfAddress(hosts, addresses.At(at)));
  }
  if (query.privileges != QVX_PRIV_NONE) return true;
  query.privileges = GrantOfDomain(hosts, domainKey);
  return query.privileges != QVX_PRIV_NONE;
}

void QVXRoleMapAlgorithm::RaiseByGroups(QVXRole& query) const {
  for (const std::wstring& group : GroupKeysOf(query.user)) {
    const auto found = groupMap_.find(group);
    if (found == groupMap_.end()) continue;
    for (const auto& [key, privileges] : found->second) {
      if (IsDomainPatternOf(key, query.host)) Raise(query, privileges);
    }
    Raise(query, GrantOf(found->second, query.host));
    Raise(query, GrantOf(found->second, kAnyHost));
  }
}

void QVXRoleMapAlgorithm::DecideByAnyUser(QVXRole& query, const LocalAddresses& addresses,
                                          const std::wstring& domainKey) const {
  query.privileges = GrantOf(anyUserMap_, query.host);
  if (query.privileges != QVX_PRIV_NONE) return;
  for (u32 at = 0; at < addresses.Count(); ++at) {
    const std::optional<std::wstring> address = Widen(addresses.At(at));
    if (address) Raise(query, GrantOf(anyUserMap_, *address));
  }
  if (query.privileges == QVX_PRIV_NONE) query.privileges = GrantOfDomain(anyUserMap_, domainKey);
}

}  // namespace qvx
