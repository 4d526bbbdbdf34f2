// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/block_reader.h"

#include <unistd.h>

#include <cstring>

#include "os/uninterrupted.h"

namespace qvx {

bool BlockReader::ReadOn() {
  if (ended_) return false;
  end_ -= begin_;
  memmove(block_.get(), block_.get() + begin_, end_);
  begin_ = 0;
  const ssize_t count =
      Uninterrupted([this] { return read(file_, block_.get() + end_, kBlock - end_); });
  if (count > 0) {
    end_ += static_cast<size_t>(count);
    return true;
  }
  ended_ = true;
  failed_ = count < 0;
  return false;
}

}  // namespace qvx
