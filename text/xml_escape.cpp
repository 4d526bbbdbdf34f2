// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/xml_escape.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>
#include <utility>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "text/code_point.h"
#include "text/grow_string.h"
#include "text/transcode.h"
#include "text/xml_fill.h"

namespace qvx {
namespace {

constexpr u32 kEscapeRoom = 6144;

constexpr s32 kLongestEscape = sizeof "\\uffff" - 1;

// Writes a unit's escaped form, at most kLongestEscape bytes, and returns the place after it.
astring* Escape(astring* to, ustring unit) {
  // Deliberate: 0x7F is written as it is, like the printable characters, and so is a double quote.
  // Held by XmlEscape.DeleteAndDoubleQuoteAreNotBackslashEscaped.
  const bool isPlain = unit >= 0x20 && unit <= 0x7F && unit != '\\';
  if (isPlain) {
    *to++ = static_cast<astring>(unit);
    return to;
  }
  *to++ = '\\';
  switch (unit) {
    case '\t':
      *to++ = 't';
      return to;
    case '\n':
      *to++ = 'n';
      return to;
    case '\r':
      *to++ = 'r';
      return to;
    case '\\':
      *to++ = '\\';
      return to;
    default:
      break;
  }
  *to++ = 'u';
  for (int shift = 12; shift >= 0; shift -= 4) {
    *to++ = "0123456789abcdef"[(unit >> shift) & 0xF];
  }
  return to;
}

// Appends what the text escapes to, gathered into pieces.
bool CatEscaped(GrowText* result, const ustring* text) {
  astring piece[256];
  while (*text != 0) {
    astring* to = piece;
    while (*text != 0 && std::end(piece) - to > kLongestEscape) {
      to = Escape(to, *text++);
    }
    if (!result->Cat({piece, static_cast<size_t>(to - piece)})) return false;
  }
  return true;
}

// Empty when the result is beyond 32 bits or there is no memory for it.
HeapArray<astring> EscapeOnce(const astring* text, booln* escaped) {
  const size_t length = strlen(text);
  const u64 growth = XmlGrowth(text, length);
  *escaped = growth != 0 ? 1 : 0;
  const u64 needed = length + growth + 1;
  HeapArray<astring> result = needed > kMaxSize ? nullptr : AllocArray<astring>(needed);
  if (!result) return result;
  FillXml(result.get(), growth, text, length);
  result[length + static_cast<size_t>(growth)] = '\0';
  return result;
}

// What further passes make of a text that one pass has written: only its ampersands are escaped,
// and each pass puts "amp;" after each of them once more. Empty as above.
HeapArray<astring> EscapeAgain(const astring* text, u32 passes) {
  constexpr std::string_view kAdded = "amp;";
  const std::string_view once(text);
  const auto ampersands = static_cast<u64>(std::count(once.begin(), once.end(), '&'));
  // Their product is below 2^64: a text with its growth is below 2^32.
  const u64 growth = ampersands * passes;
  if (growth > kMaxSize / kAdded.size()) return nullptr;
  const u64 needed = once.size() + growth * kAdded.size() + 1;
  HeapArray<astring> result = needed > kMaxSize ? nullptr : AllocArray<astring>(needed);
  if (!result) return result;
  astring* to = result.get();
  for (const astring character : once) {
    *to++ = character;
    for (u32 pass = 0; character == '&' && pass < passes; ++pass) {
      to = std::copy(kAdded.begin(), kAdded.end(), to);
    }
  }
  *to = '\0';
  return result;
}

// Writes what fits of a result that does not fit whole: clean bytes as far as there is room,
// entities whole. `escaped` covers only the characters met on the way.
u32 FillRoom(astring* out, u32 room, booln* escaped, const astring* text) {
  if (escaped != nullptr) *escaped = 0;
  for (;;) {
    const size_t clean = strcspn(text, kXmlCharacters);
    const size_t fits = std::min<size_t>(clean, room);
    memcpy(out, text, fits);
    if (fits < clean || text[clean] == '\0') return SM_STATUS_BUFFER_TOO_SMALL;
    room -= static_cast<u32>(fits);
    const XmlEntity& entity = *FindXmlEntity(static_cast<u8>(text[clean]));
    if (escaped != nullptr) *escaped = 1;
    if (entity.length > room) return SM_STATUS_BUFFER_TOO_SMALL;
    memcpy(out + fits, entity.text, entity.length);
    room -= entity.length;
    out += fits + entity.length;
    text += clean + 1;
  }
}

}  // namespace

u32 UTF8StrToXMLUTF8Str(astring* out, u32* size, booln* escaped, const astring* text) {
  if (size == nullptr || text == nullptr) return SM_STATUS_INVALID_PARAMETER;
  const size_t length = strlen(text);
  const u64 growth = XmlGrowth(text, length);
  const u64 needed = length + growth + 1;
  if (out != nullptr && needed > *size) return FillRoom(out, *size, escaped, text);
  if (escaped != nullptr) *escaped = growth != 0 ? 1 : 0;
  if (needed > kMaxSize) return SM_STATUS_BUFFER_TOO_SMALL;
  if (out != nullptr) {
    FillXml(out, growth, text, length);
    out[needed - 1] = '\0';
  }
  *size = static_cast<u32>(needed);
  return SM_STATUS_SUCCESS;
}

u32 UnicodeToEscape(astring* out, u32* size, const ustring* text) {
  // Deliberate: the other converters return a different status for a null text.
  // Held by XmlEscape.ANullTextToEscapeIsABadArgument.
  if (text == nullptr) return SM_STATUS_BAD_ARGUMENT;
  GrowText result(kEscapeRoom);
  if (!result || !CatEscaped(&result, text)) return kMinusOne;
  const u32 needed = result.Length() + 1;
  if (size != nullptr) {
    const u32 room = std::exchange(*size, needed);
    // Deliberate: the status is the same without an output, so a query passes a size of 0 and
    // expects this status. Held by XmlEscape.AnEscapeSizeQueryPassesZeroAndIsTooSmall.
    if (needed > room) return SM_STATUS_BUFFER_TOO_SMALL;
  }
  if (out != nullptr) memcpy(out, result.Text(), needed);
  return SM_STATUS_SUCCESS;
}

astring* SUPTIntfGetXMLUTF8StrFromAStr(const astring* text, u32 passes) {
  if (text == nullptr) return nullptr;
  booln escaped = 0;
  HeapArray<astring> result = EscapeOnce(text, &escaped);
  if (result && escaped == 1 && passes > 1) result = EscapeAgain(result.get(), passes - 1);
  return result.release();
}

astring* SUPTIntfGetXMLUTF8StrFromUStr(const ustring* text, u32 passes) {
  u32 size = 0;
  if (UCS2StrToUTF8Str(nullptr, &size, text) != SM_STATUS_SUCCESS) return nullptr;
  auto utf8 = AllocArray<astring>(size);
  if (!utf8) return nullptr;
  u32 room = size - 1;  // the NUL comes past the room
  if (UCS2StrToUTF8Str(utf8.get(), &room, text) != SM_STATUS_SUCCESS) return nullptr;
  return SUPTIntfGetXMLUTF8StrFromAStr(utf8.get(), passes);
}

}  // namespace qvx
