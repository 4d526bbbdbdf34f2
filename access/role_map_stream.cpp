// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

namespace qvx {

void RoleMapStream::Open(const std::string& path) {
  if (IsOpen()) {
    failed_ = true;
    return;
  }
  file_ = KeptDescriptor(OpenDescriptor(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY));
  failed_ = !IsOpen();
}

// A child that was forked with the file open shares the descriptor, so each keeps its own place.
bool RoleMapStream::FillBlock() {
  if (!file_.IsOurs()) return false;
  const ssize_t count =
      TEMP_FAILURE_RETRY(pread(file_.Number(), block_, sizeof(block_), position_));
  if (count <= 0) return false;
  position_ += count;
  next_ = 0;
  end_ = static_cast<size_t>(count);
  return true;
}

// Moves what the block has of the line to its end. Returns the byte that ends it: a newline, one
// above 0x7F, or a NUL when the block ended first.
char RoleMapStream::TakeFromBlock(std::wstring& line) {
  const char* const from = block_ + next_;
  const char* const end = block_ + end_;
  const char* const stop = std::find_if(
      from, end, [](char byte) { return byte == '\n' || static_cast<u8>(byte) > 0x7F; });
  const size_t before = line.size();
  line.resize(before + static_cast<size_t>(stop - from));
  std::copy(from, stop, line.begin() + static_cast<ptrdiff_t>(before));
  next_ = static_cast<size_t>(stop - block_);
  if (stop == end) return '\0';
  ++next_;
  return *stop;
}

bool RoleMapStream::GetLine(std::wstring& line) {
  line.clear();
  if (failed_ || !IsOpen()) return false;
  char ending = '\0';
  while (ending == '\0' && (next_ != end_ || FillBlock())) {
    ending = TakeFromBlock(line);
  }
  if (ending == '\n') return true;
  // Deliberate: what follows the last newline is lost, and so is a line with a byte above 0x7F and
  // all that follows. Held by RoleMapStream.ALastLineWithoutNewlineIsNoLine.
  failed_ = true;
  return false;
}

}  // namespace qvx
