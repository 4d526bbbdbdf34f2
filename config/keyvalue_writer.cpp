// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/keyvalue_writer.h"

#include <fcntl.h>

#include <cstring>
#include <utility>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "config/file_lines.h"
#include "config/keyvalue_line.h"
#include "os/block_writer.h"
#include "os/file_lock.h"
#include "os/file_util.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr astring kTemporaryName[] = "pxtcfg32.tmp";

// Differs on purpose from DirectoryPart, which the INI writer uses: the part is empty for a file in
// "/", so its copy is in "/" and not in the working directory. Callers of the two formats have
// always found both.
HeapArray<astring> DirectoryOf(const astring* path) {
  return strrchr(path, '/') == path ? CopyText("") : DirectoryPart(path);
}

bool WritePair(BlockWriter* out, const PXTKeyValue* pair) {
  return out->Write(pair->key) && out->Write("=") && out->Write(pair->value) && out->Write("\n");
}

// Whether the line is an entry of the key.
bool IsEntryOf(const astring* key, std::string_view line) {
  astring cleaned[kLineRoom];
  return SplitKeyValueLine(line, cleaned) != nullptr && strcmp(cleaned, key) == 0;
}

// Copies the lines before the key's occurrence `index`, which is read and left out; `*met` is how
// many occurrences were met.
u32 CopyUpToPair(BlockReader* in, BlockWriter* out, const PXTKeyValue* pair, u32 index, u64* met) {
  for (;;) {
    std::string_view line;
    const LineRead read = NextLine(in, &line);
    if (read == LineRead::kError) return kMinusOne;
    if (read == LineRead::kEnd) return SM_STATUS_SUCCESS;
    if (IsEntryOf(pair->key, line) && (*met)++ == index) return SM_STATUS_SUCCESS;
    if (!out->Write(line)) return SM_STATUS_WRITE_FAILED;
  }
}

// Copies the file with the pair in the place of its occurrence `index`, or after the last line.
u32 CopyWithPair(BlockReader* in, BlockWriter* out, const PXTKeyValue* pair, u32 index) {
  if (!*in || !*out) return SM_STATUS_NO_MEMORY;
  u64 met = 0;
  if (const u32 status = CopyUpToPair(in, out, pair, index, &met)) return status;
  if (met < index) return SM_STATUS_INVALID_PARAMETER;
  // Deliberate: no line end is written before the pair, so the pair joins a last line that has
  // none. Held by KeyValueWriter.AppendsWithoutEndingTheLastLine.
  if (!WritePair(out, pair) || !CopyRest(in, out)) return SM_STATUS_WRITE_FAILED;
  if (in->Failed()) return kMinusOne;
  return out->Flush() ? SM_STATUS_SUCCESS : SM_STATUS_WRITE_FAILED;
}

}  // namespace

u32 SetKeyValueEntry(const astring* path, const PXTKeyValue* pair, u32 index) {
  if (path == nullptr || pair == nullptr || pair->key == nullptr || pair->value == nullptr) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  // "=", the line end and the NUL.
  if (u64{strlen(pair->key)} + strlen(pair->value) + 3 > kLineRoom) {
    return SM_STATUS_DATA_TOO_LARGE;
  }
  const HeapArray<astring> directory = DirectoryOf(path);
  if (!directory) return SM_STATUS_NO_MEMORY;
  const HeapArray<astring> temporary = PathIn(directory.get(), kTemporaryName);
  if (!temporary) return SM_STATUS_NO_MEMORY;
  if (HasDirectoryPart(path) && CreateDir(directory.get()) != 0) return kMinusOne;

  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  struct stat seen = {};
  const Descriptor file = OpenRegular(path, O_RDONLY, &seen);
  if (!file) return SM_STATUS_FILE_OPEN_ERROR;
  Descriptor copy = OpenCopy(temporary.get(), &seen);
  if (!copy) return SM_STATUS_FILE_OPEN_ERROR;
  BlockReader in(file.Number());
  BlockWriter out(copy.Number());
  if (const u32 status = CopyWithPair(&in, &out, pair, index)) return status;
  if (!FinishCopy(std::move(copy))) return SM_STATUS_WRITE_FAILED;
  return MoveInPlace(path, temporary.get());
}

u32 CFGSetKeyValue(const astring* name, u16 installFlag, const PXTKeyValue* pair, u32 index) {
  if (name == nullptr) return SM_STATUS_INVALID_PARAMETER;
  astring path[kKeyValuePathRoom];
  if (!KeyValuePath(name, installFlag, path)) return SM_STATUS_FILE_OPEN_ERROR;
  return SetKeyValueEntry(path, pair, index);
}

}  // namespace qvx
