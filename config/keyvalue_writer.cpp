// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/keyvalue_writer.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "config/keyvalue_line.h"
#include "os/file_lock.h"
#include "os/file_util.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr u16 kWait = 1;
constexpr u32 kFailed = static_cast<u32>(-1);
constexpr astring kTemporaryName[] = "pxtcfg32.tmp";

// The directory part of a path, and the temporary file beside it.
struct Places {
  HeapArray<astring> directory;
  HeapArray<astring> temporary;
};

u32 FindPlaces(const astring* path, Places* places) {
  const astring* const slash = strrchr(path, '/');
  const astring* const from = slash == nullptr ? "." : path;
  const size_t length = slash == nullptr ? 1 : static_cast<size_t>(slash - path);
  const u64 room = u64{length} + 1 + sizeof(kTemporaryName);
  places->directory = AllocArray<astring>(room);
  places->temporary = AllocArray<astring>(room);
  if (!places->directory || !places->temporary) return SM_STATUS_NO_MEMORY;
  memcpy(places->directory.get(), from, length);
  places->directory[length] = '\0';
  (void)snprintf(places->temporary.get(), static_cast<size_t>(room), "%s%c%s",
                 places->directory.get(), '/', kTemporaryName);
  return SM_STATUS_SUCCESS;
}

bool WritePair(FILE* out, const PXTKeyValue* pair) {
  return fprintf(out, "%s=%s\n", pair->key, pair->value) >= 0;
}

// Whether the line, of which a copy is cleaned, is an entry of the key.
bool IsEntryOf(const astring* key, const astring* line, size_t length, astring* cleaned) {
  memcpy(cleaned, line, length + 1);
  return SplitKeyValueLine(cleaned) != nullptr && strcmp(cleaned, key) == 0;
}

// Copies the file with the pair in the place of its occurrence `index`, or behind the last line.
u32 CopyWithPair(FILE* in, FILE* out, const PXTKeyValue* pair, u32 index) {
  const HeapArray<astring> line = AllocArray<astring>(kKeyValueLineRoom);
  const HeapArray<astring> cleaned = AllocArray<astring>(kKeyValueLineRoom);
  if (!line || !cleaned) return SM_STATUS_NO_MEMORY;
  u64 occurrences = 0;
  bool changed = false;
  while (const size_t length = ReadKeyValueLine(in, line.get())) {
    const bool found = !changed && IsEntryOf(pair->key, line.get(), length, cleaned.get());
    const bool replaces = found && occurrences == index;
    if (found) ++occurrences;
    if (replaces) changed = true;
    const bool written =
        replaces ? WritePair(out, pair) : fwrite(line.get(), 1, length, out) == length;
    if (!written) return SM_STATUS_WRITE_FAILED;
  }
  if (ferror(in) != 0) return kFailed;
  if (changed) return SM_STATUS_SUCCESS;
  if (occurrences != index) return SM_STATUS_INVALID_PARAMETER;
  // Deliberate: no line end comes before the pair: behind a last line that has none, the pair
  // joins that line. Held by KeyValueWriter.AppendsWithoutEndingTheLastLine.
  return WritePair(out, pair) ? SM_STATUS_SUCCESS : SM_STATUS_WRITE_FAILED;
}

}  // namespace

u32 SetKeyValueEntry(const astring* path, const PXTKeyValue* pair, u32 index) {
  if (path == nullptr || pair == nullptr || pair->key == nullptr || pair->value == nullptr) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  // "=", the line end and the NUL.
  if (u64{strlen(pair->key)} + strlen(pair->value) + 3 > kKeyValueLineRoom) {
    return SM_STATUS_DATA_TOO_LARGE;
  }
  Places places;
  if (const u32 status = FindPlaces(path, &places)) return status;
  if (HasDirectoryPart(path) && CreateDir(places.directory.get()) != 0) return kFailed;

  const FileLockGuard lock(kWait);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  FilePtr in = OpenFile(path, "r");
  if (!in) return SM_STATUS_FILE_OPEN_ERROR;
  FilePtr out = OpenTemporary(places.temporary.get(), in.get());
  if (!out) return SM_STATUS_FILE_OPEN_ERROR;
  if (const u32 status = CopyWithPair(in.get(), out.get(), pair, index)) return status;
  in.reset();
  if (!FinishCopy(std::move(out))) return SM_STATUS_WRITE_FAILED;
  return MoveInPlace(path, places.temporary.get());
}

u32 CFGSetKeyValue(const astring* name, u16 installFlag, const PXTKeyValue* pair, u32 index) {
  if (name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  astring path[kKeyValuePathRoom];
  if (!KeyValuePath(name, installFlag, path)) return SM_STATUS_FILE_OPEN_ERROR;
  return SetKeyValueEntry(path, pair, index);
}

}  // namespace qvx
