// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace qvx {
namespace {

constexpr int kFirstOwn = STDERR_FILENO + 1;

}  // namespace

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this == &other) return *this;
  (void)Close();
  number_ = other.Release();
  return *this;
}

int Descriptor::Release() {
  const int number = number_;
  number_ = -1;
  return number;
}

bool Descriptor::Close() {
  if (number_ < 0) return true;
  const int reason = errno;
  const bool closed = close(Release()) == 0;
  if (closed) errno = reason;
  return closed;
}

Descriptor OpenDescriptor(const astring* path, int flags, mode_t mode) {
  return AboveStandard(open(path, flags | O_CLOEXEC, mode));
}

Descriptor AboveStandard(int number) {
  Descriptor opened(number);
  if (number < 0 || number >= kFirstOwn) return opened;
  return Descriptor(fcntl(number, F_DUPFD_CLOEXEC, kFirstOwn));
}

}  // namespace qvx
