// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_UNINTERRUPTED_H
#define QVX_OS_UNINTERRUPTED_H

#include <cerrno>

namespace qvx {

// The result of a system call, made again as long as a signal interrupts it.
template <typename Call>
auto Uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) {
    result = call();
  }
  return result;
}

}  // namespace qvx

#endif
