// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/number_text.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"
#include "text/char_class.h"
#include "text/scan32.h"

namespace qvx {
namespace {

// Digits of the greatest 64-bit number in base 8; no other base needs more.
constexpr u32 kDigitRoom = 22;
constexpr u32 kShortTextRoom = 4;

astring ToLower(astring character) {
  const bool upper = character >= 'A' && character <= 'Z';
  return upper ? static_cast<astring>(character - 'A' + 'a') : character;
}

bool EqualsIgnoringCase(const astring* text, const astring* lowerCase) {
  while (*text != '\0' && ToLower(*text) == *lowerCase) {
    ++text;
    ++lowerCase;
  }
  return *text == *lowerCase;
}

void StoreStatus(u32* status, u32 value) {
  if (status != nullptr) *status = value;
}

// Wraps modulo 2 to the 64th: digits are never refused.
u64 AccumulateDecimal(const astring* digits) {
  u64 value = 0;
  for (; *digits >= '0' && *digits <= '9'; ++digits) {
    value = value * 10 + static_cast<u64>(*digits - '0');
  }
  return value;
}

u32 HexNumStatus(const astring* text) {
  const u32 status = IsASCIIHexNum(text, 1);
  return status == SM_STATUS_SUCCESS ? status : IsASCIIHexNum(text, 0);
}

// Scans the text if it passed its character test, and completes the status.
u32 ScanChecked(const astring* text, ScanBase base, u32 checked, u32* status) {
  if (checked != SM_STATUS_SUCCESS) {
    StoreStatus(status, checked);
    return 0;
  }
  const ScannedNumber number = ScanNumber(text, base);
  StoreStatus(status, number.found ? SM_STATUS_SUCCESS : SM_STATUS_INVALID_PARAMETER);
  return Low32(number);
}

// The bases that the signed and the unsigned 32-bit conversion share; false for any other.
bool ScanInBase(const astring* text, u32 base, u32* status, u32* value) {
  if (base == 10) {
    *value = ScanChecked(text, kDecimalBase, IsASCIIIntNum(text, 1), status);
    return true;
  }
  if (base == 16) {
    // Deliberate: the text itself decides its base: 0x1F is 31, 10 is 10, 010 is 8, and letters
    // without the prefix are no number. Held by NumberText.Base16TakesTheBaseFromTheText.
    *value = ScanChecked(text, kTextBase, HexNumStatus(text), status);
    return true;
  }
  if (base == 8) {
    *value = ScanChecked(text, kOctalBase, IsASCIIOctalNum(text), status);
    return true;
  }
  StoreStatus(status, SM_STATUS_INVALID_PARAMETER);
  return false;
}

// The status of a 64-bit conversion.
u32 CheckInBase(const astring* text, u32 base) {
  if (base == 10) return IsASCIIIntNum(text, 1);
  if (base == 16) return HexNumStatus(text);
  if (base == 8) return IsASCIIOctalNum(text);
  return SM_STATUS_INVALID_PARAMETER;
}

// Writes the digits so that they end at `end`, without a terminator; returns where they begin.
astring* DigitsBefore(astring* end, u64 value, u32 base) {
  do {
    *--end = "0123456789abcdef"[value % base];
    value /= base;
  } while (value != 0);
  return end;
}

// Returns the number of characters, the terminator not counted.
s32 WriteUnsigned(astring* out, u64 value) {
  astring digits[kDigitRoom];
  const astring* first = DigitsBefore(digits + kDigitRoom, value, 10);
  const size_t length = static_cast<size_t>(digits + kDigitRoom - first);
  if (out != nullptr) {
    memcpy(out, first, length);
    out[length] = '\0';
  }
  return static_cast<s32>(length);
}

s32 WriteSigned(astring* out, s64 value) {
  if (value >= 0) return WriteUnsigned(out, static_cast<u64>(value));
  if (out != nullptr) *out++ = '-';
  return 1 + WriteUnsigned(out, 0 - static_cast<u64>(value));
}

}  // namespace

s32 ASCIIToSigned32(const astring* text) {
  return text == nullptr ? 0 : ScanS32(text, kDecimalBase);
}

u32 ASCIIToUnSigned32(const astring* text) {
  return text == nullptr ? 0 : ScanU32(text, kDecimalBase);
}

s64 ASCIIToSigned64(const astring* text) {
  if (text == nullptr) return 0;
  text = SkipAsciiSpace(text);
  const bool negative = *text == '-';
  if (*text == '-' || *text == '+') ++text;
  const u64 magnitude = AccumulateDecimal(text);
  return static_cast<s64>(negative ? 0 - magnitude : magnitude);
}

u64 ASCIIToUnSigned64(const astring* text) {
  if (text == nullptr) return 0;
  text = SkipAsciiSpace(text);
  // Deliberate: only "+" is a sign here; a text that begins with "-" is 0, not the wrapped value.
  // Held by NumberText.UnSigned64OfANegativeTextIsZero.
  if (*text == '+') ++text;
  return AccumulateDecimal(text);
}

d64 ASCIIToDouble(const astring* text) { return text == nullptr ? 0.0 : strtod(text, nullptr); }

booln ASCIIToBooln(const astring* text) {
  return text != nullptr && EqualsIgnoringCase(text, "true") ? 1 : 0;
}

booln ASCIIToBoolnV(const astring* text, u32* status) {
  const booln value = ASCIIToBooln(text);
  const bool valid = value == 1 || (text != nullptr && EqualsIgnoringCase(text, "false"));
  StoreStatus(status, valid ? SM_STATUS_SUCCESS : SM_STATUS_INVALID_PARAMETER);
  return value;
}

u32 ASCIIToUnSigned32VT(const astring* text, u32 base, u32* status) {
  u32 value = 0;
  // Deliberate: an unknown base results in all bits set here, and 0 in the signed conversion. Held
  // by NumberText.AnUnknownBaseGivesAllBitsSetUnsignedAndZeroSigned.
  return ScanInBase(text, base, status, &value) ? value : kMinusOne;
}

s32 ASCIIToSigned32VT(const astring* text, u32 base, u32* status) {
  u32 value = 0;
  return ScanInBase(text, base, status, &value) ? static_cast<s32>(value) : 0;
}

u64 ASCIIToUnSigned64VT(const astring* text, u32 base, u32* status) {
  const u32 checked = CheckInBase(text, base);
  StoreStatus(status, checked);
  // Deliberate: bases 16 and 8 are only checked, their value is always 0; a lone sign is 0 with
  // status 0. Held by NumberText.Wide64ConversionsOnlyCheckBases16And8.
  return base == 10 && checked == SM_STATUS_SUCCESS ? ASCIIToUnSigned64(text) : 0;
}

s64 ASCIIToSigned64VT(const astring* text, u32 base, u32* status) {
  const u32 checked = CheckInBase(text, base);
  StoreStatus(status, checked);
  return base == 10 && checked == SM_STATUS_SUCCESS ? ASCIIToSigned64(text) : 0;
}

s32 Signed32ToASCII(astring* out, s32 value) { return WriteSigned(out, value); }

s32 UnSigned32ToASCII(astring* out, u32 value) { return WriteUnsigned(out, value); }

void UnSigned64ToASCII(astring* out, u64 value) { (void)WriteUnsigned(out, value); }

void Signed64ToASCII(astring* out, s64 value) { (void)WriteSigned(out, value); }

void DoubleToASCII(astring* out, d64 value) {
  if (out == nullptr) return;
  // Deliberate: the room is the length of the text already in the buffer, so the result is at most
  // as long as that text minus one character. Held by
  // NumberText.DoubleIsCutToTheLengthOfTheStandingTextMinusOne.
  (void)snprintf(out, strlen(out), "%.8f", value);
}

void BoolnToASCII(astring* out, booln value) {
  if (out == nullptr) return;
  const astring* text = value == 1 ? "true" : "false";
  memcpy(out, text, strlen(text) + 1);
}

s32 hexToDecimalConvert(astring character) {
  const u32 digit = DigitValue(character);
  if (digit < 16) return static_cast<s32>(digit);
  return static_cast<u8>(character) - 0x30;
}

void ltostr(astring* out, u32 value, s32 base) {
  if (out == nullptr) return;
  if (base == 2) return dec2bin(out, value);
  const bool isSigned = base != 8 && base != 16;
  const bool negative = isSigned && static_cast<s32>(value) < 0;
  astring text[kDigitRoom + 2];
  astring* const end = text + kDigitRoom + 1;
  *end = '\0';
  astring* first =
      DigitsBefore(end, negative ? 0 - value : value, isSigned ? 10 : static_cast<u32>(base));
  if (negative) *--first = '-';
  // Deliberate: the room is 4 bytes whatever the number needs, so three characters are kept: 65535
  // in base 16 is fff. Held by NumberText.ShortTextKeepsThreeCharacters.
  const size_t kept = strnlen(first, kShortTextRoom - 1);
  memcpy(out, first, kept);
  out[kept] = '\0';
}

void dec2bin(astring* out, u32 value) {
  if (out == nullptr) return;
  // Deliberate: binary digits have room for a terminator alone, so the text of any number except 0
  // is empty, and that of 0 is the text already in the buffer, reversed. Held by
  // NumberText.BinaryTextIsEmptyAndThatOfZeroTheStandingTextReversed.
  if (value != 0) *out = '\0';
  strrev(out);
}

void strrev(astring* text) {
  if (text == nullptr) return;
  const size_t length = strlen(text);
  const HeapArray<astring> reversed = AllocArray<astring>(u64{length} + 1);
  if (!reversed) return;
  for (size_t at = 0; at < length; ++at) {
    reversed[at] = text[length - 1 - at];
  }
  memcpy(text, reversed.get(), length);
}

}  // namespace qvx
