// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "tests/reference/text_model.h"

#include <map>
#include <optional>

namespace qvx::test {
namespace {

constexpr u32 kTooSmall = 0x0010;
constexpr u32 kBadData = 0x0101;

// What one character becomes; malformed without elements.
template <typename T>
struct Piece {
  u32 size = 0;
  T elements[6] = {};
};

// Malformed for a code point that no six bytes hold.
Piece<u8> Utf8(u64 codePoint) {
  if (codePoint < 128) return {1, {static_cast<u8>(codePoint)}};
  const u64 limits[] = {0, 0, 2048, 65536, 2097152, 67108864, 2147483648};
  const u32 leads[] = {0, 0, 192, 224, 240, 248, 252};
  for (u32 length = 2; length <= 6; ++length) {
    if (codePoint >= limits[length]) continue;
    Piece<u8> piece{length, {}};
    for (u32 at = length - 1; at != 0; --at) {
      piece.elements[at] = static_cast<u8>(128 + codePoint % 64);
      codePoint /= 64;
    }
    piece.elements[0] = static_cast<u8>(leads[length] + codePoint);
    return piece;
  }
  return {};
}

bool IsHigh(u32 unit) { return unit / 1024 == 54; }  // 0xD800 to 0xDBFF
bool IsLow(u32 unit) { return unit / 1024 == 55; }   // 0xDC00 to 0xDFFF

// Pieces are stored while they fit.
template <typename T>
Converted<T> Store(const std::vector<Piece<T>>& pieces, u64 room, bool query) {
  Converted<T> result;
  u64 used = 0;
  for (const Piece<T>& piece : pieces) {
    if (piece.size == 0) {
      result.status = kBadData;
      return result;
    }
    if (!query && used + piece.size > room) {
      result.status = kTooSmall;
      return result;
    }
    used += piece.size;
    if (!query) {
      result.written.insert(result.written.end(), piece.elements, piece.elements + piece.size);
    }
  }
  if (!query) result.written.push_back(0);
  result.size = (used + 1) * sizeof(T);
  return result;
}

u32 LeadingOnes(u32 byte) {
  u32 ones = 0;
  for (u32 bit = 128; bit != 0 && byte / bit % 2 == 1; bit /= 2) {
    ++ones;
  }
  return ones;
}

// The code point at `at`, which moves past it; nothing when it is malformed.
std::optional<u64> Decode(const std::vector<u8>& bytes, size_t* at) {
  const u32 lead = bytes[*at];
  const u32 ones = LeadingOnes(lead);
  const u32 length = ones == 0 ? 1 : ones;
  if (ones == 1 || ones > 6 || *at + length > bytes.size()) return std::nullopt;
  u64 value = lead;
  if (ones != 0) {
    value = lead % (1u << (7 - ones));
    for (u32 rest = 1; rest < length; ++rest) {
      value = value * 64 + bytes[*at + rest] % 64;
    }
  }
  *at += length;
  return value;
}

const std::map<u32, std::string>& Entities() {
  static const std::map<u32, std::string> entities = {
      {'"', "&quot;"}, {'&', "&amp;"}, {'\'', "&apos;"}, {'<', "&lt;"}, {'>', "&gt;"}};
  return entities;
}

}  // namespace

Converted<u8> ModelUcs2ToUtf8(const std::vector<u32>& units, u64 room, bool query) {
  std::optional<u64> first;  // what every surrogate becomes
  if (!units.empty()) {
    if (!IsHigh(units[0]) && !IsLow(units[0])) {
      first = units[0];
    } else if (IsHigh(units[0]) && units.size() > 1 && IsLow(units[1])) {
      first = 65536 + (units[0] - 55296) * 1024 + (units[1] - 56320);
    }
  }
  std::vector<Piece<u8>> pieces;
  for (const u32 unit : units) {
    if (!IsHigh(unit) && !IsLow(unit)) {
      pieces.push_back(Utf8(unit));
    } else {
      pieces.push_back(first ? Utf8(*first) : Piece<u8>());
    }
  }
  return Store<u8>(pieces, room, query);
}

Converted<u8> ModelUcs4ToUtf8(const std::vector<u32>& codePoints, u64 room, bool query) {
  std::vector<Piece<u8>> pieces;
  for (const u32 codePoint : codePoints) {
    pieces.push_back(Utf8(codePoint));
  }
  return Store<u8>(pieces, room, query);
}

Converted<ustring> ModelUtf8ToUcs2(const std::vector<u8>& bytes, u64 room, bool query) {
  std::vector<Piece<ustring>> pieces;
  for (size_t at = 0; at < bytes.size();) {
    const std::optional<u64> codePoint = Decode(bytes, &at);
    if (!codePoint || *codePoint >= 1114112) {
      pieces.emplace_back();
      break;
    }
    if (*codePoint < 65536) {
      pieces.push_back({1, {static_cast<ustring>(*codePoint)}});
    } else {
      const u64 high = 55296 + *codePoint / 1024 % 1024;
      const u64 low = 56320 + *codePoint % 1024;
      pieces.push_back({2, {static_cast<ustring>(high), static_cast<ustring>(low)}});
    }
  }
  return Store<ustring>(pieces, room, query);
}

Converted<u8> ModelXmlEscape(const std::vector<u8>& bytes, u64 room, bool query) {
  Converted<u8> result;
  for (const u8 byte : bytes) {
    const auto entity = Entities().find(byte);
    const std::string piece =
        entity == Entities().end() ? std::string(1, static_cast<char>(byte)) : entity->second;
    if (!query && result.written.size() + piece.size() > room) {
      result.status = kTooSmall;
      return result;
    }
    result.written.insert(result.written.end(), piece.begin(), piece.end());
  }
  if (!query && result.written.size() + 1 > room) {
    result.status = kTooSmall;
    return result;
  }
  result.written.push_back(0);
  result.size = result.written.size();
  if (query) result.written.clear();
  return result;
}

std::string ModelXml(const std::string& text) {
  std::string result;
  for (const char each : text) {
    const auto entity = Entities().find(static_cast<u8>(each));
    result += entity == Entities().end() ? std::string(1, each) : entity->second;
  }
  return result;
}

std::string ModelBackslashEscape(const std::vector<u32>& units) {
  const std::map<u32, std::string> letters = {{9, "\\t"}, {10, "\\n"}, {13, "\\r"}, {92, "\\\\"}};
  const std::string digits = "0123456789abcdef";
  std::string result;
  for (const u32 unit : units) {
    if (letters.contains(unit)) {
      result += letters.at(unit);
    } else if (unit >= 32 && unit <= 127) {
      result += static_cast<char>(unit);
    } else {
      result += "\\u";
      for (const u32 place : {4096u, 256u, 16u, 1u}) {
        result += digits[unit / place % 16];
      }
    }
  }
  return result;
}

std::vector<u32> HostileTexts::Units(u32 longest) {
  static const u32 units[] = {'a',    'b',    'A',    '&',    '\\',   '\t',   '\n',
                              '\r',   0x1F,   0x20,   0x7F,   0x80,   0xE9,   0x7FF,
                              0x800,  0xD7FF, 0xD800, 0xD83D, 0xDBFF, 0xDC00, 0xDE00,
                              0xDFFF, 0xE000, 0xFFFE, 0xFFFF, 0x0109, 0x0161};
  constexpr u32 kCount = sizeof(units) / sizeof(units[0]);
  std::vector<u32> text(Below(longest + 1));
  for (u32& unit : text) {
    unit = Below(8) == 0 ? 1 + Below(0xFFFF) : units[Below(kCount)];
  }
  return text;
}

std::vector<u32> HostileTexts::CodePoints(u32 longest) {
  static const u32 borders[] = {0x7F,     0x7FF,     0xFFFF,     0x10FFFF,
                                0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFE, 0xD7FF};
  std::vector<u32> text(Below(longest + 1));
  for (u32& codePoint : text) {
    codePoint = borders[Below(8)] + Below(2);
    if (Below(8) == 0) codePoint = static_cast<u32>(next_()) | 1;
  }
  return text;
}

std::vector<u8> HostileTexts::Bytes(u32 longest) {
  static const std::string pieces[] = {"a",
                                       "<",
                                       ">",
                                       "&",
                                       "\"",
                                       "'",
                                       "&amp;",
                                       "\x80",
                                       "\xBF",
                                       "\xC0\x80",
                                       "\xC3\xA9",
                                       "\xC3",
                                       "\xE2\x82",
                                       "\xE2\x82\xAC",
                                       "\xED\xA0\x80",
                                       "\xF0\x9F\x98\x80",
                                       "\xF0\x90\x80\x80",
                                       "\xF4\x8F\xBF\xBF",
                                       "\xF4\x90\x80\x80",
                                       "\xF8\x80\x80\x80\x80",
                                       "\xFC\x80\x80\x80\x80\xAF",
                                       "\xFD\xBF\xBF\xBF\xBF\xBF",
                                       "\xFE",
                                       "\xFF",
                                       "\xFF\xFF\xFF\xFF\xFF\xFF"};
  constexpr u32 kCount = sizeof(pieces) / sizeof(pieces[0]);
  std::vector<u8> text;
  for (u32 count = Below(longest + 1); count != 0; --count) {
    const u32 kind = Below(12);
    if (kind == 0) {
      text.push_back(static_cast<u8>(1 + Below(255)));
    } else if (kind < 5) {
      text.push_back(static_cast<u8>('a' + Below(26)));
    } else {
      const std::string& piece = pieces[Below(kCount)];
      text.insert(text.end(), piece.begin(), piece.end());
    }
  }
  return text;
}

constexpr u32 kRunKinds = 7;

u32 HostileTexts::UnitOfKind(u32 kind) {
  switch (kind) {
    case 0:
      return 1 + Below(0x7F);
    case 1:
      return Below(3) == 0 ? 0x80 + Below(0x780) : 1 + Below(0x7F);
    case 2:
      return 0x80 + Below(0x780);
    case 3:
      return 0x800 + Below(0xD000);
    case 4:
      return 0xE000 + Below(0x2000);
    case 5:
      return 0xD800 + Below(0x800);
    default:
      return 1 + Below(0xFFFF);
  }
}

std::vector<u32> HostileTexts::RunsOfUnits(u32 longest) {
  std::vector<u32> text;
  const u32 length = Below(longest + 1);
  if (Below(3) == 0) text = {0xD83D, 0xDE00};  // else most surrogates end the text at once
  while (text.size() < length) {
    const u32 kind = Below(kRunKinds);
    for (u32 count = Below(Below(4) == 0 ? 90 : 20); count != 0; --count) {
      text.push_back(UnitOfKind(kind));
    }
    if (!text.empty() && Below(8) == 0) {
      text[Below(static_cast<u32>(text.size()))] = 1 + Below(0xFFFF);
    }
  }
  return text;
}

void HostileTexts::AppendOfKind(u32 kind, std::vector<u8>* bytes) {
  const auto append = [&](u32 firstLead, u32 leads, u32 more) {
    bytes->push_back(static_cast<u8>(firstLead + Below(leads)));
    for (; more != 0; --more) {
      bytes->push_back(static_cast<u8>(0x80 + Below(0x40)));
    }
  };
  switch (kind) {
    case 0:
      return append(1, 0x7F, 0);
    case 1:
      return Below(3) == 0 ? append(0xC0, 0x20, 1) : append(1, 0x7F, 0);
    case 2:
      return append(0xC0, 0x20, 1);
    case 3:
    case 4:
      return append(0xE0, 0x10, 2);
    case 5:
      return append(0xF0, 4, 3);
    default:
      return append(1, 0xFF, 0);
  }
}

std::vector<u8> HostileTexts::RunsOfBytes(u32 longest) {
  std::vector<u8> text;
  const u32 length = Below(longest + 1);
  while (text.size() < length) {
    const u32 kind = Below(kRunKinds);
    const u32 most = kind == kRunKinds - 1 ? 2 : Below(4) == 0 ? 90 : 20;
    for (u32 count = Below(most); count != 0; --count) {
      AppendOfKind(kind, &text);
    }
    if (!text.empty() && Below(8) == 0) {
      text[Below(static_cast<u32>(text.size()))] = static_cast<u8>(1 + Below(0xFF));
    }
  }
  if (!text.empty() && Below(4) == 0) text.resize(1 + Below(static_cast<u32>(text.size())));
  return text;
}

}  // namespace qvx::test
