// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_lines.h"

#include <algorithm>
#include <cstring>

#include "qvxcs/status.h"

#include "base/results.h"
#include "config/file_lines.h"

namespace qvx {
namespace {

// Up to the line end or the first NUL byte.
std::string_view TextOf(std::string_view line) {
  if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
  return line.substr(0, line.find('\0'));
}

// The name of a header; empty for a line that is none.
u32 ParseHeader(std::string_view line, std::string_view* name) {
  *name = "";
  if (!EndsSection(line)) return kMinusOne;
  const std::string_view text = TextOf(SkipBlanks(line).substr(1));
  const size_t length = std::min(text.find(']'), text.size());
  // Deliberate: only the first 255 characters of a header's name count, so two longer names that
  // begin alike are one section. Held by IniLines.SectionNamesAreCutAt255Characters.
  *name = text.substr(0, std::min<size_t>(length, kNameRoom - 1));
  return length < text.size() ? SM_STATUS_SUCCESS : SM_STATUS_BAD_SECTION_HEADER;
}

}  // namespace

u32 ParseForSection(std::string_view line, astring* name) {
  if (line.data() == nullptr || name == nullptr) return SM_STATUS_BAD_ARGUMENT;
  std::string_view found;
  const u32 status = ParseHeader(line, &found);
  memcpy(name, found.data(), found.size());
  name[found.size()] = '\0';
  return status;
}

u32 IsHeaderOf(std::string_view section, std::string_view line) {
  std::string_view found;
  const u32 status = ParseHeader(line, &found);
  return status == SM_STATUS_SUCCESS && found != section ? kMinusOne : status;
}

u32 SearchForHeader(std::string_view section, std::string_view text, size_t* length) {
  *length = 0;
  for (;;) {
    *length += LinesBeforeHeader(text.substr(*length)).size();
    const std::string_view line = text.substr(*length, LineLength(text.substr(*length)));
    const u32 status = IsHeaderOf(section, line);
    if (line.empty() || status == SM_STATUS_BAD_SECTION_HEADER) return status;
    *length += line.size();
    if (status == SM_STATUS_SUCCESS) return status;
  }
}

// Looks for brackets, of which there are few, rather than for lines.
std::string_view LinesBeforeHeader(std::string_view text) {
  size_t start = 0;  // of a line, or of a further piece of a long one
  for (;;) {
    const size_t bracket = std::min(text.find('[', start), text.size());
    const void* const lineEnd = memrchr(text.data() + start, '\n', bracket - start);
    if (lineEnd != nullptr) {
      start = static_cast<size_t>(static_cast<const char*>(lineEnd) - text.data()) + 1;
    }
    start += (bracket - start) / kLineLength * kLineLength;
    const std::string_view line = text.substr(start);
    const size_t length = bracket == text.size() || EndsSection(line) ? 0 : LineLength(line);
    if (length == 0) return text.substr(0, start);
    start += length;
  }
}

bool IsComment(std::string_view line) { return line.starts_with('#') || line.starts_with(';'); }

IniKey KeyOfLine(std::string_view line) {
  const std::string_view text = TextOf(SkipBlanks(line));
  const size_t equals = text.find('=');
  if (equals == std::string_view::npos) return {text, false, {}};
  return {text.substr(0, equals), true, text.substr(equals + 1)};
}

bool IsUstringOfSize(const void* text, u32 size) {
  const u8* const bytes = static_cast<const u8*>(text);
  if (size < sizeof(ustring) || size % sizeof(ustring) != 0) return false;
  const u32 last = size - static_cast<u32>(sizeof(ustring));
  for (u32 at = 0; at <= last; at += static_cast<u32>(sizeof(ustring))) {
    if (bytes[at] == 0 && bytes[at + 1] == 0) return at == last;
  }
  return false;
}

}  // namespace qvx
