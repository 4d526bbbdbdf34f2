// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/ini_value.h"

#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "ctl/output.h"
#include "text/transcode.h"

namespace qvx::ctl {
namespace {

enum : s32 { kText = 1, kUnits, kBlock, kBoolean, kU32, kS32, kU64, kS64, kD64 };

constexpr IniTypeEntry kTypes[] = {
    {"astring", kText, 0},  {"ustring", kUnits, 0}, {"binary", kBlock, 0},
    {"booln", kBoolean, 2}, {"u32", kU32, 4},       {"s32", kS32, 4},
    {"u64", kU64, 8},       {"s64", kS64, 8},       {"d64", kD64, 8},
};

[[noreturn]] void RefuseValue(const IniTypeEntry& type, const std::string& text) {
  throw Failure(kUsage, "ini: \"" + text + "\" is no value of type " + type.name);
}

template <typename Value>
std::vector<u8> BytesOf(const Value& value) {
  std::vector<u8> bytes(sizeof(value));
  memcpy(bytes.data(), &value, sizeof(value));
  return bytes;
}

template <typename Value>
Value ValueOf(const std::vector<u8>& bytes) {
  Value value{};
  memcpy(&value, bytes.data(), std::min(sizeof(value), bytes.size()));
  return value;
}

template <typename Value>
std::vector<u8> EncodeNumber(const IniTypeEntry& type, const std::string& text) {
  Value value{};
  const char* const end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, value);
  if (fault != std::errc() || stop != end) RefuseValue(type, text);
  return BytesOf(value);
}

// By strtod, because not every C++ library has std::from_chars for it; the tool keeps the decimal
// point of locale "C". What only strtod takes is refused: blanks, "+", hexadecimal numbers.
std::vector<u8> EncodeDouble(const IniTypeEntry& type, const std::string& text) {
  const bool isPlain = !text.empty() && strchr(" \t\n\v\f\r+", text[0]) == nullptr &&
                       text.find_first_of("xX") == std::string::npos;
  char* stop = nullptr;
  errno = 0;
  const double value = strtod(text.c_str(), &stop);
  const bool isOutOfRange = errno == ERANGE && (value == 0 || std::isinf(value));
  if (!isPlain || stop != text.c_str() + text.size() || isOutOfRange) RefuseValue(type, text);
  return BytesOf(value);
}

std::vector<u8> EncodeBoolean(const IniTypeEntry& type, const std::string& text) {
  const bool isTrue = strcasecmp(text.c_str(), "true") == 0;
  if (!isTrue && strcasecmp(text.c_str(), "false") != 0) RefuseValue(type, text);
  return BytesOf<booln>(isTrue ? 1 : 0);
}

// "0x01,0xAB", as the file has it; the prefix may be left out.
std::vector<u8> EncodeBlock(const IniTypeEntry& type, const std::string& text) {
  std::vector<u8> bytes;
  const char* at = text.data();
  const char* const end = at + text.size();
  for (;; ++at) {
    if (end - at > 2 && at[0] == '0' && (at[1] == 'x' || at[1] == 'X')) at += 2;
    u8 byte = 0;
    const auto [stop, fault] = std::from_chars(at, end, byte, 16);
    if (fault != std::errc()) RefuseValue(type, text);
    bytes.push_back(byte);
    if (stop == end) return bytes;
    if (*stop != ',') RefuseValue(type, text);
    at = stop;
  }
}

std::vector<u8> EncodeUnits(const IniTypeEntry& type, const std::string& text) {
  std::vector<ustring> units(text.size() + 2);
  u32 size = static_cast<u32>(text.size() + 1);
  if (UTF8StrToUCS2Str(units.data(), &size, text.c_str()) != 0) RefuseValue(type, text);
  std::vector<u8> bytes(size);
  memcpy(bytes.data(), units.data(), size);
  return bytes;
}

std::string HexList(const std::vector<u8>& bytes) {
  std::string text;
  for (const u8 byte : bytes) {
    char piece[8];
    (void)snprintf(piece, sizeof(piece), "%s0x%02X", text.empty() ? "" : ",", byte);
    text += piece;
  }
  return text;
}

std::string TextOfDouble(d64 value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value < 0 ? "-inf" : "inf";
  return Json(value).dump();
}

// JSON has no number for these two.
Json JsonOfDouble(d64 value) {
  if (std::isfinite(value)) return value;
  return TextOfDouble(value);
}

// A block that is no text of units is shown as its bytes.
std::string TextOfUnits(const std::vector<u8>& bytes) {
  std::vector<ustring> units(bytes.size() / 2 + 1);
  memcpy(units.data(), bytes.data(), bytes.size() / 2 * 2);
  u32 size = 0;
  if (UCS2StrToUTF8Str(nullptr, &size, units.data()) != 0) return HexList(bytes);
  std::string text(size + size_t{1}, '\0');
  if (UCS2StrToUTF8Str(text.data(), &size, units.data()) != 0) return HexList(bytes);
  text.resize(size - size_t{1});
  return text;
}

}  // namespace

const IniTypeEntry& FindIniType(std::string_view name) {
  for (const IniTypeEntry& type : kTypes) {
    if (name == type.name) return type;
  }
  throw Failure(kUsage, "ini: \"" + std::string(name) + "\" is no type");
}

std::vector<std::string> IniTypeNames() {
  std::vector<std::string> names;
  for (const IniTypeEntry& type : kTypes) {
    names.emplace_back(type.name);
  }
  return names;
}

std::vector<u8> EncodeIniValue(const IniTypeEntry& type, const std::string& text) {
  switch (type.code) {
    case kUnits:
      return EncodeUnits(type, text);
    case kBlock:
      return EncodeBlock(type, text);
    case kBoolean:
      return EncodeBoolean(type, text);
    case kU32:
      return EncodeNumber<u32>(type, text);
    case kS32:
      return EncodeNumber<s32>(type, text);
    case kU64:
      return EncodeNumber<u64>(type, text);
    case kS64:
      return EncodeNumber<s64>(type, text);
    case kD64:
      return EncodeDouble(type, text);
    default:
      return {text.c_str(), text.c_str() + text.size() + 1};
  }
}

Json JsonOfIniValue(const IniTypeEntry& type, const std::vector<u8>& bytes) {
  switch (type.code) {
    case kBoolean:
      return ValueOf<booln>(bytes) == 1;
    case kU32:
      return ValueOf<u32>(bytes);
    case kS32:
      return ValueOf<s32>(bytes);
    case kU64:
      return ValueOf<u64>(bytes);
    case kS64:
      return ValueOf<s64>(bytes);
    case kD64:
      return JsonOfDouble(ValueOf<d64>(bytes));
    default:
      return TextOfIniValue(type, bytes);
  }
}

std::string TextOfIniValue(const IniTypeEntry& type, const std::vector<u8>& bytes) {
  switch (type.code) {
    case kText:
      return {bytes.begin(), std::find(bytes.begin(), bytes.end(), 0)};
    case kUnits:
      return TextOfUnits(bytes);
    case kBlock:
      return HexList(bytes);
    case kBoolean:
      return ValueOf<booln>(bytes) == 1 ? "TRUE" : "FALSE";
    case kD64:
      return TextOfDouble(ValueOf<d64>(bytes));
    default:
      return JsonOfIniValue(type, bytes).dump();
  }
}

}  // namespace qvx::ctl
