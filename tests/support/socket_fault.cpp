// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "support/socket_fault.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstddef>

namespace {

std::array<bool, AF_MAX> refused{};
int lastType = 0;

}  // namespace

extern "C" {
int __real_socket(int family, int type, int protocol);

int __wrap_socket(int family, int type, int protocol) {
  lastType = type;
  if (refused.at(static_cast<size_t>(family))) {
    errno = EAFNOSUPPORT;
    return -1;
  }
  return __real_socket(family, type, protocol);
}
}

namespace qvx::test {

void RefuseFamily(int family) { refused.at(static_cast<size_t>(family)) = true; }

int LastSocketType() { return lastType; }

}  // namespace qvx::test
