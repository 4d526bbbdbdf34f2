// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/file_lines.h"

#include <algorithm>
#include <cstring>

namespace qvx {

size_t LineLength(std::string_view text) {
  const size_t searched = std::min<size_t>(text.size(), kLineLength);
  const void* const end = memchr(text.data(), '\n', searched);
  if (end != nullptr) return static_cast<size_t>(static_cast<const char*>(end) - text.data()) + 1;
  return searched == kLineLength ? kLineLength : 0;
}

LineRead NextLine(BlockReader* file, std::string_view* line) {
  size_t length = LineLength(file->Unread());
  while (length == 0 && file->ReadOn()) {
    length = LineLength(file->Unread());
  }
  if (length == 0) {
    if (file->Failed()) return LineRead::kError;
    length = file->Unread().size();
  }
  *line = {file->Unread().data(), length};
  file->Skip(length);
  return length == 0 ? LineRead::kEnd : LineRead::kLine;
}

}  // namespace qvx
