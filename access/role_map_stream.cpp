// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_stream.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace qvx {

void RoleMapStream::Open(const std::string& path) {
  if (IsOpen()) {
    failed_ = true;
    return;
  }
  file_ = KeptDescriptor(OpenDescriptor(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY));
  failed_ = !IsOpen();
  next_ = end_ = 0;
  position_ = 0;
}

// A child that was forked with the file open shares the descriptor, so each keeps its own place.
int RoleMapStream::NextByte() {
  if (next_ == end_) {
    if (!file_.IsOurs()) return EOF;
    const ssize_t count =
        TEMP_FAILURE_RETRY(pread(file_.Number(), block_, sizeof block_, position_));
    if (count <= 0) return EOF;
    position_ += count;
    next_ = 0;
    end_ = static_cast<size_t>(count);
  }
  return static_cast<u8>(block_[next_++]);
}

bool RoleMapStream::GetLine(std::wstring& line) {
  line.clear();
  if (failed_ || !IsOpen()) return false;
  for (int byte = NextByte(); byte >= 0 && byte <= 0x7F; byte = NextByte()) {
    if (byte == '\n') return true;
    line.push_back(static_cast<wchar_t>(byte));
  }
  // Deliberate: what stands behind the last newline is lost, and so is the line of a byte above
  // 0x7F with all that follows. Held by RoleMapStream.ALastLineWithoutNewlineIsNoLine.
  failed_ = true;
  return false;
}

}  // namespace qvx
