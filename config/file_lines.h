// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_FILE_LINES_H
#define QVX_CONFIG_FILE_LINES_H

#include <cstddef>
#include <string_view>

#include "qvxcs/types.h"

#include "os/block_reader.h"

// The lines of INI files and of key=value files.
namespace qvx {

// One read returns at most this many characters; a longer line is seen as several lines.
inline constexpr u32 kLineLength = 8449;
// Room for what is made of a line.
inline constexpr u32 kLineRoom = kLineLength + 2;

// The length of the line that the text begins with; 0 when it may go on after the text.
size_t LineLength(std::string_view text);

enum class LineRead { kLine, kEnd, kError };

// The next line with its line end, valid until the next call. NUL bytes of the file count.
LineRead NextLine(BlockReader* file, std::string_view* line);

}  // namespace qvx

#endif
