// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_NAME_LIST_H
#define QVX_CONFIG_NAME_LIST_H

#include <string_view>

#include "qvxcs/types.h"

namespace qvx {

// A list of names in the caller's buffer, each with its NUL, and one NUL more at its end. Names
// that do not fit are counted only.
class NameList {
 public:
  // `size` is 2 or more.
  NameList(astring* buffer, u32 size);

  void Add(std::string_view name);
  [[nodiscard]] bool IsEmpty() const { return total_ == 0; }
  // Stores the size of all names, which is the size needed where they did not fit; a size beyond 32
  // bits is stored as the largest.
  u32 End(u32* size) const;

 private:
  astring* buffer_;
  u32 size_;
  u64 total_ = 0;
};

}  // namespace qvx

#endif
