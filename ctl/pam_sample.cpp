// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/pam_sample.h"

#include <filesystem>

#include "ctl/call_failure.h"

namespace qvx::ctl {
namespace {

constexpr char kPackagedSample[] = "/usr/share/doc/libqvxcs-common/examples/qvauth";
constexpr char kSampleFromProgram[] = QVXCS_EXAMPLES_FROM_PROGRAM "/pam/qvauth";

// An installation can be moved, so its sample is looked for from the program's place.
std::string InstalledSample() {
  std::error_code failure;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", failure);
  if (failure) return "";
  return (program.parent_path() / kSampleFromProgram).lexically_normal();
}

}  // namespace

std::string CommandThatMakesPamService() {
  for (const std::string& sample : {std::string(kPackagedSample), InstalledSample()}) {
    if (ReasonNotReadable(sample) == 0) return "install -m 0644 " + sample + " /etc/pam.d/qvauth";
  }
  return "printf 'auth required pam_unix.so\\naccount required pam_unix.so\\n' >/etc/pam.d/qvauth";
}

}  // namespace qvx::ctl
