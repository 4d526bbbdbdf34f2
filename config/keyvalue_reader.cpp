// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/keyvalue_reader.h"

#include <algorithm>
#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "config/keyvalue_line.h"
#include "os/file_lock.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr u16 kWait = 1;
constexpr u32 kFailed = static_cast<u32>(-1);

void FreeEntries(PXTKeyValue* entries, u32 count) {
  for (u32 i = 0; i < count; ++i) {
    FreeMem(entries[i].key);
    FreeMem(entries[i].value);
  }
}

bool StoreEntry(PXTKeyValue* entry, const astring* key, const astring* value) {
  HeapArray<astring> keyCopy = CopyText(key);
  HeapArray<astring> valueCopy = CopyText(value);
  if (!keyCopy || !valueCopy) return false;
  *entry = {keyCopy.release(), valueCopy.release()};
  return true;
}

// Stores up to `capacity` entries and counts all of them; -1 when the file cannot be read.
u32 ReadEntries(FILE* file, PXTKeyValue* entries, u32 capacity, u64* found) {
  astring line[kKeyValueLineRoom];
  while (ReadKeyValueLine(file, line) != 0) {
    const astring* const value = SplitKeyValueLine(line);
    if (value == nullptr) continue;
    if (*found < capacity && !StoreEntry(&entries[*found], line, value)) {
      return SM_STATUS_NO_MEMORY;
    }
    ++*found;
  }
  return ferror(file) == 0 ? SM_STATUS_SUCCESS : kFailed;
}

}  // namespace

u32 PopulateKeyValueEntries(const astring* path, PXTKeyValue* entries, u32* count) {
  if (path == nullptr || count == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const u32 capacity = *count;
  if (capacity != 0 && entries == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const FileLockGuard lock(kWait);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  const FilePtr file = OpenFile(path, "r");
  if (!file) return kFailed;
  u64 found = 0;
  const u32 status = ReadEntries(file.get(), entries, capacity, &found);
  const auto stored = static_cast<u32>(std::min(found, u64{capacity}));
  if (status != SM_STATUS_SUCCESS) {
    FreeEntries(entries, stored);
    return status;
  }
  *count = static_cast<u32>(std::min(found, u64{UINT32_MAX}));
  if (entries != nullptr && found <= capacity) return SM_STATUS_SUCCESS;
  FreeEntries(entries, stored);
  return kFailed;
}

PXTKeyValue* CFGGetKeyValueEntries(const astring* name, u16 installFlag, u32* count) {
  if (count == nullptr) return nullptr;
  *count = 0;
  astring path[kKeyValuePathRoom];
  if (name == nullptr || !KeyValuePath(name, installFlag, path)) return nullptr;
  u32 held = 0;
  // Only the count is of interest: this pass always fails.
  (void)PopulateKeyValueEntries(path, nullptr, &held);
  if (held == 0) return nullptr;
  HeapArray<PXTKeyValue> entries = AllocArray<PXTKeyValue>(held);
  if (!entries) return nullptr;
  const u32 status = PopulateKeyValueEntries(path, entries.get(), &held);
  if (status != SM_STATUS_SUCCESS || held == 0) return nullptr;
  *count = held;
  return entries.release();
}

astring* CFGGetKeyValue(const PXTKeyValue* entries, u32 count, const astring* key, u32 index) {
  if (entries == nullptr || key == nullptr) return nullptr;
  u32 occurrence = 0;
  for (u32 i = 0; i < count; ++i) {
    if (entries[i].key == nullptr || strcmp(entries[i].key, key) != 0) continue;
    if (occurrence == index) return entries[i].value;
    ++occurrence;
  }
  return nullptr;
}

void CFGFreeKeyValueEntries(PXTKeyValue* entries, u32 count) {
  if (entries == nullptr) return;
  FreeEntries(entries, count);
  FreeMem(entries);
}

}  // namespace qvx
