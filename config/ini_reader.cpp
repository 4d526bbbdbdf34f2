// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_reader.h"

#include <string.h>

#include "qvxcs/status.h"

#include "config/ini_lines.h"
#include "os/file_lock.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr u32 kSmallestList = 2;

u32 FindHeader(const astring* section, FILE* stream, IniLine* line) {
  for (;;) {
    const LineRead read = ReadLine(stream, line);
    if (read == LineRead::kEnd) {
      return SM_STATUS_SECTION_NOT_FOUND;
    }
    if (read == LineRead::kError) {
      return SM_STATUS_BAD_SECTION_HEADER;
    }
    const u32 status = ParseForSection(line->text, line->name);
    if (status == SM_STATUS_BAD_SECTION_HEADER) {
      return status;
    }
    if (status == SM_STATUS_SUCCESS && strcmp(line->name, section) == 0) {
      return SM_STATUS_SUCCESS;
    }
  }
}

// The section's next key line; SM_STATUS_KEY_NOT_FOUND behind its last one.
u32 NextKey(FILE* stream, IniLine* line, IniKey* found) {
  for (;;) {
    const LineRead read = ReadLine(stream, line);
    if (read == LineRead::kError) {
      return SM_STATUS_BAD_SECTION_HEADER;
    }
    if (read == LineRead::kEnd || EndsSection(line->text)) {
      return SM_STATUS_KEY_NOT_FOUND;
    }
    *found = KeyOfLine(line->text);
    if (!IsComment(line->text) && found->value != nullptr) {
      return SM_STATUS_SUCCESS;
    }
  }
}

u32 DeliverValue(const astring* value, astring* buffer, u32* size) {
  const u32 length = static_cast<u32>(strcspn(value, "\n"));
  const u32 room = *size;
  *size = length + 1;
  if (length >= room) {
    return SM_STATUS_BUFFER_TOO_SMALL;
  }
  memcpy(buffer, value, length);
  buffer[length] = '\0';
  return SM_STATUS_SUCCESS;
}

struct NameList {
  astring* buffer;
  u32 size;
  u64 total;
};

NameList BeginList(astring* buffer, u32 size) {
  buffer[0] = '\0';
  buffer[1] = '\0';
  return {buffer, size, 0};
}

void AddName(NameList* list, const astring* name, u32 length) {
  const u64 before = list->total;
  list->total += u64{length} + 1;
  if (list->total > list->size) {
    return;
  }
  astring* const end = list->buffer + before;
  memcpy(end, name, length);
  end[length] = '\0';
  // Deliberate: the NUL that closes the list is not counted, so that a list which fills the size
  // exactly ends one byte behind it. Held by IniReader.KeyListEndsOneByteBehindItsTotal.
  end[length + 1] = '\0';
}

u32 EndList(const NameList& list, u32* size) {
  *size = list.total < 0xFFFFFFFF ? static_cast<u32>(list.total) : 0xFFFFFFFF;
  return list.total > list.size ? SM_STATUS_BUFFER_TOO_SMALL : SM_STATUS_SUCCESS;
}

// The default may be the value buffer itself.
void GiveDefault(astring* value, u32* size, const void* defaultValue, u32 defaultSize) {
  if (defaultValue == nullptr || defaultSize == 0) {
    value[0] = '\0';
    *size = 0;
    return;
  }
  const u32 count = defaultSize < *size ? defaultSize : *size;
  memmove(value, defaultValue, count);
  value[count - 1] = '\0';
  *size = count;
}

}  // namespace

u32 GetValue(const astring* section, const astring* key, astring* buffer, u32* size, FILE* stream) {
  if (section == nullptr || key == nullptr || buffer == nullptr || size == nullptr ||
      stream == nullptr) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  const HeapArray<IniLine> line = AllocArray<IniLine>(1);
  if (!line) {
    return kOutOfMemory;
  }
  if (const u32 status = FindHeader(section, stream, line.get())) {
    return status;
  }
  // Deliberate: the search ends with the first section of the name; a later section of the same
  // name is never looked into. Held by IniReader.SecondSectionOfTheSameNameIsNeverSearched.
  for (;;) {
    IniKey found;
    if (const u32 status = NextKey(stream, line.get(), &found)) {
      return status;
    }
    if (IsKey(found, key)) {
      return DeliverValue(found.value, buffer, size);
    }
  }
}

u32 GetAllKeys(const astring* section, astring* buffer, u32* size, FILE* stream) {
  if (section == nullptr || buffer == nullptr || size == nullptr || stream == nullptr ||
      *size < kSmallestList) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  NameList list = BeginList(buffer, *size);
  const HeapArray<IniLine> line = AllocArray<IniLine>(1);
  if (!line) {
    return kOutOfMemory;
  }
  if (const u32 status = FindHeader(section, stream, line.get())) {
    return status;
  }
  IniKey found;
  u32 status = NextKey(stream, line.get(), &found);
  while (status == SM_STATUS_SUCCESS) {
    AddName(&list, found.text, found.length);
    status = NextKey(stream, line.get(), &found);
  }
  if (status != SM_STATUS_KEY_NOT_FOUND || list.total == 0) {
    return status;
  }
  return EndList(list, size);
}

u32 GetAllSections(astring* buffer, u32* size, FILE* stream) {
  if (buffer == nullptr || size == nullptr || stream == nullptr || *size < kSmallestList) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  NameList list = BeginList(buffer, *size);
  const HeapArray<IniLine> block = AllocArray<IniLine>(1);
  IniLine* const line = block.get();
  if (line == nullptr) {
    return kOutOfMemory;
  }
  LineRead read = ReadLine(stream, line);
  for (; read == LineRead::kLine; read = ReadLine(stream, line)) {
    const u32 status = ParseForSection(line->text, line->name);
    if (status == SM_STATUS_BAD_SECTION_HEADER) {
      return status;
    }
    if (status == SM_STATUS_SUCCESS) {
      AddName(&list, line->name, static_cast<u32>(strlen(line->name)));
    }
  }
  if (read == LineRead::kError) {
    return SM_STATUS_BAD_SECTION_HEADER;
  }
  return list.total == 0 ? SM_STATUS_SECTION_NOT_FOUND : EndList(list, size);
}

u32 ReadINIFileValue_astring(const astring* section, const astring* key, astring* value, u32* size,
                             const void* defaultValue, u32 defaultSize, const astring* path,
                             booln lockFlag) {
  if (value == nullptr || size == nullptr || path == nullptr || *size == 0) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  const FileLockGuard lock(lockFlag);
  if (!lock) {
    return SM_STATUS_LOCK_FAILED;
  }
  const FilePtr file = OpenFile(path, "r");
  if (!file) {
    return SM_STATUS_FILE_OPEN_FAILED;
  }
  if (section == nullptr) {
    return GetAllSections(value, size, file.get());
  }
  if (key == nullptr) {
    return GetAllKeys(section, value, size, file.get());
  }
  const u32 status = GetValue(section, key, value, size, file.get());
  if (status != SM_STATUS_SUCCESS && status != SM_STATUS_BUFFER_TOO_SMALL) {
    GiveDefault(value, size, defaultValue, defaultSize);
  }
  return status;
}

}  // namespace qvx
