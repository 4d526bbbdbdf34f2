// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/keyvalue_reader.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "config/file_lines.h"
#include "config/keyvalue_line.h"
#include "os/file_lock.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr size_t kFirstCapacity = 16;

void FreeEntries(PXTKeyValue* entries, u64 count) {
  for (u64 i = 0; i < count; ++i) {
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

// Passes each entry of the file to `take` in turn; -1 when the file cannot be read,
// SM_STATUS_NO_MEMORY when `take` returns false.
template <typename Take>
u32 TakeEntries(const astring* path, Take take) {
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  struct stat seen = {};
  const Descriptor opened = OpenRegular(path, O_RDONLY, &seen);
  if (!opened) return kMinusOne;
  BlockReader file(opened.Number());
  if (!file) return SM_STATUS_NO_MEMORY;
  astring key[kLineRoom];
  std::string_view line;
  LineRead read = NextLine(&file, &line);
  for (; read == LineRead::kLine; read = NextLine(&file, &line)) {
    const astring* const value = SplitKeyValueLine(line, key);
    if (value != nullptr && !take(key, value)) return SM_STATUS_NO_MEMORY;
  }
  return read == LineRead::kEnd ? SM_STATUS_SUCCESS : kMinusOne;
}

// Entries that free themselves unless they are released.
class EntryList {
 public:
  EntryList() = default;
  ~EntryList() { FreeEntries(entries_.get(), count_); }
  EntryList(const EntryList&) = delete;
  EntryList& operator=(const EntryList&) = delete;

  bool Add(const astring* key, const astring* value) {
    if (count_ == capacity_ && !Grow()) return false;
    if (!StoreEntry(&entries_[count_], key, value)) return false;
    ++count_;
    return true;
  }
  [[nodiscard]] u32 Count() const { return static_cast<u32>(count_); }
  PXTKeyValue* Release() {
    count_ = 0;
    return entries_.release();
  }

 private:
  bool Grow() {
    const size_t capacity = std::max(capacity_ * 2, kFirstCapacity);
    HeapArray<PXTKeyValue> grown = AllocArray<PXTKeyValue>(capacity);
    if (!grown) return false;
    std::copy_n(entries_.get(), count_, grown.get());
    entries_ = std::move(grown);
    capacity_ = capacity;
    return true;
  }

  HeapArray<PXTKeyValue> entries_;
  size_t count_ = 0;
  size_t capacity_ = 0;
};

}  // namespace

u32 PopulateKeyValueEntries(const astring* path, PXTKeyValue* entries, u32* count) {
  if (path == nullptr || count == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const u32 capacity = *count;
  if (capacity != 0 && entries == nullptr) return SM_STATUS_INVALID_PARAMETER;
  u64 found = 0;
  const u32 status = TakeEntries(path, [&](const astring* key, const astring* value) {
    if (found < capacity && !StoreEntry(&entries[found], key, value)) return false;
    ++found;
    return true;
  });
  const auto stored = static_cast<u32>(std::min(found, u64{capacity}));
  if (status != SM_STATUS_SUCCESS) {
    FreeEntries(entries, stored);
    return status;
  }
  *count = static_cast<u32>(found);
  if (entries != nullptr && found <= capacity) return SM_STATUS_SUCCESS;
  FreeEntries(entries, stored);
  return kMinusOne;
}

PXTKeyValue* CFGGetKeyValueEntries(const astring* name, u16 installFlag, u32* count) {
  if (count == nullptr) return nullptr;
  *count = 0;
  astring path[kKeyValuePathRoom];
  if (name == nullptr || !KeyValuePath(name, installFlag, path)) return nullptr;
  EntryList entries;
  const u32 status = TakeEntries(path, [&entries](const astring* key, const astring* value) {
    return entries.Add(key, value);
  });
  if (status != SM_STATUS_SUCCESS || entries.Count() == 0) return nullptr;
  *count = entries.Count();
  return entries.Release();
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
