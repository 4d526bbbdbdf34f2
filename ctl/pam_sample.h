// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_PAM_SAMPLE_H
#define QVX_CTL_PAM_SAMPLE_H

#include <string>

namespace qvx::ctl {

// The command that makes the PAM service of logins: from the sample that is installed, or where
// there is none, from its lines.
std::string CommandThatMakesPamService();

}  // namespace qvx::ctl

#endif
