// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_DOCTOR_CHECKS_H
#define QVX_CTL_DOCTOR_CHECKS_H

#include <string>
#include <vector>

namespace qvx::ctl {

enum class Health { kGood, kWarning, kFault };

struct Diagnosis {
  std::string part;
  Health health;
  std::string text;
  std::string mend;  // mostly a command; empty where nothing is wrong or none helps
};

// Each looks at one part of the installation and changes nothing.
Diagnosis CheckFolders();
Diagnosis CheckLockFile();
Diagnosis CheckProcessRights();
Diagnosis CheckLiveRoleMap();
Diagnosis CheckPamService();
Diagnosis CheckCommandLog();
Diagnosis CheckLocale();
Diagnosis CheckIpcBase();
Diagnosis CheckPackageFiles();

}  // namespace qvx::ctl

#endif
