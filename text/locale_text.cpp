// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/locale_text.h"

#include <cstring>
#include <cwchar>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "text/unit_scan.h"

namespace qvx {
namespace {

constexpr u32 kEnglishUnitedStates = 1033;
constexpr size_t kFault = static_cast<size_t>(-1);

// A wide character of each unit, terminator included; empty without enough memory.
HeapArray<wchar_t> WideOfUnits(const ustring* text) {
  const u64 units = UnitCount(text) + 1;
  auto wide = AllocArray<wchar_t>(units);
  if (!wide) return wide;
  for (u64 at = 0; at < units; ++at) {
    // Deliberate: a surrogate pair is not combined, so an encoding that refuses surrogates refuses
    // it. Held by LocaleText.SurrogatePairsAreNotCombined.
    wide.get()[at] = text[at];
  }
  return wide;
}

// `count` + 1 units as a size in bytes.
u32 StoreUnits(u32* size, size_t count) {
  *size = static_cast<u32>(count) * 2 + 2;
  return SM_STATUS_SUCCESS;
}

u32 MeasureUnits(u32* size, const astring* text) {
  mbstate_t state{};
  const size_t count = mbsrtowcs(nullptr, &text, 0, &state);
  return count == kFault ? kMinusOne : StoreUnits(size, count);
}

}  // namespace

u32 GetLocalLanguageID() {
  // Deliberate: LANG and the current locale have no effect on it.
  // Held by LocaleText.TheLanguageIsTheSameWhateverLangSays.
  return kEnglishUnitedStates;
}

u32 UnicodeToASCII(astring* out, u32* size, const ustring* text) {
  if (text == nullptr) return kMinusOne;
  if (*text == 0) {
    if (out != nullptr) *out = '\0';
    if (size != nullptr) *size = 1;
    return SM_STATUS_SUCCESS;
  }
  if (size == nullptr) return kMinusOne;
  const auto wide = WideOfUnits(text);
  if (!wide) return kMinusOne;
  const wchar_t* from = wide.get();
  mbstate_t state{};
  const size_t count = wcsrtombs(*size == 0 ? nullptr : out, &from, *size, &state);
  if (count == kFault || count == 0) return kMinusOne;
  *size = static_cast<u32>(count) + 1;
  return SM_STATUS_SUCCESS;
}

// A null output only measures here too, whatever the size: the C library's conversion does so.
u32 UnicodeToLocal(astring* out, u32* size, const ustring* text) {
  return UnicodeToASCII(out, size, text);
}

u32 ASCIIToUnicode(ustring* out, u32* size, const astring* text) {
  if (text == nullptr) return kMinusOne;
  if (*text == '\0') {
    if (out != nullptr) *out = 0;
    if (size != nullptr) *size = 2;
    return SM_STATUS_SUCCESS;
  }
  if (size == nullptr) return kMinusOne;
  if (out == nullptr || *size == 0) return MeasureUnits(size, text);
  const size_t room = *size / 2;
  const size_t bytes = strlen(text);  // every character has at least one byte
  const size_t limit = bytes < room ? bytes : room;
  auto wide = AllocArray<wchar_t>(u64{limit} + 1);
  if (!wide) return kMinusOne;
  mbstate_t state{};
  const size_t count = mbsrtowcs(wide.get(), &text, limit, &state);
  if (count == kFault) return kMinusOne;
  for (size_t at = 0; at < count; ++at) {
    // Deliberate: a character beyond 0xFFFF is cut to its low 16 bits.
    // Held by LocaleText.CharactersBeyondSixteenBitsAreCut.
    out[at] = static_cast<ustring>(static_cast<u32>(wide.get()[at]));
  }
  out[count] = 0;
  return StoreUnits(size, count);
}

u32 LocalToUnicode(ustring* out, u32* size, const astring* text) {
  return ASCIIToUnicode(out, size, text);
}

}  // namespace qvx
