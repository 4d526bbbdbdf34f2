// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_lines.h"

#include <string.h>

#include "qvxcs/status.h"

namespace qvx {
namespace {

const astring* SkipBlanks(const astring* text) { return text + strspn(text, " \t"); }

}  // namespace

LineRead ReadLine(FILE* stream, IniLine* line) {
  u32 length = 0;
  while (length < kLineLength) {
    const int character = getc_unlocked(stream);
    if (character == EOF) {
      break;
    }
    line->text[length] = static_cast<astring>(character);
    ++length;
    if (character == '\n') {
      break;
    }
  }
  line->text[length] = '\0';
  line->length = length;
  if (ferror_unlocked(stream) != 0) {
    return LineRead::kError;
  }
  return length == 0 ? LineRead::kEnd : LineRead::kLine;
}

u32 ParseForSection(const astring* line, astring* name) {
  if (line == nullptr || name == nullptr) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  name[0] = '\0';
  const astring* const bracket = SkipBlanks(line);
  if (*bracket != '[') {
    return kNotAHeader;
  }
  const astring* const text = bracket + 1;
  const size_t length = strcspn(text, "]\n");
  // Deliberate: a header's name is known by its first 255 characters alone, so two longer names
  // that begin alike are one section. Held by IniLines.SectionNamesAreCutAt255Characters.
  const size_t kept = length < kNameRoom ? length : kNameRoom - 1;
  memcpy(name, text, kept);
  name[kept] = '\0';
  return text[length] == ']' ? SM_STATUS_SUCCESS : SM_STATUS_BAD_SECTION_HEADER;
}

bool IsComment(const astring* line) { return *line == '#' || *line == ';'; }

bool EndsSection(const astring* line) { return *SkipBlanks(line) == '['; }

IniKey KeyOfLine(const astring* line) {
  const astring* const text = SkipBlanks(line);
  const size_t length = strcspn(text, "=\n");
  const astring* const value = text[length] == '=' ? text + length + 1 : nullptr;
  return {text, static_cast<u32>(length), value};
}

bool IsKey(const IniKey& found, const astring* key) {
  return strncmp(found.text, key, found.length) == 0 && key[found.length] == '\0';
}

bool IsUstringOfSize(const void* text, u32 size) {
  const u8* const bytes = static_cast<const u8*>(text);
  if (size < sizeof(ustring) || size % sizeof(ustring) != 0) {
    return false;
  }
  const u32 last = size - static_cast<u32>(sizeof(ustring));
  for (u32 at = 0; at <= last; at += static_cast<u32>(sizeof(ustring))) {
    if (bytes[at] == 0 && bytes[at + 1] == 0) {
      return at == last;
    }
  }
  return false;
}

}  // namespace qvx
