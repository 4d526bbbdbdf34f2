// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_ROLE_MAP_CHECK_H
#define QVX_CTL_ROLE_MAP_CHECK_H

#include <string>
#include <vector>

#include "ctl/role_map_finding.h"

namespace qvx::ctl {

// The name shown with a weight.
const char* NameOfWeight(Weight weight);

// Checks a map: faults first, then lines, then entries, then the file's place. For a draft (any
// file except the live one), mode and place are reported as notes; `isLive` says that the path is
// a name of the live one. Throws a Failure for a file that cannot be read.
std::vector<RoleMapFinding> CheckRoleMap(const std::string& path, bool isLive);

}  // namespace qvx::ctl

#endif
