// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/uni_number.h"

#include <cstdio>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "text/locale_text.h"
#include "text/number_text.h"
#include "text/scan32.h"
#include "text/unit_scan.h"

namespace qvx {
namespace {

// The text in the locale's encoding; empty when it is null or malformed, or without enough memory.
// The room is one byte a unit and one more: a text that needs more is read as far as it fits. One
// byte after that is never offered and stays zero, so the text always ends.
HeapArray<astring> Narrow(const ustring* text) {
  if (text == nullptr) return nullptr;
  const u64 room = UnitCount(text) + 1;
  if (room > UINT32_MAX) return nullptr;
  HeapArray<astring> narrow = AllocArray<astring>(room + 1);
  if (!narrow) return nullptr;
  memset(narrow.get(), 0, static_cast<size_t>(room + 1));
  u32 size = static_cast<u32>(room);
  if (UnicodeToASCII(narrow.get(), &size, text) != SM_STATUS_SUCCESS) return nullptr;
  return narrow;
}

// Puts a number's text into the caller's room as 16-bit units. `size` counts bytes both ways; what
// does not fit is cut so that the terminator does. The converter stores its terminator after the
// units that it is offered, so it is never offered the last one.
s32 PutUnits(ustring* out, u32* size, const astring* text) {
  u32 needed = 0;
  if (ASCIIToUnicode(nullptr, &needed, text) != SM_STATUS_SUCCESS || needed < 2) return -1;
  if (out == nullptr || *size < 2) {
    *size = needed;
    return 0;
  }
  const u32 units = *size < needed ? *size / 2 : needed / 2;
  u32 written = (units - 1) * 2;
  if (written == 0) {
    *out = 0;
    *size = 2;
    return 0;
  }
  if (ASCIIToUnicode(out, &written, text) != SM_STATUS_SUCCESS) return -1;
  *size = written;
  return 0;
}

}  // namespace

s32 UniToSigned32(const ustring* text) {
  const HeapArray<astring> narrow = Narrow(text);
  return narrow ? ScanS32(narrow.get(), kDecimalBase) : 0;
}

u32 UniToUnSigned32(const ustring* text) {
  const HeapArray<astring> narrow = Narrow(text);
  return narrow ? ScanU32(narrow.get(), kDecimalBase) : 0;
}

s64 UniToSigned64(const ustring* text) {
  const HeapArray<astring> narrow = Narrow(text);
  return narrow ? ASCIIToSigned64(narrow.get()) : 0;
}

u64 UniToUnSigned64(const ustring* text) {
  const HeapArray<astring> narrow = Narrow(text);
  return narrow ? ASCIIToUnSigned64(narrow.get()) : 0;
}

d64 UniToDouble(const ustring* text) {
  const HeapArray<astring> narrow = Narrow(text);
  return narrow ? ASCIIToDouble(narrow.get()) : 0.0;
}

s32 UniDoubleToStr(ustring* out, u32* size, d64 value, s32 precision) {
  if (size == nullptr || precision < 0) return -1;
  const int length = snprintf(nullptr, 0, "%.*f", precision, value);
  if (length < 0) return -1;
  const u64 room = static_cast<u64>(length) + 1;
  const HeapArray<astring> text = AllocArray<astring>(room);
  if (!text) return -1;
  const int written = snprintf(text.get(), static_cast<size_t>(room), "%.*f", precision, value);
  if (written != length) return -1;
  return PutUnits(out, size, text.get());
}

s32 UniUnSigned32ToStr(ustring* out, u32* size, u32 value, s32 base) {
  if (size == nullptr) return -1;
  // Deliberate: this is the short text of three characters, signed in base 10, empty in base 2.
  // Held by UniNumber.TextsOf32BitNumbersKeepThreeCharacters.
  astring text[4] = "";
  ltostr(text, value, base);
  return PutUnits(out, size, text);
}

s32 UniSigned32ToStr(ustring* out, u32* size, s32 value, s32 base) {
  return UniUnSigned32ToStr(out, size, static_cast<u32>(value), base);
}

}  // namespace qvx
