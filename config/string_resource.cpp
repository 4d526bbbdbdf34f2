// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/string_resource.h"

#include <fcntl.h>

#include <bit>
#include <cstdio>
#include <cstring>

#include "base/heap.h"
#include "os/block_reader.h"
#include "os/stdio_file.h"
#include "text/transcode.h"
#include "text/uni_string.h"

namespace qvx {
namespace {

// Units are copied from the file to memory unchanged.
static_assert(std::endian::native == std::endian::little);

constexpr u32 kLineUnits = 1024;
constexpr u32 kKeyUnits = 128;
constexpr u32 kMessageUnits = 64;

constexpr u32 kNeutral = 0;
constexpr u32 kEnglishUS = 1033;
constexpr u32 kEnglishUSToo = 437;

constexpr ustring kCarriageReturn = '\r';
constexpr ustring kLineFeed = '\n';

u32 Deliver(const ustring* text, ustring* buffer, u32* size) {
  const u32 delivered = SetUnicodeStringToDestination(text, buffer, size);
  // Deliberate: `*size` reports what was delivered, so neither a size query nor a buffer that is
  // too small learns the size needed. Held by StringResource.SizeQueryAndSmallBufferBothGiveZero.
  if (size != nullptr) *size = delivered;
  return delivered;
}

u32 DeliverNothing(u32* size) {
  if (size != nullptr) *size = 0;
  return 0;
}

u32 DeliverMessage(const astring* message, ustring* buffer, u32* size) {
  ustring text[kMessageUnits];
  u32 room = kMessageUnits - 1;
  if (UTF8StrToUCS2Str(text, &room, message) != 0) return DeliverNothing(size);
  return Deliver(text, buffer, size);
}

// Reads on until that many bytes, or all that are left, are available.
std::string_view BytesOf(BlockReader* file, size_t wanted) {
  while (file->Unread().size() < wanted && file->ReadOn()) {
  }
  return file->Unread().substr(0, wanted);
}

bool SkipByteOrderMark(BlockReader* file) {
  constexpr std::string_view kMark = "\xFF\xFE";
  if (BytesOf(file, kMark.size()) != kMark) return false;
  file->Skip(kMark.size());
  return true;
}

bool FormatKey(ustring* key, u32 language, u32 stringId) {
  astring text[kKeyUnits];
  (void)snprintf(text, sizeof(text), "%X:%X=", language, stringId);
  u32 room = kKeyUnits - 1;
  return UTF8StrToUCS2Str(key, &room, text) == 0;
}

// The room for a search: the line just read, and the first one of the neutral language.
struct Lines {
  ustring read[kLineUnits];
  ustring neutral[kLineUnits];
};

// The keys of a search; the second is empty when the language is the neutral one itself.
struct Keys {
  ustring own[kKeyUnits];
  ustring neutral[kKeyUnits];
};

bool FormatKeys(Keys* keys, u32 language, u32 stringId) {
  keys->neutral[0] = 0;
  return FormatKey(keys->own, language, stringId) &&
         (language == kNeutral || FormatKey(keys->neutral, kNeutral, stringId));
}

// The first line with the key; else the first one with the neutral language's key, which is kept
// while the search goes on, so that the file is read once. Null without either.
ustring* FindLine(Lines* lines, const Keys& keys, BlockReader* file) {
  ustring* neutral = nullptr;
  while (dc_fgetws(lines->read, kLineUnits, file) != nullptr) {
    // Deliberate: the key may be anywhere in the line, so a key "0:1=" is also found in a line that
    // begins "10:1=". Held by StringResource.KeyMatchesInsideTheKeyOfAnotherLanguage.
    if (Uni_strstr(lines->read, keys.own) != nullptr) return lines->read;
    const bool sought = neutral == nullptr && keys.neutral[0] != 0;
    if (sought && Uni_strstr(lines->read, keys.neutral) != nullptr) {
      neutral = lines->neutral;
      memcpy(neutral, lines->read, sizeof(lines->read));
    }
  }
  return neutral;
}

// Ends the line at its carriage return or line feed; returns what follows its last "=".
const ustring* TextOf(ustring* line) {
  ustring* text = line;
  for (ustring* at = line; *at != 0; ++at) {
    if (*at == '=') text = at + 1;
  }
  for (ustring* at = text; *at != 0; ++at) {
    if (*at == kCarriageReturn || *at == kLineFeed) *at = 0;
  }
  return text;
}

// True when the line ends at units[at] with the pair.
bool IsLineEnd(const ustring* units, size_t at) {
  return units[at - 1] == kCarriageReturn && units[at] == kLineFeed;
}

}  // namespace

u32 SetUnicodeStringToDestination(const ustring* text, ustring* buffer, u32* size) {
  const u32 needed = text == nullptr ? 0 : Uni_strlen(text) * 2 + 2;
  if (size == nullptr) return buffer == nullptr ? needed : 0;
  const bool fits = buffer != nullptr && *size >= needed;
  *size = needed;
  if (!fits) return 0;
  if (text != nullptr) memcpy(buffer, text, needed);
  return needed;
}

ustring* dc_fgetws(ustring* buffer, u32 units, BlockReader* file) {
  const std::string_view bytes = BytesOf(file, units * sizeof(ustring));
  const size_t count = bytes.size() / sizeof(ustring);
  memcpy(buffer, bytes.data(), count * sizeof(ustring));
  if (count < 2) {
    file->Skip(count * sizeof(ustring));
    return nullptr;
  }
  // Without a line end, or without room for the NUL after it, the NUL takes the last unit's place.
  size_t end = count - 1;
  for (size_t at = 1; at + 1 < units && at < count; ++at) {
    if (IsLineEnd(buffer, at)) {
      end = at + 1;
      break;
    }
  }
  buffer[end] = 0;
  file->Skip(end * sizeof(ustring));
  return buffer;
}

u32 GetUnicodeStringFromIDPathFile(u32 stringId, u32* languageId, const astring* path,
                                   ustring* buffer, u32* size) {
  const HeapArray<Lines> lines = AllocArray<Lines>(1);
  if (!lines) return DeliverNothing(size);
  if (path == nullptr) return DeliverMessage("Invalid Path File Name", buffer, size);
  const HeapArray<Keys> keys = AllocArray<Keys>(1);
  if (!keys) return DeliverMessage("Failed to allocate memory", buffer, size);
  struct stat seen = {};
  const Descriptor opened = OpenRegular(path, O_RDONLY, &seen);
  if (!opened) return DeliverMessage("String resource not found", buffer, size);
  BlockReader file(opened.Number());
  if (!file) return DeliverMessage("Failed to allocate memory", buffer, size);
  if (!SkipByteOrderMark(&file)) {
    return DeliverMessage("Invalid string resource found", buffer, size);
  }

  u32 language = languageId == nullptr ? kNeutral : *languageId;
  if (language == kEnglishUS || language == kEnglishUSToo) language = kNeutral;
  if (languageId != nullptr) *languageId = language;
  if (!FormatKeys(keys.get(), language, stringId)) return DeliverNothing(size);
  ustring* const line = FindLine(lines.get(), keys[0], &file);
  // Only a language that the caller names can differ from the neutral one.
  if (line != lines[0].read && language != kNeutral) *languageId = kNeutral;
  return line == nullptr ? DeliverNothing(size) : Deliver(TextOf(line), buffer, size);
}

}  // namespace qvx
