// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_KEPT_DESCRIPTOR_H
#define QVX_OS_KEPT_DESCRIPTOR_H

#include <sys/types.h>

#include "os/descriptor.h"
#include "os/file_id.h"

namespace qvx {

// A regular file that stays open from one call of the library to the next. In between, the host may
// close any number and open its own file under it: that file is never read or closed as ours.
class KeptDescriptor {
 public:
  KeptDescriptor() = default;
  // Empty when nothing is open, and for what is no regular file: that is then closed.
  explicit KeptDescriptor(Descriptor opened);
  ~KeptDescriptor();
  KeptDescriptor(KeptDescriptor&& other) noexcept = default;
  KeptDescriptor& operator=(KeptDescriptor&& other) noexcept;
  KeptDescriptor(const KeptDescriptor&) = delete;
  KeptDescriptor& operator=(const KeptDescriptor&) = delete;

  explicit operator bool() const { return static_cast<bool>(descriptor_); }
  int Number() const { return descriptor_.Number(); }
  // Whether the number still refers to the file that was opened.
  bool IsOurs() const;

 private:
  Descriptor descriptor_;
  FileId id_ = {};
};

// Whether the library keeps this descriptor: code that closes the process's descriptors by number
// leaves it open.
bool IsKeptDescriptor(int number);

}  // namespace qvx

#endif
