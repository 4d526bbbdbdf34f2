// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/log_content.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "qvxcs/grow_string.h"

#include "base/results.h"
#include "cli/param_node.h"
#include "os/descriptor.h"
#include "os/uninterrupted.h"
#include "xml/xml_buffer.h"

namespace qvx {
namespace {

// A block is examined while it is still in the processor's cache.
constexpr u32 kReadBlock = 256 * 1024;
constexpr u32 kAroundContent = sizeof "<Content></Content><SMStatus>-1</SMStatus>";

// The size of a regular file, 0 for a file with nothing to show: missing, empty, or so large that
// the answer would be beyond 32 bits.
u32 SizeToShow(const astring* path) {
  struct stat info = {};
  if (stat(path, &info) != 0 || !S_ISREG(info.st_mode)) return 0;
  const auto size = static_cast<u64>(info.st_size);
  return size > kMaxSize - kAroundContent ? 0 : static_cast<u32>(size);
}

// The file, opened for reading; empty for one that is no regular file any more.
Descriptor OpenLogToShow(const astring* path) {
  Descriptor opened = OpenDescriptor(path, O_RDONLY | O_NONBLOCK | O_NOCTTY);
  struct stat status = {};
  if (!opened || (fstat(opened.Number(), &status) == 0 && S_ISREG(status.st_mode))) return opened;
  errno = EINVAL;
  return {};
}

// Reads up to `size` bytes: what is appended meanwhile is not shown. -1 when a read fails, because
// the text would then be incomplete. Reports whether there is a NUL among the bytes.
s64 ReadText(const Descriptor& file, astring* text, u32 size, bool* hasNul) {
  u32 used = 0;
  while (used < size) {
    const ssize_t got = Uninterrupted(
        [&] { return read(file.Number(), text + used, std::min(size - used, kReadBlock)); });
    if (got < 0) return -1;
    if (got == 0) break;
    *hasNul = *hasNul || memchr(text + used, '\0', static_cast<size_t>(got)) != nullptr;
    used += static_cast<u32>(got);
  }
  return used;
}

// Keeps each line up to its first NUL; a line's end after the NUL is removed too. Returns the new
// length.
u32 KeepLinesUpToTheirNul(astring* text, u32 length) {
  u32 kept = 0;
  for (u32 begin = 0; begin < length;) {
    const void* const end = memchr(text + begin, '\n', length - begin);
    const u32 next =
        end == nullptr ? length : static_cast<u32>(static_cast<const astring*>(end) - text) + 1;
    const u32 shown = static_cast<u32>(strnlen(text + begin, next - begin));
    memmove(text + kept, text + begin, shown);
    kept += shown;
    begin = next;
  }
  return kept;
}

// Reads the file into its place after the buffer's text. False when a read fails.
bool CatFile(SSAStr* buffer, const Descriptor& file, u32 size) {
  astring* const place = buffer->text + buffer->length;
  bool hasNul = false;
  const s64 got = ReadText(file, place, size, &hasNul);
  const u32 length = got > 0 && hasNul ? KeepLinesUpToTheirNul(place, static_cast<u32>(got))
                                       : static_cast<u32>(std::max<s64>(got, 0));
  place[length] = '\0';
  buffer->length += length;
  return got >= 0;
}

astring* TakeText(XmlBuffer buffer, s32 status) {
  NVSuptCatSMStatusNode(buffer.get(), status, nullptr);
  return ReleaseContent(std::move(buffer));
}

}  // namespace

astring* CmdGetXMLLogContent(const astring* path) {
  const u32 size = path == nullptr ? 0 : SizeToShow(path);
  if (size == 0) return nullptr;
  const Descriptor file = OpenLogToShow(path);
  if (!file && errno == ENOMEM) return nullptr;
  // Makes room for the whole answer first, so that no later append can fail.
  XmlBuffer buffer = AllocXmlBuffer(file ? size + kAroundContent : kAroundContent);
  if (!buffer) return nullptr;
  if (!file) return TakeText(std::move(buffer), -1);
  SSAStr* const record = static_cast<SSAStr*>(buffer.get());
  (void)PXMBufCatBeginNode(record, "Content", nullptr);
  if (!CatFile(record, file, size)) {
    record->length = 0;
    return TakeText(std::move(buffer), -1);
  }
  (void)PXMBufCatEndNode(record, "Content");
  return TakeText(std::move(buffer), 0);
}

}  // namespace qvx
