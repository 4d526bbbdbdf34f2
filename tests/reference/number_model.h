// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_NUMBER_MODEL_H
#define QVX_TESTS_REFERENCE_NUMBER_MODEL_H

#include <random>
#include <string>

#include "qvxcs/types.h"

// Slow, obvious models of the number conversions: whole strings and the C library's own formatted
// output instead of loops over digits, nothing shared with the library.
namespace qvx::test {

u32 ModelIsInteger(const std::string& text, bool allowSign);
u32 ModelIsHex(const std::string& text, bool lowerCase);
u32 ModelIsOctal(const std::string& text);

// The digits after white space and one of the given signs, weighed by powers of ten; what exceeds
// 64 bits is lost.
u64 ModelDecimal64(const std::string& text, const std::string& signs);

struct ModelNumber {
  u64 value;
  u32 status;
};
// Texts of up to 15 digits, those whose value the C library can read in 64 bits.
ModelNumber ModelTo32(const std::string& text, u32 base, bool isSigned);
ModelNumber ModelTo64(const std::string& text, u32 base, bool isSigned);
ModelNumber ModelToBoolean(const std::string& text);

std::string ModelDouble(d64 value, s32 precision);
std::string ModelShortText(u32 value, s32 base);

// What a 16-bit number writer leaves in room of `size` bytes.
struct ModelWide {
  std::string stored;
  bool terminated;
  u32 size;
};
ModelWide ModelWiden(const std::string& text, u32 size);

// Number texts that look for trouble, the same on every run. None holds a 0.
class HostileNumbers {
 public:
  explicit HostileNumbers(u32 seed) : next_(seed) {}
  u32 Below(u32 limit) { return static_cast<u32>(next_() % limit); }
  u64 Bits() { return next_() >> Below(64); }
  std::string Text(u32 mostDigits);
  d64 Double();

 private:
  std::string Digits(const std::string& alphabet, u32 most);
  std::mt19937_64 next_;
};

}  // namespace qvx::test

#endif
