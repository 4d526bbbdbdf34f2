// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/number_model.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace qvx::test {
namespace {

constexpr u32 kInvalid = 0x010F;
const char* const kDigits = "0123456789";
const char* const kSpace = " \t\n\v\f\r";

u32 Only(const std::string& text, const std::string& accepted) {
  return text.find_first_not_of(accepted) == std::string::npos ? 0 : kInvalid;
}

std::string Lower(std::string text) {
  for (char& each : text) {
    const size_t at = std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZ").find(each);
    if (at != std::string::npos) each = "abcdefghijklmnopqrstuvwxyz"[at];
  }
  return text;
}

u64 Read(const std::string& digits, int base) { return strtoull(digits.c_str(), nullptr, base); }

// A text that is made of digits, or begins with "0x".
ModelNumber ByItsOwnBase(const std::string& text) {
  if (text.substr(0, 2) == "0x") return {Read(text.substr(2), 16), 0};
  if (text[0] == '0') return {Read(text, 8), 0};
  if (std::string(kDigits).find(text[0]) == std::string::npos) return {0, kInvalid};
  return {Read(text, 10), 0};
}

}  // namespace

u32 ModelIsInteger(const std::string& text, bool allowSign) {
  if (text.empty()) return kInvalid;
  if (allowSign && (text[0] == '+' || text[0] == '-')) return Only(text.substr(1), kDigits);
  return Only(text, kDigits);
}

u32 ModelIsHex(const std::string& text, bool lowerCase) {
  if (text.empty()) return kInvalid;
  const std::string digits = text.substr(0, 2) == "0x" ? text.substr(2) : text;
  return Only(digits, kDigits + std::string(lowerCase ? "abcdef" : "ABCDEF"));
}

u32 ModelIsOctal(const std::string& text) {
  return text.empty() ? kInvalid : Only(text, "01234567");
}

u64 ModelDecimal64(const std::string& text, const std::string& signs) {
  const size_t start = text.find_first_not_of(kSpace);
  if (start == std::string::npos) return 0;
  std::string rest = text.substr(start);
  const bool isSigned = signs.find(rest[0]) != std::string::npos;
  const bool negative = isSigned && rest[0] == '-';
  if (isSigned) rest = rest.substr(1);
  const std::string digits = rest.substr(0, rest.find_first_not_of(kDigits));
  u64 value = 0;
  u64 weight = 1;
  for (size_t at = digits.size(); at > 0; --at, weight *= 10)
    value += weight * std::string(kDigits).find(digits[at - 1]);
  return negative ? ~value + 1 : value;
}

ModelNumber ModelTo32(const std::string& text, u32 base, bool isSigned) {
  if (base != 8 && base != 10 && base != 16) return {isSigned ? 0u : 0xFFFFFFFFu, kInvalid};
  if (base == 10) {
    const bool bare = text == "+" || text == "-";
    if (bare || ModelIsInteger(text, true) != 0) return {0, kInvalid};
    return {ModelDecimal64(text, "+-") % 0x100000000, 0};
  }
  if (base == 8) {
    if (ModelIsOctal(text) != 0) return {0, kInvalid};
    return {Read(text, 8) % 0x100000000, 0};
  }
  if (ModelIsHex(text, true) != 0 && ModelIsHex(text, false) != 0) return {0, kInvalid};
  const ModelNumber number = ByItsOwnBase(text);
  return {number.value % 0x100000000, number.status};
}

ModelNumber ModelTo64(const std::string& text, u32 base, bool isSigned) {
  if (base == 10) {
    if (ModelIsInteger(text, true) != 0) return {0, kInvalid};
    return {ModelDecimal64(text, isSigned ? "+-" : "+"), 0};
  }
  if (base == 8) return {0, ModelIsOctal(text)};
  if (base != 16) return {0, kInvalid};
  const bool valid = ModelIsHex(text, true) == 0 || ModelIsHex(text, false) == 0;
  return {0, valid ? 0 : kInvalid};
}

ModelNumber ModelToBoolean(const std::string& text) {
  if (Lower(text) == "true") return {1, 0};
  return {0, Lower(text) == "false" ? 0 : kInvalid};
}

std::string ModelDouble(d64 value, s32 precision) {
  std::string text(1000, '\0');
  text.resize(static_cast<size_t>(snprintf(text.data(), text.size(), "%.*f", precision, value)));
  return text;
}

std::string ModelShortText(u32 value, s32 base) {
  char text[32];
  if (base == 8) {
    (void)snprintf(text, sizeof(text), "%o", value);
  } else if (base == 16) {
    (void)snprintf(text, sizeof(text), "%x", value);
  } else {
    (void)snprintf(text, sizeof(text), "%d", static_cast<s32>(value));
  }
  return std::string(text).substr(0, 3);
}

ModelWide ModelWiden(const std::string& text, u32 size) {
  const u32 needed = static_cast<u32>(text.size()) * 2 + 2;
  if (size < 2) return {"", false, needed};
  if (size >= needed) return {text, true, needed};
  const std::string stored = text.substr(0, size / 2 - 1);
  return {stored, true, static_cast<u32>(stored.size()) * 2 + 2};
}

std::string HostileNumbers::Digits(const std::string& alphabet, u32 most) {
  std::string digits;
  for (u32 left = Below(most + 1); left > 0; --left)
    digits += alphabet[Below(static_cast<u32>(alphabet.size()))];
  return digits;
}

std::string HostileNumbers::Text(u32 mostDigits) {
  const char* before[] = {"",   "",   "",   " ",  "\t\v ", "+", "-",
                          " -", " +", "+-", "0x", "0X",    "0", "x"};
  const char* digits[] = {"0123456789",       "0123456789", "01234567", "0123456789abcdef",
                          "0123456789ABCDEF", "09aAfF",     "0127",     "trueTRUEfalsFALS"};
  const char* behind[] = {"", "", "", "", " ", "x", "g", "-", ".5", "/", ":", "\xC3\xA9"};
  switch (Below(8)) {
    case 0:
      return Digits("truTRUefalsFALS", 6);
    case 1:
      return std::string(1, "tT"[Below(2)]) + "r" + "uU"[Below(2)] + "eE"[Below(2)];
    case 2:
      return std::string("fals") + "eE"[Below(2)];
    default:
      return before[Below(14)] + Digits(digits[Below(8)], mostDigits) + behind[Below(12)];
  }
}

d64 HostileNumbers::Double() {
  const d64 value = std::ldexp(static_cast<d64>(Bits()), static_cast<int>(Below(300)) - 150);
  return Below(2) == 0 ? value : -value;
}

}  // namespace qvx::test
