// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_DECIMAL_H
#define QVX_XML_DECIMAL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qvxcs/types.h"

// Decimal digits, counted first and then written in place. All of it is inline: a number's element
// takes little longer than these steps.
namespace qvx {

// A number whose decimal text is `length` characters long, its sign counted.
struct Decimal {
  u64 magnitude;
  u32 length;
  bool isNegative;
};

inline constexpr size_t kMostDigits = 20;  // of 64 bits

// The least number of each count of digits, but 0 for the first.
inline constexpr auto kLeastOfDigits = [] {
  std::array<u64, kMostDigits + 1> least = {0, 0, 10};
  for (size_t digits = 3; digits <= kMostDigits; ++digits) {
    least[digits] = 10 * least[digits - 1];
  }
  return least;
}();

// The logarithm to base 2 gives the number of digits, or one less: 1233 / 4096 is log10(2).
inline u32 CountDigits(u64 value) {
  const int bits = 64 - __builtin_clzll(value | 1);
  const auto digits = static_cast<u32>(bits * 1233) >> 12;
  return value >= kLeastOfDigits[digits + 1] ? digits + 1 : digits;
}

inline Decimal DecimalOf(u64 magnitude, bool isNegative) {
  return {magnitude, CountDigits(magnitude) + (isNegative ? 1 : 0), isNegative};
}

inline Decimal DecimalOf(s64 number) {
  const u64 bits = static_cast<u64>(number);
  return number < 0 ? DecimalOf(0 - bits, true) : DecimalOf(bits, false);
}

inline constexpr auto kDigitPairs = [] {
  std::array<astring, 200> pairs = {};
  for (size_t number = 0; number < 100; ++number) {
    pairs[2 * number] = static_cast<astring>('0' + number / 10);
    pairs[2 * number + 1] = static_cast<astring>('0' + number % 10);
  }
  return pairs;
}();

// Two digits a step, from the last one.
template <typename Number>
inline void PutDigitsBefore(astring* at, Number value) {
  for (; value >= 100; value /= 100) {
    at -= 2;
    memcpy(at, &kDigitPairs[2 * static_cast<size_t>(value % 100)], 2);
  }
  if (value < 10) {
    at[-1] = static_cast<astring>('0' + value);
  } else {
    memcpy(at - 2, &kDigitPairs[2 * static_cast<size_t>(value)], 2);
  }
}

// Writes the text without a terminator and returns the place after it.
inline astring* PutDecimal(astring* to, const Decimal& number) {
  astring* const end = to + number.length;
  if (number.isNegative) *to = '-';
  if (number.magnitude <= UINT32_MAX) {
    PutDigitsBefore(end, static_cast<u32>(number.magnitude));  // divides faster
  } else {
    PutDigitsBefore(end, number.magnitude);
  }
  return end;
}

}  // namespace qvx

#endif
