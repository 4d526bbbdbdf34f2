// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/log_content.h"

#include <limits.h>
#include <string.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "base/heap.h"
#include "cli/param_node.h"
#include "os/stdio_file.h"
#include "xml/xml_buffer.h"

namespace qvx {

namespace {

constexpr s32 kXmlAString = 1;
constexpr u16 kDiscard = 0;
constexpr u16 kKeepText = 1;

struct XmlBufferDeleter {
  void operator()(void* buffer) const { (void)PXMFreeBuf(buffer, kDiscard); }
};
using XmlBuffer = std::unique_ptr<void, XmlBufferDeleter>;

// The size of a regular file, 0 for what has none to show: missing, empty or beyond 32 bits.
u32 SizeToShow(const astring* path) {
  struct stat info = {};
  if (stat(path, &info) != 0 || !S_ISREG(info.st_mode) || info.st_size >= s64{0xFFFFFFFF}) {
    return 0;
  }
  return static_cast<u32>(info.st_size);
}

// Reads lines until the text is full: what is appended meanwhile is not shown. False when a read
// fails, for then the text would not be whole.
bool ReadLines(FILE* file, astring* line, astring* text, u32 size) {
  const int lineRoom = static_cast<int>(std::min<u64>(u64{size} + 1, INT_MAX));
  u32 used = 0;
  while (used < size && fgets(line, lineRoom, file) != nullptr) {
    const u32 length = static_cast<u32>(std::min<u64>(strlen(line), size - used));
    memcpy(text + used, line, length);
    used += length;
  }
  text[used] = '\0';
  return ferror(file) == 0;
}

astring* TakeText(XmlBuffer buffer, s32 status) {
  NVSuptCatSMStatusNode(buffer.get(), status, nullptr);
  return PXMFreeBuf(buffer.release(), kKeepText);
}

}  // namespace

astring* CmdGetXMLLogContent(const astring* path) {
  const u32 size = path == nullptr ? 0 : SizeToShow(path);
  if (size == 0) {
    return nullptr;
  }
  XmlBuffer buffer(PXMAllocBuf(size + 1, 0));
  if (!buffer) {
    return nullptr;
  }
  const FilePtr file = OpenFile(path, "rb");
  if (!file) {
    return TakeText(std::move(buffer), -1);
  }
  const HeapArray<astring> line = AllocArray<astring>(u64{size} + 1);
  const HeapArray<astring> text = AllocArray<astring>(u64{size} + 1);
  if (!line || !text) {
    return nullptr;
  }
  if (!ReadLines(file.get(), line.get(), text.get(), size)) {
    return TakeText(std::move(buffer), -1);
  }
  (void)PXMBufCatNode(buffer.get(), "Content", nullptr, kXmlAString, text.get());
  return TakeText(std::move(buffer), 0);
}

}  // namespace qvx
