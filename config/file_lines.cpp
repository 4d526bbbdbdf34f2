// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/file_lines.h"

namespace qvx {
namespace {

// The length of the line that the text begins with; 0 when it may go on after the text.
size_t LineLength(std::string_view text) {
  const std::string_view piece = text.substr(0, kLineLength);
  const size_t end = piece.find('\n');
  if (end != std::string_view::npos) return end + 1;
  return piece.size() == kLineLength ? kLineLength : 0;
}

}  // namespace

LineRead NextLine(BlockReader* file, std::string_view* line) {
  size_t length = LineLength(file->Unread());
  while (length == 0 && file->ReadOn()) {
    length = LineLength(file->Unread());
  }
  if (length == 0) {
    if (file->Failed()) return LineRead::kError;
    length = file->Unread().size();
  }
  *line = file->Unread().substr(0, length);
  file->Skip(length);
  return length == 0 ? LineRead::kEnd : LineRead::kLine;
}

}  // namespace qvx
