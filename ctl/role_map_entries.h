// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_ROLE_MAP_ENTRIES_H
#define QVX_CTL_ROLE_MAP_ENTRIES_H

#include <deque>
#include <vector>

#include "ctl/role_map_finding.h"

namespace qvx {
class QVAuthFileRecord;
}

namespace qvx::ctl {

// What the records of a faultless map say that is probably not intended.
void CheckEntries(const std::deque<QVAuthFileRecord*>& records,
                  std::vector<RoleMapFinding>* findings);

}  // namespace qvx::ctl

#endif
