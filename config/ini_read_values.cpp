// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_read_values.h"

#include <cstdio>
#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/layout.h"
#include "base/results.h"
#include "base/unaligned.h"
#include "config/file_lines.h"
#include "config/ini_lines.h"
#include "config/ini_reader.h"
#include "paths/install_path.h"
#include "text/ascii_util.h"
#include "text/number_text.h"
#include "text/scan32.h"

namespace qvx {
namespace {

constexpr u32 kTextRoom = 8193;

bool IsComplete(const IniRead& read) {
  return read.section != nullptr && read.key != nullptr && read.value != nullptr &&
         read.size != nullptr && read.path != nullptr && *read.size != 0;
}

// The value's text in the place of the value, without a default.
u32 ReadText(IniRead read, astring* text, u32 room) {
  if (text == nullptr) return kMinusOne;
  read.value = text;
  read.size = &room;
  read.defaultValue = nullptr;
  return ReadINIFileValue_astring(read);
}

// The conversions of the types of fixed size. Values of callers may be unaligned.
template <typename T>
u32 Store(T converted, void* value) {
  StoreValue(value, converted);
  return SM_STATUS_SUCCESS;
}

bool IsWord(const astring* text, size_t length, const astring* word) {
  return length == strlen(word) && AStrnicmp(text, word, static_cast<u32>(length)) == 0;
}

u32 StoreBooln(const astring* text, void* value) {
  // Deliberate: only the first word counts and only the space ends it: "true yes" is true, and a
  // carriage return belongs to the word. Held by IniReadValues.OnlyTheSpaceEndsTheWordOfABooln.
  const astring* const word = text + strspn(text, " ");
  const size_t length = strcspn(word, " ");
  if (IsWord(word, length, "TRUE")) return Store<booln>(1, value);
  if (IsWord(word, length, "FALSE")) return Store<booln>(0, value);
  return SM_STATUS_DATA_TOO_LARGE;
}

// Deliberate: a text that is no number is not reported; the value is 0 and the read succeeds. Held
// by IniReadValues.TextsThatAreNoNumbersAreNotReported.
u32 StoreU32(const astring* text, void* value) { return Store(ScanU32(text, kDecimalBase), value); }
u32 StoreS32(const astring* text, void* value) { return Store(ScanS32(text, kDecimalBase), value); }
u32 StoreU64(const astring* text, void* value) { return Store(ASCIIToUnSigned64(text), value); }
u32 StoreS64(const astring* text, void* value) { return Store(ASCIIToSigned64(text), value); }
u32 StoreD64(const astring* text, void* value) { return Store(ASCIIToDouble(text), value); }

struct FixedType {
  u32 bytes;
  u32 (*store)(const astring* text, void* value);
};

// In the order of the type codes, from kFirstFixed on.
constexpr FixedType kFixedTypes[] = {
    {2, StoreBooln}, {4, StoreU32}, {4, StoreS32}, {8, StoreU64}, {8, StoreS64}, {8, StoreD64},
};
static_assert(sizeof(kFixedTypes) / sizeof(kFixedTypes[0]) == kLastFixed - kFirstFixed + 1);

// A default may be the value buffer itself.
void GiveFixedDefault(const IniRead& read, u32 bytes) {
  if (read.defaultValue == nullptr || read.defaultSize < bytes) {
    *read.size = 0;
    return;
  }
  memmove(read.value, read.defaultValue, bytes);
  *read.size = bytes;
}

u32 ReadFixed(const IniRead& read, const FixedType& type) {
  if (!IsComplete(read) || *read.size < type.bytes) return SM_STATUS_BAD_ARGUMENT;
  const HeapArray<astring> text = AllocArray<astring>(kTextRoom);
  u32 status = ReadText(read, text.get(), kTextRoom);
  if (status == SM_STATUS_SUCCESS) {
    status = type.store(text.get(), read.value);
  }
  if (status != SM_STATUS_SUCCESS) {
    GiveFixedDefault(read, type.bytes);
  }
  return status;
}

void GiveBytesDefault(const IniRead& read) {
  const u32 given = read.defaultValue == nullptr ? 0 : read.defaultSize;
  const u32 count = given < *read.size ? given : *read.size;
  if (count != 0) {
    memmove(read.value, read.defaultValue, count);
  }
  *read.size = count;
}

// Turns a list of hexadecimal bytes into the bytes, in place: each was written with two characters
// or more.
// The list ends quietly at the first piece that does not begin with a number, and with a failure at
// one that is no byte; `*count` is the number of bytes before it.
u32 ParseBytes(astring* text, u32* count) {
  *count = 0;
  const astring* piece = text;
  while (piece != nullptr) {
    const ScannedNumber number = ScanNumber(piece, kHexBase);
    if (!number.found) break;
    if (number.magnitude > 0xFF || (number.negative && number.magnitude != 0)) {
      return SM_STATUS_DATA_TOO_LARGE;
    }
    piece = strchr(piece, ',');
    if (piece != nullptr) {
      ++piece;
    }
    text[*count] = static_cast<astring>(number.magnitude);
    ++*count;
  }
  return SM_STATUS_SUCCESS;
}

// Deliberate: bytes before one that is too large are still stored where the default leaves room for
// them; the size does not count them. Held by IniReadValues.BytesBeforeOneTooLargeAreStored.
void LeaveBytesBehind(u32 given, void* value, const astring* bytes, u32 count) {
  if (count > given) {
    memcpy(static_cast<u8*>(value) + given, bytes + given, count - given);
  }
}

u32 DeliverBytes(const IniRead& read, const astring* bytes, u32 count) {
  const u32 room = *read.size;
  *read.size = count;
  memcpy(read.value, bytes, count < room ? count : room);
  return count <= room ? SM_STATUS_SUCCESS : SM_STATUS_BUFFER_TOO_SMALL;
}

u32 ReadBinary(const IniRead& read) {
  if (!IsComplete(read)) return SM_STATUS_BAD_ARGUMENT;
  const HeapArray<astring> text = AllocArray<astring>(kLineRoom);
  u32 count = 0;
  u32 status = ReadText(read, text.get(), kLineRoom);
  if (status == SM_STATUS_SUCCESS) {
    status = ParseBytes(text.get(), &count);
  }
  if (status != SM_STATUS_SUCCESS) {
    const u32 room = *read.size;
    GiveBytesDefault(read);
    LeaveBytesBehind(*read.size, read.value, text.get(), count < room ? count : room);
    return status;
  }
  return DeliverBytes(read, text.get(), count);
}

u32 ReadUstring(const IniRead& read) {
  if (!IsComplete(read)) return SM_STATUS_BAD_ARGUMENT;
  if (read.defaultValue != nullptr && !IsUstringOfSize(read.defaultValue, read.defaultSize)) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  return ReadBinary(read);
}

u32 ReadValue(const IniRead& read, s32 type) {
  if (type >= kFirstFixed && type <= kLastFixed) {
    return ReadFixed(read, kFixedTypes[type - kFirstFixed]);
  }
  switch (type) {
    case QVX_INI_ASTRING:
      return ReadINIFileValue_astring(read);
    case QVX_INI_USTRING:
      return ReadUstring(read);
    case QVX_INI_BINARY:
      return ReadBinary(read);
    default:
      return SM_STATUS_BAD_ARGUMENT;
  }
}

}  // namespace

u32 ReadINIPathFileValue(const astring* section, const astring* key, s32 type, void* value,
                         u32* size, const void* defaultValue, u32 defaultSize, const astring* path,
                         booln lockFlag) {
  return ReadValue({section, key, value, size, defaultValue, defaultSize, path, lockFlag}, type);
}

u32 ProductIniFilePath(const astring* fileName, astring (&path)[kIniPathRoom]) {
  if (fileName == nullptr) return SM_STATUS_BAD_ARGUMENT;
  const HeapArray<astring> installPath(SUPTIntfGetQVXInstallPath());
  if (!installPath) return kMinusOne;
  // Deliberate: a name too long for the path is cut, not refused. Held by
  // IniReadValues.FileNameIsCutWhereThePathHas255Characters.
  constexpr int kFileNameRoom = static_cast<int>(kIniPathRoom - sizeof(kIniFileDirectory));
  (void)snprintf(path, sizeof(path), "%s%.*s", kIniFileDirectory, kFileNameRoom, fileName);
  return SM_STATUS_SUCCESS;
}

u32 SUPTIntfReadINIFileValue(const astring* section, const astring* key, s32 type, void* value,
                             u32* size, const void* defaultValue, u32 defaultSize,
                             const astring* fileName, booln lockFlag) {
  astring path[kIniPathRoom];
  if (const u32 status = ProductIniFilePath(fileName, path)) return status;
  return ReadValue({section, key, value, size, defaultValue, defaultSize, path, lockFlag}, type);
}

}  // namespace qvx
