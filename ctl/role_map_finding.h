// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_ROLE_MAP_FINDING_H
#define QVX_CTL_ROLE_MAP_FINDING_H

#include <string>

namespace qvx::ctl {

enum class Weight {
  kFault,    // the library refuses the map and uses its built-in lines
  kWarning,  // the library reports nothing, but it is probably not intended
  kNote,     // does not count here
};

struct RoleMapFinding {
  unsigned long line;  // 0 for the file
  Weight weight;
  std::string text;
};

}  // namespace qvx::ctl

#endif
