// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_write_values.h"

#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "base/unaligned.h"
#include "config/ini_lines.h"
#include "config/ini_read_values.h"
#include "config/ini_writer.h"
#include "text/number_text.h"

namespace qvx {
namespace {

constexpr s32 kMostBytes = 2048;
// "0x%02X,"
constexpr u32 kByteText = 5;
// The greatest double has 309 digits before the point.
constexpr u32 kNumberRoom = 352;

u32 WriteText(IniWrite write, const astring* text, s32 size) {
  write.value = text;
  write.size = size;
  return WriteINIFileValue_astring(write);
}

// The texts of the types of fixed size. Values of callers may be unaligned.
using NumberText = astring[kNumberRoom];

void FormatBooln(const void* value, NumberText& text) {
  (void)snprintf(text, sizeof(text), "%s", LoadValue<booln>(value) == 1 ? "TRUE" : "FALSE");
}
void FormatU32(const void* value, NumberText& text) {
  (void)snprintf(text, sizeof(text), "%" PRIu32, LoadValue<u32>(value));
}
void FormatS32(const void* value, NumberText& text) {
  (void)snprintf(text, sizeof(text), "%" PRId32, LoadValue<s32>(value));
}
void FormatU64(const void* value, NumberText& text) {
  UnSigned64ToASCII(text, LoadValue<u64>(value));
}
void FormatS64(const void* value, NumberText& text) {
  Signed64ToASCII(text, LoadValue<s64>(value));
}
void FormatD64(const void* value, NumberText& text) {
  (void)snprintf(text, sizeof(text), "%.8f", LoadValue<d64>(value));
}

struct FixedType {
  s32 bytes;
  void (*format)(const void* value, NumberText& text);
};

// In the order of the type codes, from kFirstFixed on.
constexpr FixedType kFixedTypes[] = {
    {2, FormatBooln}, {4, FormatU32}, {4, FormatS32},
    {8, FormatU64},   {8, FormatS64}, {8, FormatD64},
};
static_assert(sizeof(kFixedTypes) / sizeof(kFixedTypes[0]) == kLastFixed - kFirstFixed + 1);

u32 WriteFixed(const IniWrite& write, const FixedType& type) {
  if (write.value == nullptr) return SM_STATUS_BAD_ARGUMENT;
  if (write.size < type.bytes) return SM_STATUS_DATA_TOO_LARGE;
  NumberText text;
  type.format(write.value, text);
  return WriteText(write, text, static_cast<s32>(strlen(text)) + 1);
}

// "0x01,0xAB" of at least one byte; the NUL replaces the comma after the last one.
void FormatBytes(const u8* bytes, u32 count, astring* text) {
  for (u32 at = 0; at < count; ++at) {
    (void)snprintf(text + u64{at} * kByteText, kByteText + 1, "0x%02X,", bytes[at]);
  }
  text[u64{count} * kByteText - 1] = '\0';
}

// A block whose list is longer than a value may be is refused by the text writer, never cut.
u32 WriteBytes(const IniWrite& write) {
  const u32 count = static_cast<u32>(write.size);
  const HeapArray<astring> text = AllocArray<astring>(u64{count} * kByteText + 1);
  if (!text) return kMinusOne;
  FormatBytes(static_cast<const u8*>(write.value), count, text.get());
  return WriteText(write, text.get(), static_cast<s32>(count * kByteText));
}

// The size is checked before the names, as that of a value is.
u32 DeleteKey(const IniWrite& write) {
  return write.size == 0 ? WriteText(write, nullptr, 0) : SM_STATUS_DATA_TOO_LARGE;
}

u32 WriteBinary(const IniWrite& write) {
  if (write.value == nullptr) return DeleteKey(write);
  if (write.size < 1 || write.size > kMostBytes) return SM_STATUS_DATA_TOO_LARGE;
  return WriteBytes(write);
}

u32 WriteUstring(const IniWrite& write) {
  if (write.value == nullptr) return DeleteKey(write);
  if (write.size < 1 || write.size > kMostBytes ||
      !IsUstringOfSize(write.value, static_cast<u32>(write.size))) {
    return SM_STATUS_DATA_TOO_LARGE;
  }
  return WriteBytes(write);
}

u32 WriteValue(const IniWrite& write, s32 type) {
  if (type >= kFirstFixed && type <= kLastFixed) {
    return WriteFixed(write, kFixedTypes[type - kFirstFixed]);
  }
  switch (type) {
    case QVX_INI_ASTRING:
      return WriteINIFileValue_astring(write);
    case QVX_INI_USTRING:
      return WriteUstring(write);
    case QVX_INI_BINARY:
      return WriteBinary(write);
    default:
      return SM_STATUS_BAD_ARGUMENT;
  }
}

}  // namespace

u32 WriteINIPathFileValue(const astring* section, const astring* key, s32 type, const void* value,
                          s32 size, const astring* path, booln lockFlag) {
  return WriteValue({section, key, value, size, path, lockFlag}, type);
}

u32 SUPTIntfWriteINIFileValue(const astring* section, const astring* key, s32 type,
                              const void* value, s32 size, const astring* fileName,
                              booln lockFlag) {
  astring path[kIniPathRoom];
  if (const u32 status = ProductIniFilePath(fileName, path)) return status;
  return WriteValue({section, key, value, size, path, lockFlag}, type);
}

}  // namespace qvx
