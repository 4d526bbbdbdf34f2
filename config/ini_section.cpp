// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_section.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "os/block_writer.h"
#include "os/file_id.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

// Deliberate: a new section begins with its header, even after a last line without a line end,
// which the header then joins. Held by IniWriter.AppendedSectionJoinsALastLineWithoutItsLineEnd.
HeapArray<astring> TextOf(const IniSection& section) {
  constexpr char kForm[] = "[%s]\n%s=%s\n";
  const u64 room =
      u64{strlen(section.name)} + strlen(section.key) + strlen(section.value) + sizeof(kForm);
  HeapArray<astring> text = AllocArray<astring>(room);
  if (text) {
    (void)snprintf(text.get(), static_cast<size_t>(room), kForm, section.name, section.key,
                   section.value);
  }
  return text;
}

u32 FormatSection(const IniSection& section, HeapArray<astring>* text) {
  // Deliberate: deleting from a section or a file that does not exist is reported as data that does
  // not fit, and changes nothing. Held by IniWriter.DeletingInAMissingSectionChangesNothing.
  if (section.value == nullptr) return SM_STATUS_DATA_TOO_LARGE;
  *text = TextOf(section);
  return *text ? SM_STATUS_SUCCESS : kMinusOne;
}

// The path form comes first: it may be what makes the file writable.
Descriptor OpenToAppend(const astring* path, struct stat* seen) {
  if (stat(path, seen) == 0 && S_ISREG(seen->st_mode)) (void)chmod(path, kFileMode);
  return OpenRegular(path, O_WRONLY | O_APPEND | O_CREAT, seen);
}

// One write, flushed. When the write is lost, which may show only when the first descriptor is
// closed, a second descriptor of the file removes the text again; without a second one nothing is
// written.
u32 AppendInPlace(Descriptor file, off_t oldSize, std::string_view text) {
  const Descriptor second = AboveStandard(fcntl(file.Number(), F_DUPFD_CLOEXEC, 0));
  if (!second) return SM_STATUS_WRITE_FAILED;
  const bool written = WriteAll(file.Number(), text) && fsync(file.Number()) == 0;
  if (file.Close() && written) return SM_STATUS_SUCCESS;
  [[maybe_unused]] const int cut = ftruncate(second.Number(), oldSize);
  return SM_STATUS_WRITE_FAILED;
}

// Whether a copy may take the place of the file: the path is no link, and the file's only name.
bool IsOnlyName(const astring* path, const struct stat& file) {
  struct stat named = {};
  return lstat(path, &named) == 0 && FileIdOf(named) == FileIdOf(file) && named.st_nlink == 1;
}

bool IsTaken(const astring* path) {
  struct stat named = {};
  return lstat(path, &named) == 0;
}

enum class Way { kDone, kClosed, kFailed };

// A disk without room for the copy may have room for the section alone.
Way WayAfterFault() { return errno == ENOSPC || errno == EDQUOT ? Way::kClosed : Way::kFailed; }

Way GoThroughCopy(std::string_view text, const astring* path, const astring* tmpPath,
                  Descriptor copy) {
  if (!WriteAll(copy.Number(), text) || !FinishCopy(std::move(copy))) return WayAfterFault();
  return rename(tmpPath, path) == 0 ? Way::kDone : Way::kClosed;
}

}  // namespace

u32 AppendValue(const IniSection& section, const astring* path) {
  HeapArray<astring> text;
  if (const u32 status = FormatSection(section, &text)) return status;
  struct stat seen = {};
  Descriptor file = OpenToAppend(path, &seen);
  if (!file) return SM_STATUS_FILE_OPEN_FAILED;
  return AppendInPlace(std::move(file), seen.st_size, text.get());
}

u32 AddSection(const IniSection& section, const astring* path, const astring* tmpPath,
               Descriptor copy) {
  HeapArray<astring> text;
  struct stat seen = {};
  Descriptor file;
  u32 status = FormatSection(section, &text);
  if (status == SM_STATUS_SUCCESS) {
    file = OpenToAppend(path, &seen);
    if (!file) status = SM_STATUS_FILE_OPEN_FAILED;
  }
  Way way = Way::kClosed;
  if (status == SM_STATUS_SUCCESS && IsOnlyName(path, seen)) {
    way = GoThroughCopy(text.get(), path, tmpPath, std::move(copy));
    if (way == Way::kDone) return SM_STATUS_SUCCESS;
  }
  (void)unlink(tmpPath);
  if (status != SM_STATUS_SUCCESS) return status;
  if (way == Way::kFailed) return SM_STATUS_WRITE_FAILED;
  return AppendInPlace(std::move(file), seen.st_size, text.get());
}

u32 MakeFileOfSection(const IniSection& section, const astring* path, const astring* tmpPath) {
  HeapArray<astring> text;
  if (const u32 status = FormatSection(section, &text)) return status;
  // A dangling link: the file is made at the path that the link names.
  if (IsTaken(path)) return AppendValue(section, path);
  Descriptor copy = OpenCopy(tmpPath, nullptr);
  if (!copy) return AppendValue(section, path);
  // By now the path exists if it is a name of the copy itself.
  const Way way =
      IsTaken(path) ? Way::kClosed : GoThroughCopy(text.get(), path, tmpPath, std::move(copy));
  if (way == Way::kDone) return SM_STATUS_SUCCESS;
  (void)unlink(tmpPath);
  return way == Way::kFailed ? u32{SM_STATUS_WRITE_FAILED} : AppendValue(section, path);
}

}  // namespace qvx
