// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_reader.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>

#include "qvxcs/status.h"

#include "base/results.h"
#include "config/file_lines.h"
#include "config/ini_lines.h"
#include "config/name_list.h"
#include "os/file_lock.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr u32 kSmallestList = 2;

u32 FindHeader(std::string_view section, BlockReader* file) {
  for (;;) {
    size_t searched = 0;
    u32 status = SearchForHeader(section, file->Unread(), &searched);
    file->Skip(searched);
    if (status != kMinusOne) return status;
    std::string_view line;
    const LineRead read = NextLine(file, &line);
    if (read == LineRead::kEnd) return SM_STATUS_SECTION_NOT_FOUND;
    if (read == LineRead::kError) return SM_STATUS_BAD_SECTION_HEADER;
    status = IsHeaderOf(section, line);
    if (status != kMinusOne) return status;
  }
}

// The section's next line; SM_STATUS_KEY_NOT_FOUND after its last one.
u32 NextLineOfSection(BlockReader* file, std::string_view* line) {
  const LineRead read = NextLine(file, line);
  if (read == LineRead::kError) return SM_STATUS_BAD_SECTION_HEADER;
  if (read == LineRead::kEnd || EndsSection(*line)) return SM_STATUS_KEY_NOT_FOUND;
  return SM_STATUS_SUCCESS;
}

u32 DeliverValue(std::string_view value, astring* buffer, u32* size) {
  const u32 room = *size;
  *size = static_cast<u32>(value.size()) + 1;
  if (*size > room) return SM_STATUS_BUFFER_TOO_SMALL;
  memcpy(buffer, value.data(), value.size());
  buffer[value.size()] = '\0';
  return SM_STATUS_SUCCESS;
}

// The default may be the value buffer itself, or overlap it.
void GiveDefault(const IniRead& read) {
  const u32 given = read.defaultValue == nullptr ? 0 : read.defaultSize;
  const u32 count = std::min(given, *read.size);
  auto* const value = static_cast<astring*>(read.value);
  if (count != 0) memmove(value, read.defaultValue, count);
  value[count == 0 ? 0 : count - 1] = '\0';
  *read.size = count;
}

}  // namespace

u32 GetValue(const astring* section, const astring* key, astring* buffer, u32* size,
             BlockReader* file) {
  if (section == nullptr || key == nullptr || buffer == nullptr || size == nullptr ||
      file == nullptr) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  if (!*file) return kMinusOne;
  if (const u32 status = FindHeader(section, file)) return status;
  const std::string_view wanted = key;
  // Deliberate: the search ends with the first section of the name; a later section of the same
  // name is never searched. Held by IniReader.SecondSectionOfTheSameNameIsNeverSearched.
  for (;;) {
    std::string_view line;
    if (const u32 status = NextLineOfSection(file, &line)) return status;
    IniKey found;
    if (HasKey(line, wanted, &found) && found.hasValue && !IsComment(line)) {
      return DeliverValue(found.value, buffer, size);
    }
  }
}

u32 GetAllKeys(const astring* section, astring* buffer, u32* size, BlockReader* file) {
  if (section == nullptr || buffer == nullptr || size == nullptr || file == nullptr ||
      *size < kSmallestList) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  NameList list(buffer, *size);
  if (!*file) return kMinusOne;
  if (const u32 status = FindHeader(section, file)) return status;
  std::string_view line;
  u32 status = NextLineOfSection(file, &line);
  for (; status == SM_STATUS_SUCCESS; status = NextLineOfSection(file, &line)) {
    const IniKey found = KeyOfLine(line);
    if (found.hasValue && !IsComment(line)) list.Add(found.text);
  }
  if (status != SM_STATUS_KEY_NOT_FOUND || list.IsEmpty()) return status;
  return list.End(size);
}

u32 GetAllSections(astring* buffer, u32* size, BlockReader* file) {
  if (buffer == nullptr || size == nullptr || file == nullptr || *size < kSmallestList) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  NameList list(buffer, *size);
  if (!*file) return kMinusOne;
  astring name[kNameRoom];
  std::string_view line;
  LineRead read = NextLine(file, &line);
  for (; read == LineRead::kLine; read = NextLine(file, &line)) {
    const u32 status = ParseForSection(line, name);
    if (status == SM_STATUS_BAD_SECTION_HEADER) return status;
    if (status == SM_STATUS_SUCCESS) list.Add(name);
  }
  if (read == LineRead::kError) return SM_STATUS_BAD_SECTION_HEADER;
  return list.IsEmpty() ? SM_STATUS_SECTION_NOT_FOUND : list.End(size);
}

u32 ReadINIFileValue_astring(const IniRead& read) {
  auto* const value = static_cast<astring*>(read.value);
  if (value == nullptr || read.size == nullptr || read.path == nullptr || *read.size == 0) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  const FileLockGuard lock(read.lockFlag);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  struct stat seen = {};
  const Descriptor opened = OpenRegular(read.path, O_RDONLY, &seen);
  if (!opened) return SM_STATUS_FILE_OPEN_FAILED;
  BlockReader file(opened.Number());
  if (read.section == nullptr) return GetAllSections(value, read.size, &file);
  if (read.key == nullptr) return GetAllKeys(read.section, value, read.size, &file);
  const u32 status = GetValue(read.section, read.key, value, read.size, &file);
  if (status != SM_STATUS_SUCCESS && status != SM_STATUS_BUFFER_TOO_SMALL) GiveDefault(read);
  return status;
}

}  // namespace qvx
