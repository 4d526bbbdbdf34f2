// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/block_writer.h"

#include <unistd.h>

#include <cstring>

#include "os/uninterrupted.h"

namespace qvx {

bool WriteAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = Uninterrupted([&] { return write(file, text.data(), text.size()); });
    if (count <= 0) return false;
    text.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

bool BlockWriter::Write(std::string_view text) {
  if (text.empty()) return true;
  if (text.size() > kBlock - used_ && !Flush()) return false;
  if (text.size() > kBlock) return WriteAll(file_, text);
  memcpy(block_.get() + used_, text.data(), text.size());
  used_ += text.size();
  return true;
}

bool BlockWriter::Flush() {
  const size_t used = used_;
  used_ = 0;
  return WriteAll(file_, {block_.get(), used});
}

bool CopyRest(BlockReader* in, BlockWriter* out) {
  do {
    if (!out->Write(in->Unread())) return false;
    in->Skip(in->Unread().size());
  } while (in->ReadOn());
  return true;
}

}  // namespace qvx
