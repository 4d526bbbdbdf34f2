// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "support/host_name_fault.h"

#include <cerrno>
#include <cstddef>

namespace {

bool silent = false;
bool refused = false;

}  // namespace

extern "C" {
int __real_gethostname(char* name, size_t size);

int __wrap_gethostname(char* name, size_t size) {
  if (refused) {
    errno = EFAULT;
    return -1;
  }
  const int result = __real_gethostname(name, size);
  return silent && result != 0 && errno == ENAMETOOLONG ? 0 : result;
}
}

namespace qvx::test {

void CutHostNamesSilently() { silent = true; }
void RefuseHostNames() { refused = true; }

}  // namespace qvx::test
