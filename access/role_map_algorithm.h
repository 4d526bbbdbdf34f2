// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_ROLE_MAP_ALGORITHM_H
#define QVX_ACCESS_ROLE_MAP_ALGORITHM_H

#include <deque>
#include <map>
#include <string>

#include "access/auth_file_record.h"
#include "access/role.h"
#include "zsupt/zarn_critical_section.h"

namespace qvx {

class SystemUser;

// Decides what the role map grants a user. The entry that names the user beats the entries of the
// user's groups, and these beat the entries for anyone, even where they grant less.
class QVXRoleMapAlgorithm : public ZarnSupport::ZarnCriticalSectionObject {
 public:
  static QVXRoleMapAlgorithm& GetInstance();
  // Runs at the process's exit, but not while a thread is using the algorithm.
  static void DeleteInstance();
  QVXRoleMapAlgorithm(const QVXRoleMapAlgorithm&) = delete;
  QVXRoleMapAlgorithm& operator=(const QVXRoleMapAlgorithm&) = delete;

  // Builds the maps, once until they are forgotten. Throws RoleConflict with the record's line when
  // a plain user is given the same host a second time; what was built up to there then stays until
  // the next call.
  void Initialize(const std::deque<QVAuthFileRecord*>& records);

  // Marks the maps as stale: the next Initialize builds them again.
  void ForgetInitialized() { initialized_ = false; }

  // Sets the privileges of the query; 0 when the role map grants nothing. Takes no lock. Looks up
  // in the system only what can still change the result. `user` is the query's user, about whom the
  // caller may already know something.
  void GetUserPrivileges(QVXRole& query, SystemUser& user) const;
  void GetUserPrivileges(QVXRole& query) const;

 private:
  using HostMap = std::map<std::wstring, u32>;
  using NameMap = std::map<std::wstring, HostMap>;

  QVXRoleMapAlgorithm() = default;
  ~QVXRoleMapAlgorithm() = default;

  bool AddRole(const QVXRole& role);
  u32 GrantByUser(const QVXRole& query) const;
  u32 MostOfGroups(const std::wstring& host) const;
  u32 GrantByGroups(const QVXRole& query, SystemUser& user) const;
  u32 GrantByAnyUser(const QVXRole& query) const;

  NameMap userMap_;
  NameMap groupMap_;  // each name with its "+"
  HostMap anyUserMap_;
  bool anyUserNamesAddress_ = false;  // whether a host of anyUserMap_ is an address
  bool initialized_ = false;
};

}  // namespace qvx

#endif
