// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_EXIT_CODE_H
#define QVX_CTL_EXIT_CODE_H

namespace qvx::ctl {

enum ExitCode : int {
  kYes = 0,
  kNo = 1,       // no, refused, a fault or a warning was found
  kUsage = 2,    // the command line is wrong
  kUnknown = 3,  // it could not be determined
};

}  // namespace qvx::ctl

#endif
