// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_SECRET_TEXT_H
#define QVX_ACCESS_SECRET_TEXT_H

#include <cstring>

#include "qvxcs/types.h"

#include "base/heap.h"

namespace qvx {

// A heap text whose whole room is overwritten before it is freed.
class SecretText {
 public:
  SecretText() = default;
  ~SecretText() { Wipe(); }
  SecretText(const SecretText&) = delete;
  SecretText& operator=(const SecretText&) = delete;

  // Room of exactly this many bytes, all 0; false without enough memory.
  bool Alloc(u64 room) {
    Wipe();
    text_ = AllocArray<astring>(room);
    room_ = text_ ? static_cast<size_t>(room) : 0;
    if (text_) memset(text_.get(), 0, room_);
    return text_ != nullptr;
  }

  astring* Get() const { return text_.get(); }

 private:
  void Wipe() {
    if (text_) explicit_bzero(text_.get(), room_);
    text_.reset();
  }

  HeapArray<astring> text_;
  size_t room_ = 0;
};

}  // namespace qvx

#endif
