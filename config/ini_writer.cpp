// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_writer.h"

#include <errno.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "qvxcs/status.h"

#include "config/ini_lines.h"
#include "os/file_lock.h"
#include "os/file_util.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr u32 kFailed = 0xFFFFFFFF;
constexpr s32 kValueRoom = 8193;
constexpr char kTmpName[] = "pxtini32.tmp";

bool IsName(const astring* name) { return name != nullptr && strnlen(name, kNameRoom) < kNameRoom; }

// A value's size is its length plus one; a deletion has none.
bool SizeMatches(const astring* value, s32 size) {
  if (value == nullptr) {
    return size == 0;
  }
  if (size < 1 || size > kValueRoom) {
    return false;
  }
  const size_t room = static_cast<size_t>(size);
  return strnlen(value, room) == room - 1;
}

HeapArray<astring> TmpPathIn(const astring* directory) {
  const u64 room = u64{strlen(directory)} + 1 + sizeof(kTmpName);
  HeapArray<astring> path = AllocArray<astring>(room);
  if (path) {
    (void)snprintf(path.get(), static_cast<size_t>(room), "%s/%s", directory, kTmpName);
  }
  return path;
}

bool CopyLine(const IniLine& line, FILE* out) {
  return fwrite(line.text, 1, line.length, out) == line.length;
}

// Nothing for a deletion.
bool WriteKey(const astring* key, const astring* value, FILE* out) {
  return value == nullptr || fprintf(out, "%s=%s\n", key, value) >= 0;
}

u32 CopyRest(IniLine* room, FILE* in, FILE* out) {
  for (;;) {
    const size_t count = fread(room->text, 1, kLineRoom, in);
    if (fwrite(room->text, 1, count, out) != count) {
      return SM_STATUS_WRITE_FAILED;
    }
    if (ferror(in) != 0) {
      return SM_STATUS_BAD_SECTION_HEADER;
    }
    if (count == 0) {
      return SM_STATUS_SUCCESS;
    }
  }
}

// Deliberate: a bare line without "=" counts as its key's line, so that an empty key takes the
// place of the first blank line. Held by IniWriter.EmptyKeyTakesTheFirstBlankLine.
bool IsLineOfKey(const astring* line, const astring* key) {
  return !IsComment(line) && IsKey(KeyOfLine(line), key);
}

// Copies the section's lines that stay before the key's place. What goes behind the key is left in
// `line`: the header that ends the section, or nothing in place of the key's old line or at the end
// of the file.
u32 CopyUpToKey(const astring* key, IniLine* line, FILE* in, FILE* out) {
  for (;;) {
    const LineRead read = ReadLine(in, line);
    if (read == LineRead::kError) {
      return SM_STATUS_BAD_SECTION_HEADER;
    }
    if (read == LineRead::kEnd || EndsSection(line->text)) {
      return SM_STATUS_SUCCESS;
    }
    if (IsLineOfKey(line->text, key)) {
      // Deliberate: of a line longer than a read only the first piece is replaced; the rest of it
      // stays as a line of its own. Held by IniWriter.OldLongLinesAreReplacedInTheirFirstPieceOnly.
      line->length = 0;
      return SM_STATUS_SUCCESS;
    }
    if (!CopyLine(*line, out)) {
      return SM_STATUS_WRITE_FAILED;
    }
  }
}

struct Text {
  HeapArray<astring> characters;
  size_t length;
};

// Deliberate: a new section begins with its header, also behind a last line that has no line end,
// to which it is then joined. Held by IniWriter.AppendedSectionJoinsALastLineWithoutItsLineEnd.
Text NewSectionText(const astring* section, const astring* key, const astring* value) {
  constexpr char kForm[] = "[%s]\n%s=%s\n";
  const u64 room = u64{strlen(section)} + strlen(key) + strlen(value) + sizeof(kForm);
  Text text = {AllocArray<astring>(room), 0};
  if (text.characters) {
    text.length = static_cast<size_t>(
        snprintf(text.characters.get(), static_cast<size_t>(room), kForm, section, key, value));
  }
  return text;
}

bool WriteAll(int file, const astring* text, size_t length) {
  while (length != 0) {
    const ssize_t count = write(file, text, length);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      return false;
    }
    text += count;
    length -= static_cast<size_t>(count);
  }
  return true;
}

// One write, so that a kill leaves all of the text or none; taken back as a whole when it fails, or
// when the file tells so only as it is closed.
bool AppendText(FilePtr file, const astring* path, const Text& text) {
  const s64 oldSize = StreamSize(file.get());
  if (oldSize < 0) {
    return false;
  }
  const bool written = WriteAll(fileno(file.get()), text.characters.get(), text.length);
  if (CloseWritten(std::move(file)) && written) {
    return true;
  }
  [[maybe_unused]] const int cut = truncate(path, static_cast<off_t>(oldSize));
  return false;
}

}  // namespace

u32 FindSection(const astring* section, FILE* in, FILE* out) {
  const HeapArray<IniLine> block = AllocArray<IniLine>(1);
  IniLine* const line = block.get();
  if (line == nullptr) {
    return kOutOfMemory;
  }
  for (;;) {
    const LineRead read = ReadLine(in, line);
    if (read == LineRead::kEnd) {
      return SM_STATUS_SECTION_NOT_FOUND;
    }
    if (read == LineRead::kError) {
      return SM_STATUS_BAD_SECTION_HEADER;
    }
    const u32 header = ParseForSection(line->text, line->name);
    if (header == SM_STATUS_BAD_SECTION_HEADER) {
      return header;
    }
    if (!CopyLine(*line, out)) {
      return SM_STATUS_WRITE_FAILED;
    }
    if (header == SM_STATUS_SUCCESS && strcmp(line->name, section) == 0) {
      return SM_STATUS_SUCCESS;
    }
  }
}

u32 FindKeyUpdateValue(const astring* key, const astring* value, FILE* in, FILE* out) {
  const HeapArray<IniLine> line = AllocArray<IniLine>(1);
  if (!line) {
    return kOutOfMemory;
  }
  if (const u32 status = CopyUpToKey(key, line.get(), in, out)) {
    return status;
  }
  // Deliberate: no line end is added before a key that is appended to a file whose last line has
  // none; the two become one line. Held by IniWriter.KeyJoinsALastLineWithoutItsLineEnd.
  if (!WriteKey(key, value, out) || !CopyLine(line[0], out)) {
    return SM_STATUS_WRITE_FAILED;
  }
  return CopyRest(line.get(), in, out);
}

u32 AppendValue(const astring* section, const astring* key, const astring* value,
                const astring* path) {
  // Deliberate: to delete from a section or a file that is not there is data that does not fit, and
  // changes nothing. Held by IniWriter.DeletingInAMissingSectionChangesNothing.
  if (value == nullptr) {
    return SM_STATUS_DATA_TOO_LARGE;
  }
  const Text text = NewSectionText(section, key, value);
  if (!text.characters) {
    return kOutOfMemory;
  }
  (void)chmod(path, kFileMode);
  FilePtr file = OpenFile(path, "a");
  if (!file) {
    return SM_STATUS_FILE_OPEN_FAILED;
  }
  (void)chmod(path, kFileMode);
  return AppendText(std::move(file), path, text) ? SM_STATUS_SUCCESS : SM_STATUS_WRITE_FAILED;
}

u32 UpdateValue(const astring* section, const astring* key, const astring* value,
                const astring* path, const astring* tmpPath) {
  FilePtr in = OpenFile(path, "r");
  if (!in) {
    return errno == ENOENT ? AppendValue(section, key, value, path) : SM_STATUS_FILE_OPEN_FAILED;
  }
  FilePtr out = OpenTemporary(tmpPath, in.get());
  if (!out) {
    return SM_STATUS_FILE_OPEN_FAILED;
  }
  u32 status = FindSection(section, in.get(), out.get());
  const bool missing = status == SM_STATUS_SECTION_NOT_FOUND;
  if (status == SM_STATUS_SUCCESS) {
    status = FindKeyUpdateValue(key, value, in.get(), out.get());
  }
  if (status != SM_STATUS_SUCCESS && !missing) {
    return status;
  }
  in.reset();
  if (!missing) {
    return FinishCopy(std::move(out)) ? MoveInPlace(path, tmpPath) : SM_STATUS_WRITE_FAILED;
  }
  if (!CloseWritten(std::move(out))) {
    return SM_STATUS_WRITE_FAILED;
  }
  (void)unlink(tmpPath);
  return AppendValue(section, key, value, path);
}

u32 WriteINIFileValue_astring(const astring* section, const astring* key, const astring* value,
                              s32 size, const astring* path, booln lockFlag) {
  if (!IsName(section) || !IsName(key) || path == nullptr) {
    return SM_STATUS_BAD_ARGUMENT;
  }
  if (!SizeMatches(value, size)) {
    return SM_STATUS_DATA_TOO_LARGE;
  }
  const HeapArray<astring> directory = DirectoryPart(path);
  if (!directory) {
    return kOutOfMemory;
  }
  if (HasDirectoryPart(path) && CreateDir(directory.get()) != SM_STATUS_SUCCESS) {
    return kFailed;
  }
  const HeapArray<astring> tmpPath = TmpPathIn(directory.get());
  if (!tmpPath) {
    return kOutOfMemory;
  }
  const FileLockGuard lock(lockFlag);
  if (!lock) {
    return SM_STATUS_LOCK_FAILED;
  }
  return UpdateValue(section, key, value, path, tmpPath.get());
}

}  // namespace qvx
