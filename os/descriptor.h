// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_DESCRIPTOR_H
#define QVX_OS_DESCRIPTOR_H

#include <sys/types.h>

#include "qvxcs/types.h"

namespace qvx {

// An open descriptor, closed when the object is destroyed.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { (void)Close(); }
  Descriptor(Descriptor&& other) noexcept : number_(other.Release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  explicit operator bool() const { return number_ >= 0; }
  int Number() const { return number_; }
  // Hands the number to the caller, who closes it.
  int Release();
  // False when the close failed; the descriptor is closed all the same. Success keeps errno.
  bool Close();

 private:
  int number_ = -1;
};

// Opens a file close-on-exec, with a number of 3 or above: a host that runs with closed standard
// streams may put others in their place at any time. Empty with errno set on failure.
Descriptor OpenDescriptor(const astring* path, int flags, mode_t mode = 0);

// Does so for a descriptor that another call opened close-on-exec: one below 3 is moved up.
Descriptor AboveStandard(int number);

}  // namespace qvx

#endif
