// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_FILE_LINES_H
#define QVX_CONFIG_FILE_LINES_H

#include <string_view>

#include "os/block_reader.h"

// The lines of INI files and of key=value files.
namespace qvx {

// One read returns at most this many characters; a longer line is seen as several lines.
inline constexpr size_t kLineLength = 8449;

enum class LineRead { kLine, kEnd, kError };

// The next line with its line end, valid until the next call. NUL bytes of the file count.
LineRead NextLine(BlockReader* file, std::string_view* line);

}  // namespace qvx

#endif
