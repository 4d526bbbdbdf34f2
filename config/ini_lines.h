// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_LINES_H
#define QVX_CONFIG_INI_LINES_H

#include <cstddef>
#include <string_view>

#include "qvxcs/ini_file.h"
#include "qvxcs/types.h"

// The line rules that the INI reader and the INI writer share. They see a line up to its first NUL
// byte.
namespace qvx {

// Section names are cut at 255 characters.
inline constexpr u32 kNameRoom = 256;

// The types of fixed size.
inline constexpr s32 kFirstFixed = QVX_INI_BOOLN;
inline constexpr s32 kLastFixed = QVX_INI_D64;

// The name of a header line, cut to fit 256 bytes; -1 with an empty name for a line that is no
// header, or SM_STATUS_BAD_SECTION_HEADER for a "[" without its "]".
u32 ParseForSection(std::string_view line, astring* name);

// "#" or ";" in column one.
bool IsComment(std::string_view line);

// What follows leading spaces and tabs.
inline std::string_view SkipBlanks(std::string_view text) {
  while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) {
    text.remove_prefix(1);
  }
  return text;
}

// A "[" after leading spaces and tabs, closed or not, which ends the section before it.
inline bool EndsSection(std::string_view line) { return SkipBlanks(line).starts_with('['); }

// The whole lines that a text begins with before one that ends a section: no header is looked for
// in them. What follows may also be a line that goes on after the text.
std::string_view LinesBeforeHeader(std::string_view text);

// Whether the line is the section's header; statuses as above, with -1 for another section too.
u32 IsHeaderOf(std::string_view section, std::string_view line);

// Searches the whole lines that a text begins with for the section's header; -1 without it.
// `*length` is what was searched, the header included, but not a malformed one.
u32 SearchForHeader(std::string_view section, std::string_view text, size_t* length);

// A line's key: from the first character that is no space or tab to "=", the line end or the end of
// the text. `value` is what follows the "=", without the line end; a line without "=" has none.
struct IniKey {
  std::string_view text;
  bool hasValue;
  std::string_view value;
};

IniKey KeyOfLine(std::string_view line);

// Whether the line has this key, exact and case-sensitive; `found` is set where it has.
// Most lines differ in their first characters, which are compared before the line is taken apart.
inline bool HasKey(std::string_view line, std::string_view key, IniKey* found) {
  if (!SkipBlanks(line).starts_with(key)) return false;
  *found = KeyOfLine(line);
  return found->text == key;
}

// Whether a value is a text of 16-bit units of exactly this many bytes, its 0 unit included.
bool IsUstringOfSize(const void* text, u32 size);

}  // namespace qvx

#endif
