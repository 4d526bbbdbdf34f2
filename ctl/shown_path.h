// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_SHOWN_PATH_H
#define QVX_CTL_SHOWN_PATH_H

#include <algorithm>
#include <string>

namespace qvx::ctl {

// A path as people write it: some names in the layout have a doubled "/".
inline std::string ShownPath(std::string path) {
  const auto isDoubled = [](char one, char next) { return one == '/' && next == '/'; };
  path.erase(std::unique(path.begin(), path.end(), isDoubled), path.end());
  return path;
}

}  // namespace qvx::ctl

#endif
