// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/string_resource.h"

#include <bit>
#include <cstring>

#include "base/heap.h"
#include "os/stdio_file.h"
#include "text/transcode.h"
#include "text/uni_string.h"

namespace qvx {
namespace {

// Units go from the file to memory as they stand.
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
  // Deliberate: what was delivered stands in `*size`, so that neither a size query nor a buffer
  // that is too small learns the size needed. Held by
  // StringResource.SizeQueryAndSmallBufferBothGiveZero.
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

bool HasByteOrderMark(FILE* file) {
  u8 mark[2] = {};
  return fread(mark, 1, sizeof(mark), file) == sizeof(mark) && mark[0] == 0xFF && mark[1] == 0xFE;
}

bool FormatKey(ustring* key, u32 language, u32 stringId) {
  astring text[kKeyUnits];
  (void)snprintf(text, sizeof(text), "%X:%X=", language, stringId);
  u32 room = kKeyUnits - 1;
  return UTF8StrToUCS2Str(key, &room, text) == 0;
}

bool FindLine(ustring* line, const ustring* key, FILE* file) {
  while (dc_fgetws(line, kLineUnits, file) != nullptr) {
    // Deliberate: the key may stand anywhere in the line, so that a key "0:1=" is also found in a
    // line that begins "10:1=". Held by StringResource.KeyMatchesInsideTheKeyOfAnotherLanguage.
    if (Uni_strstr(line, key) != nullptr) return true;
  }
  return false;
}

// Ends the line at its carriage return or line feed; what stands behind its last "=".
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

ustring* dc_fgetws(ustring* buffer, u32 units, FILE* stream) {
  const off_t start = ftello(stream);
  if (start < 0) return nullptr;
  const size_t count = fread(buffer, sizeof(ustring), units, stream);
  if (count < 2) {
    if (count == 0) (void)fseeko(stream, start, SEEK_SET);
    return nullptr;
  }
  // Without a line end, or without room for the NUL behind it, the NUL takes the last unit's place.
  size_t end = count - 1;
  for (size_t at = 1; at + 1 < units && at < count; ++at) {
    if (IsLineEnd(buffer, at)) {
      end = at + 1;
      break;
    }
  }
  buffer[end] = 0;
  const off_t next = start + static_cast<off_t>(end * sizeof(ustring));
  return fseeko(stream, next, SEEK_SET) == 0 ? buffer : nullptr;
}

u32 GetUnicodeStringFromIDPathFile(u32 stringId, u32* languageId, const astring* path,
                                   ustring* buffer, u32* size) {
  const HeapArray<ustring> line = AllocArray<ustring>(kLineUnits);
  if (!line) return DeliverNothing(size);
  if (path == nullptr) return DeliverMessage("Invalid Path File Name", buffer, size);
  const HeapArray<ustring> key = AllocArray<ustring>(kKeyUnits);
  if (!key) return DeliverMessage("Failed to allocate memory", buffer, size);
  const FilePtr file = OpenFile(path, "rb");
  if (!file) return DeliverMessage("String resource not found", buffer, size);
  if (!HasByteOrderMark(file.get())) {
    return DeliverMessage("Invalid string resource found", buffer, size);
  }

  u32 language = languageId == nullptr ? kNeutral : *languageId;
  if (language == kEnglishUS || language == kEnglishUSToo) language = kNeutral;
  if (languageId != nullptr) *languageId = language;
  if (!FormatKey(key.get(), language, stringId)) return DeliverNothing(size);
  if (FindLine(line.get(), key.get(), file.get())) {
    return Deliver(TextOf(line.get()), buffer, size);
  }
  if (language == kNeutral) return DeliverNothing(size);
  *languageId = kNeutral;
  return GetUnicodeStringFromIDPathFile(stringId, languageId, path, buffer, size);
}

}  // namespace qvx
