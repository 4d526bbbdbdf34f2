// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_stream.h"

#include <cstdio>

namespace qvx {

void RoleMapStream::Open(const std::string& path) {
  if (IsOpen()) {
    failed_ = true;
    return;
  }
  file_ = OpenFile(path.c_str(), "r");
  failed_ = file_ == nullptr;
}

bool RoleMapStream::GetLine(std::wstring& line) {
  line.clear();
  if (failed_ || !IsOpen()) return false;
  for (int byte = getc(file_.get()); byte >= 0 && byte <= 0x7F; byte = getc(file_.get())) {
    if (byte == '\n') return true;
    line.push_back(static_cast<wchar_t>(byte));
  }
  // Deliberate: what stands behind the last newline is lost, and so is the line of a byte above
  // 0x7F with all that follows. Held by RoleMapStream.ALastLineWithoutNewlineIsNoLine.
  failed_ = true;
  return false;
}

}  // namespace qvx
