// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_LINES_H
#define QVX_CONFIG_INI_LINES_H

#include <cstdio>

#include "qvxcs/types.h"

#include "base/heap.h"

// The line rules that the INI reader and the INI writer share.
namespace qvx {

// A read takes at most this many characters; a longer line is seen as several lines.
inline constexpr u32 kLineLength = 8449;
inline constexpr u32 kLineRoom = 8451;
// Section names are cut at 255 characters.
inline constexpr u32 kNameRoom = 256;

// The status for want of memory, and what ParseForSection says of a line that is no header.
inline constexpr u32 kOutOfMemory = 0xFFFFFFFF;
inline constexpr u32 kNotAHeader = 0xFFFFFFFF;

// One line as read, with its line end and a NUL behind it. NUL bytes of the file count in `length`;
// the rules below see the text up to the first of them.
struct IniLine {
  u32 length;
  astring text[kLineRoom];
  astring name[kNameRoom];
};

// The type codes; those from kFirstFixed on have a fixed size: booln, u32, s32, u64, s64, d64.
enum IniType : s32 { kAstring = 1, kUstring = 2, kBinary = 3, kFirstFixed = 4, kLastFixed = 9 };

enum class LineRead { kLine, kEnd, kError };

// The next line of the stream; `name` is left alone.
LineRead ReadLine(FILE* stream, IniLine* line);

// The name of a header line, cut to fit 256 bytes; kNotAHeader with an empty name, or
// SM_STATUS_BAD_SECTION_HEADER for a "[" without its "]".
u32 ParseForSection(const astring* line, astring* name);

// "#" or ";" in column one.
bool IsComment(const astring* line);

// Behind leading spaces and tabs a "[", closed or not: the section before it ends here.
bool EndsSection(const astring* line);

// A line's key: from the first character that is no space or tab to "=", the line end or the end of
// the text. `value` is what stands behind the "="; null in a line without one.
struct IniKey {
  const astring* text;
  u32 length;
  const astring* value;
};

IniKey KeyOfLine(const astring* line);

// Exact and case-sensitive.
bool IsKey(const IniKey& found, const astring* key);

// Whether a value is a text of 16-bit units of just this many bytes, its 0 unit included.
bool IsUstringOfSize(const void* text, u32 size);

}  // namespace qvx

#endif
