// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/role_map_faults.h"

#include <string>

#include "base/layout.h"
#include "ctl/output.h"

namespace qvx::ctl {

void WarnOfFaults(const std::vector<RoleMapFault>& faults) {
  for (const RoleMapFault& fault : faults) {
    const std::string line = fault.line == 0 ? "" : ":" + std::to_string(fault.line);
    Warn(kRoleMapPath + line + ": " + TextOfFault(fault.code) +
         "; the library uses its built-in lines");
  }
}

Json JsonOfFaults(const std::vector<RoleMapFault>& faults) {
  Json list = Json::array();
  for (const RoleMapFault& fault : faults) {
    list.push_back({{"line", fault.line}, {"text", TextOfFault(fault.code)}});
  }
  return list;
}

}  // namespace qvx::ctl
