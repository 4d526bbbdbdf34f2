// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_SCAN32_H
#define QVX_TEXT_SCAN32_H

#include <cstdint>

#include "qvxcs/types.h"

namespace qvx {

// Number texts, read as formatted input reads them: leading white space, one sign, digits up to the
// first character that is no digit. Numbers are scanned wide and the low 32 bits are kept, so that
// the same text has the same value on machines whose `long` has 32 bits and on those where it has
// 64.

// What decides the base: the caller, or the text ("0x" hexadecimal, a leading 0 octal). kHexBase
// tolerates the "0x" prefix. There is no binary prefix.
enum ScanBase : u32 { kTextBase = 0, kOctalBase = 8, kDecimalBase = 10, kHexBase = 16 };

// A number text taken apart. The magnitude stays at the greatest 64-bit value when digits go on.
struct ScannedNumber {
  bool found;
  bool negative;
  u64 magnitude;
};

inline bool IsAsciiSpace(astring character) {
  return character == ' ' || (character >= '\t' && character <= '\r');
}

inline const astring* SkipAsciiSpace(const astring* text) {
  while (IsAsciiSpace(*text)) {
    ++text;
  }
  return text;
}

// The value of a digit in bases up to 16; 16 for any other character.
inline u32 DigitValue(astring character) {
  if (character >= '0' && character <= '9') return static_cast<u32>(character - '0');
  if (character >= 'a' && character <= 'f') return static_cast<u32>(character - 'a') + 10;
  if (character >= 'A' && character <= 'F') return static_cast<u32>(character - 'A') + 10;
  return 16;
}

inline bool HasHexPrefix(const astring* text) {
  return text[0] == '0' && (text[1] == 'x' || text[1] == 'X') && DigitValue(text[2]) < 16;
}

inline ScannedNumber ScanDigits(const astring* digits, u32 base, bool negative) {
  ScannedNumber number = {false, negative, 0};
  for (; DigitValue(*digits) < base; ++digits) {
    const u64 digit = DigitValue(*digits);
    number.found = true;
    const bool fits = number.magnitude <= (UINT64_MAX - digit) / base;
    number.magnitude = fits ? number.magnitude * base + digit : UINT64_MAX;
  }
  return number;
}

// Text must not be null. "0x" without a digit after it is the number 0.
inline ScannedNumber ScanNumber(const astring* text, ScanBase base) {
  const astring* at = SkipAsciiSpace(text);
  const bool negative = *at == '-';
  if (*at == '-' || *at == '+') ++at;
  const bool prefixCounts = base == kTextBase || base == kHexBase;
  if (prefixCounts && HasHexPrefix(at)) return ScanDigits(at + 2, 16, negative);
  if (base != kTextBase) return ScanDigits(at, base, negative);
  return ScanDigits(at, *at == '0' ? 8 : 10, negative);
}

// The low 32 bits of the scanned value, a negative one in two's complement; 0 when none was found.
inline u32 Low32(const ScannedNumber& number) {
  return static_cast<u32>(number.negative ? 0 - number.magnitude : number.magnitude);
}

inline u32 ScanU32(const astring* text, ScanBase base) { return Low32(ScanNumber(text, base)); }

inline s32 ScanS32(const astring* text, ScanBase base) {
  return static_cast<s32>(ScanU32(text, base));
}

}  // namespace qvx

#endif
