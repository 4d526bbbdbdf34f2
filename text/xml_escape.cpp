// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/xml_escape.h"

#include <string.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "text/code_point.h"
#include "text/grow_string.h"
#include "text/transcode.h"

namespace qvx {
namespace {

constexpr u32 kEscapeRoom = 6144;

// A growable string that frees itself.
struct EscapedText {
  SSAStr record{};

  EscapedText() = default;
  EscapedText(const EscapedText&) = delete;
  EscapedText& operator=(const EscapedText&) = delete;
  ~EscapedText() { SSAStrFree(&record); }
};

// An append reports nothing: only the length tells that it worked.
bool Append(SSAStr* record, const astring* piece) {
  const u32 before = record->length;
  SSAStrCatAStr(record, piece);
  return record->length != before;
}

constexpr s32 kLongestEscape = sizeof "\\uffff" - 1;

// Writes a unit's escaped form, at most kLongestEscape bytes, and gives the place behind it.
astring* Escape(astring* to, ustring unit) {
  // Deliberate: 0x7F stands for itself like the printable characters, and so does a double quote.
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
bool AppendEscaped(SSAStr* record, const ustring* text) {
  astring piece[256];
  while (*text != 0) {
    astring* to = piece;
    while (*text != 0 && std::end(piece) - to > kLongestEscape) {
      to = Escape(to, *text++);
    }
    *to = '\0';
    if (!Append(record, piece)) return false;
  }
  return true;
}

// Empty when the text cannot be escaped or there is no memory for the result.
HeapArray<astring> EscapeOnce(const astring* text, booln* escaped) {
  u32 size = 0;
  if (UTF8StrToXMLUTF8Str(nullptr, &size, escaped, text) != SM_STATUS_SUCCESS) return {};
  auto result = AllocArray<astring>(size);
  if (!result) return {};
  if (UTF8StrToXMLUTF8Str(result.get(), &size, escaped, text) != SM_STATUS_SUCCESS) return {};
  return result;
}

}  // namespace

u32 UTF8StrToXMLUTF8Str(astring* out, u32* size, booln* escaped, const astring* text) {
  if (size == nullptr || text == nullptr) return SM_STATUS_INVALID_PARAMETER;
  if (escaped != nullptr) *escaped = 0;
  u64 used = 0;
  for (;;) {
    const size_t plain = strcspn(text, kXmlCharacters);
    if (out != nullptr) {
      const size_t fits = std::min(plain, static_cast<size_t>(*size - used));
      memcpy(out + used, text, fits);
      if (fits < plain) return SM_STATUS_BUFFER_TOO_SMALL;
    }
    used += plain;
    text += plain;
    if (*text == '\0') break;
    const XmlEntity& entity = *FindXmlEntity(static_cast<u8>(*text++));
    if (escaped != nullptr) *escaped = 1;
    if (out != nullptr) {
      if (used + entity.length > *size) return SM_STATUS_BUFFER_TOO_SMALL;
      memcpy(out + used, entity.text, entity.length);
    }
    used += entity.length;
  }
  const u64 needed = used + 1;
  if (needed > (out == nullptr ? UINT32_MAX : *size)) return SM_STATUS_BUFFER_TOO_SMALL;
  if (out != nullptr) out[used] = '\0';
  *size = static_cast<u32>(needed);
  return SM_STATUS_SUCCESS;
}

u32 UnicodeToEscape(astring* out, u32* size, const ustring* text) {
  // Deliberate: not the status that the other converters give for a null text.
  // Held by XmlEscape.ANullTextToEscapeIsABadArgument.
  if (text == nullptr) return SM_STATUS_BAD_ARGUMENT;
  EscapedText result;
  if (SSAStrAlloc(&result.record, kEscapeRoom) == nullptr) return kMinusOne;
  if (!AppendEscaped(&result.record, text)) return kMinusOne;
  const u32 needed = result.record.length + 1;
  if (size != nullptr) {
    const u32 room = std::exchange(*size, needed);
    // Deliberate: without an output too, so a query passes a size of 0 and expects this status.
    // Held by XmlEscape.AnEscapeSizeQueryPassesZeroAndIsTooSmall.
    if (needed > room) return SM_STATUS_BUFFER_TOO_SMALL;
  }
  if (out != nullptr) memcpy(out, result.record.text, needed);
  return SM_STATUS_SUCCESS;
}

astring* SUPTIntfGetXMLUTF8StrFromAStr(const astring* text, u32 passes) {
  booln escaped = 0;
  HeapArray<astring> result = EscapeOnce(text, &escaped);
  // Each further pass escapes the ampersands of the one before.
  for (u32 done = 1; result && escaped == 1 && done < passes; ++done) {
    result = EscapeOnce(result.get(), &escaped);
  }
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
