// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_ROLE_MAP_FINDING_H
#define QVX_CTL_ROLE_MAP_FINDING_H

#include <string>

namespace qvx::ctl {

enum class Weight {
  kFault,    // the library refuses the map and takes its built-in lines
  kWarning,  // the library says nothing, and it is hardly meant
  kNote,     // does not count here
};

struct RoleMapFinding {
  unsigned long line;  // 0 for the file
  Weight weight;
  std::string text;
};

}  // namespace qvx::ctl

#endif
