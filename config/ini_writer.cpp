// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_writer.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "qvxcs/status.h"

#include "base/results.h"
#include "config/file_lines.h"
#include "config/ini_lines.h"
#include "config/ini_section.h"
#include "os/file_lock.h"
#include "os/file_util.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr s32 kValueRoom = 8193;
constexpr char kTmpName[] = "pxtini32.tmp";

bool IsName(const astring* name) { return name != nullptr && strnlen(name, kNameRoom) < kNameRoom; }

// A value's size is its length plus one; a deletion has none.
bool SizeMatches(const astring* value, s32 size) {
  if (value == nullptr) return size == 0;
  if (size < 1 || size > kValueRoom) return false;
  const size_t room = static_cast<size_t>(size);
  return strnlen(value, room) == room - 1;
}

// Nothing for a deletion.
bool WriteKey(const astring* key, const astring* value, BlockWriter* out) {
  return value == nullptr ||
         (out->Write(key) && out->Write("=") && out->Write(value) && out->Write("\n"));
}

// Deliberate: a bare line without "=" counts as its key's line, so that an empty key takes the
// place of the first blank line. Held by IniWriter.EmptyKeyTakesTheFirstBlankLine.
bool IsLineOfKey(std::string_view line, std::string_view key) {
  IniKey found;
  return HasKey(line, key, &found) && !IsComment(line);
}

// Copies the section's lines that stay before the key's place. `behind` is what follows the key:
// the header that ends the section, or nothing in place of the key's old line or at the end of the
// file.
u32 CopyUpToKey(std::string_view key, BlockReader* in, BlockWriter* out, std::string_view* behind) {
  for (;;) {
    const LineRead read = NextLine(in, behind);
    if (read == LineRead::kError) return SM_STATUS_BAD_SECTION_HEADER;
    if (read == LineRead::kEnd || EndsSection(*behind)) return SM_STATUS_SUCCESS;
    if (IsLineOfKey(*behind, key)) {
      // Deliberate: of a line longer than a read only the first piece is replaced; the rest of it
      // stays as a separate line. Held by IniWriter.OldLongLinesAreReplacedInTheirFirstPieceOnly.
      *behind = {};
      return SM_STATUS_SUCCESS;
    }
    if (!out->Write(*behind)) return SM_STATUS_WRITE_FAILED;
  }
}

u32 PutInPlace(const astring* path, const astring* tmpPath, Descriptor copy) {
  return FinishCopy(std::move(copy)) ? MoveInPlace(path, tmpPath) : SM_STATUS_WRITE_FAILED;
}

}  // namespace

u32 FindSection(const astring* section, BlockReader* in, BlockWriter* out) {
  if (!*in || !*out) return kMinusOne;
  for (;;) {
    size_t searched = 0;
    u32 status = SearchForHeader(section, in->Unread(), &searched);
    if (!out->Write(in->Unread().substr(0, searched))) return SM_STATUS_WRITE_FAILED;
    in->Skip(searched);
    if (status != kMinusOne) return status;
    std::string_view line;
    const LineRead read = NextLine(in, &line);
    if (read == LineRead::kEnd) return SM_STATUS_SECTION_NOT_FOUND;
    if (read == LineRead::kError) return SM_STATUS_BAD_SECTION_HEADER;
    status = IsHeaderOf(section, line);
    if (status == SM_STATUS_BAD_SECTION_HEADER) return status;
    if (!out->Write(line)) return SM_STATUS_WRITE_FAILED;
    if (status == SM_STATUS_SUCCESS) return status;
  }
}

u32 FindKeyUpdateValue(const astring* key, const astring* value, BlockReader* in,
                       BlockWriter* out) {
  if (!*in || !*out) return kMinusOne;
  std::string_view behind;
  if (const u32 status = CopyUpToKey(key, in, out, &behind)) return status;
  // Deliberate: no line end is added before a key that is appended to a file whose last line has
  // none; the two become one line. Held by IniWriter.KeyJoinsALastLineWithoutItsLineEnd.
  if (!WriteKey(key, value, out) || !out->Write(behind)) return SM_STATUS_WRITE_FAILED;
  if (!CopyRest(in, out)) return SM_STATUS_WRITE_FAILED;
  return in->Failed() ? SM_STATUS_BAD_SECTION_HEADER : SM_STATUS_SUCCESS;
}

u32 UpdateValue(const astring* section, const astring* key, const astring* value,
                const astring* path, const astring* tmpPath) {
  const IniSection added = {section, key, value};
  struct stat seen = {};
  const Descriptor file = OpenRegular(path, O_RDONLY, &seen);
  if (!file && errno == ENOENT) return MakeFileOfSection(added, path, tmpPath);
  if (!file) return SM_STATUS_FILE_OPEN_FAILED;
  Descriptor copy = OpenCopy(tmpPath, &seen);
  if (!copy) return SM_STATUS_FILE_OPEN_FAILED;
  BlockReader in(file.Number());
  BlockWriter out(copy.Number());
  const u32 found = FindSection(section, &in, &out);
  u32 status = found;
  if (found == SM_STATUS_SUCCESS) status = FindKeyUpdateValue(key, value, &in, &out);
  if (status != SM_STATUS_SUCCESS && found != SM_STATUS_SECTION_NOT_FOUND) return status;
  if (!out.Flush()) return SM_STATUS_WRITE_FAILED;
  if (found != SM_STATUS_SUCCESS) return AddSection(added, path, tmpPath, std::move(copy));
  return PutInPlace(path, tmpPath, std::move(copy));
}

u32 WriteINIFileValue_astring(const IniWrite& write) {
  if (!IsName(write.section) || !IsName(write.key) || write.path == nullptr) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  const auto* const value = static_cast<const astring*>(write.value);
  if (!SizeMatches(value, write.size)) return SM_STATUS_DATA_TOO_LARGE;
  // Deliberate: the copy of a file in "/" is in the working directory, as for a file without a
  // directory; the key=value writer makes it in "/". Held by
  // IniWriter.AFileInTheRootDirectoryHasItsCopyInTheWorkingDirectory.
  const HeapArray<astring> directory = DirectoryPart(write.path);
  if (!directory) return kMinusOne;
  if (HasDirectoryPart(write.path) && CreateDir(directory.get()) != SM_STATUS_SUCCESS) {
    return kMinusOne;
  }
  const HeapArray<astring> tmpPath = PathIn(directory.get(), kTmpName);
  if (!tmpPath) return kMinusOne;
  const FileLockGuard lock(write.lockFlag);
  if (!lock) return SM_STATUS_LOCK_FAILED;
  return UpdateValue(write.section, write.key, value, write.path, tmpPath.get());
}

}  // namespace qvx
