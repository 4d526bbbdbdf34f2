// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "support/loader_error.h"

#include <utility>

namespace {

bool left = false;

}  // namespace

extern "C" {
char* __real_dlerror();

char* __wrap_dlerror() {
  static char text[] = "an error of an earlier call";
  return std::exchange(left, false) ? text : __real_dlerror();
}
}

namespace qvx::test {

void LeaveLoaderError() { left = true; }

}  // namespace qvx::test
