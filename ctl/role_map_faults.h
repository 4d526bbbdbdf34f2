// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_ROLE_MAP_FAULTS_H
#define QVX_CTL_ROLE_MAP_FAULTS_H

#include <vector>

#include "ctl/json.h"
#include "ctl/role_map_records.h"

// How an answer that the live map decides shows the map's faults.
namespace qvx::ctl {

// One warning each.
void WarnOfFaults(const std::vector<RoleMapFault>& faults);

Json JsonOfFaults(const std::vector<RoleMapFault>& faults);

}  // namespace qvx::ctl

#endif
