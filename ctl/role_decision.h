// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_ROLE_DECISION_H
#define QVX_CTL_ROLE_DECISION_H

#include <string>
#include <vector>

#include "qvxcs/types.h"

#include "ctl/role_map_records.h"

namespace qvx::ctl {

struct RoleDecision {
  std::string user;                  // as the login was split
  std::string host;                  // lower-case; the one looked up in the map
  std::vector<RoleMapFault> faults;  // of the map: then the built-in lines decided
  u32 byMap = 0;
  unsigned long line = 0;  // of the map; 0 for a built-in line or none
  std::string entry;       // "USERS HOSTS" of the entry that decided; empty for none
  u32 bySystem = 0;
  u32 rights = 0;  // of a login
};

// What a login of "user", "user@host" or "domain\user" gets from the live map and the system. The
// library's own reader and algorithm answer; nothing is attached and nothing logged. Throws a
// Failure when this user may not read the map.
RoleDecision DecideRights(const std::string& login);

// "administrator (0x7)".
std::string TextOfRights(u32 rights);

}  // namespace qvx::ctl

#endif
