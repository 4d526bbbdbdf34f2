// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/value_text.h"

#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "text/transcode.h"
#include "text/unit_scan.h"

namespace qvx {
namespace {

u64 Length(const astring* text) { return strlen(text); }
u64 Length(const ustring* text) { return UnitCount(text); }

template <typename Unit>
HeapArray<Unit> AllocUnits(u64 count) {
  return count * sizeof(Unit) > kMaxSize ? nullptr : AllocArray<Unit>(count);
}

template <typename Unit>
u32 Copy(const Unit* text, HeapArray<Unit>* result) {
  const u64 room = Length(text) + 1;
  *result = AllocUnits<Unit>(room);
  if (!*result) return SM_STATUS_NO_MEMORY;
  memcpy(result->get(), text, static_cast<size_t>(room) * sizeof(Unit));
  return SM_STATUS_SUCCESS;
}

// Room for one unit of `To` per unit of `text` and the terminator; the converters store the
// terminator one unit past the room they are offered.
template <typename To, typename From>
u32 Convert(const From* text, u32 (*convert)(To*, u32*, const From*), HeapArray<To>* result) {
  const u64 length = Length(text);
  *result = AllocUnits<To>(length + 1);
  if (!*result) return SM_STATUS_NO_MEMORY;
  u32 room = static_cast<u32>(length);
  return convert(result->get(), &room, text);
}

// The conversion of `text`, or else a copy of the fallback.
template <typename To, typename From>
To* ConvertOr(const From* text, u32 (*convert)(To*, u32*, const From*), const To* fallback,
              u32* status) {
  HeapArray<To> result;
  u32 outcome = SM_STATUS_INVALID_PARAMETER;
  if (text != nullptr) {
    outcome = Convert(text, convert, &result);
  } else if (fallback != nullptr) {
    outcome = Copy(fallback, &result);
  }
  if (status != nullptr) *status = outcome;
  return outcome == SM_STATUS_SUCCESS ? result.release() : nullptr;
}

}  // namespace

// Deliberate: the block has one byte per unit, so a text with a character at or above 0x80 does not
// fit it and fails. Held by ValueText.CharactersBeyondAsciiAreBufferTooSmall.
astring* NVSuptUstrToAstrD(const ustring* text, const astring* fallback, u32* status) {
  return ConvertOr(text, UCS2StrToUTF8Str, fallback, status);
}

astring* NVSuptUstrToAstr(const ustring* text, u32* status) {
  return NVSuptUstrToAstrD(text, nullptr, status);
}

ustring* NVSuptAstrToUstrD(const astring* text, const ustring* fallback, u32* status) {
  return ConvertOr(text, UTF8StrToUCS2Str, fallback, status);
}

ustring* NVSuptAstrToUstr(const astring* text, u32* status) {
  return NVSuptAstrToUstrD(text, nullptr, status);
}

}  // namespace qvx
