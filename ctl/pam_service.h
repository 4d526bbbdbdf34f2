// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_PAM_SERVICE_H
#define QVX_CTL_PAM_SERVICE_H

#include <string>
#include <vector>

namespace qvx::ctl {

struct PamFinding {
  std::string file;
  unsigned line;  // the one that names the module
  std::string module;
  std::string silencedBy;  // the argument that silences the module; empty where it has none
};

// The file of a PAM service; empty where there is none.
std::string FindPamService(const std::string& service);

// The modules of a service, its included files too, that send the user messages when a password is
// checked. A login through the library fails on a message unless the module continues without a
// reply; the failure of an optional module does not count.
std::vector<PamFinding> FindTalkingModules(const std::string& service);

}  // namespace qvx::ctl

#endif
