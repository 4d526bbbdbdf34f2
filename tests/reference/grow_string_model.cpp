// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/grow_string_model.h"

#include <algorithm>

#include "reference/text_model.h"

namespace qvx::test {
namespace {

constexpr u64 kMost32 = 4294967295;

std::string Hex(u64 value, size_t places) {
  std::string text;
  while (text.size() < places) {
    text.insert(text.begin(), "0123456789ABCDEF"[value % 16]);
    value /= 16;
  }
  return text;
}

std::string DumpLine(const std::string& bytes, u64 address) {
  std::string line = "0x" + Hex(address % 4294967296, 8) + ": ";
  std::string shown;
  for (size_t at = 0; at < bytes.size(); ++at) {
    const u32 byte = static_cast<u8>(bytes[at]);
    const bool colon = at % 4 == 3 && at < 15 && at + 1 < bytes.size();
    line += Hex(byte, 2) + (colon ? ":" : " ");
    shown += byte >= 32 && byte <= 122 ? static_cast<char>(byte) : '.';
  }
  line.resize(63, ' ');
  line += shown;
  line.resize(80, ' ');
  return line + "\r\n";
}

u64 NextCapacity(u64 capacity, u64 needed) {
  const u64 grown = capacity > 1048575 ? capacity * 125 / 100 : capacity * 2;
  return std::min(std::max(needed, grown), kMost32);
}

std::string Folded(std::string text) {
  for (char& each : text) {
    if (each >= 'A' && each <= 'Z') each = static_cast<char>(each - 'A' + 'a');
  }
  return text;
}

// The place after the character that completes the match; nothing without one.
std::optional<size_t> EndOfMatch(const std::string& text, const std::string& find) {
  std::string wanted = find;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text[at] == wanted[0]) wanted.erase(0, 1);
    if (wanted.empty()) return at + 1;
  }
  return std::nullopt;
}

std::string UpToNul(const std::string& room) { return room.substr(0, room.find('\0')); }

}  // namespace

std::string ModelHexDump(const std::string& bytes, u32 firstAddress) {
  std::string dump;
  for (size_t at = 0; at < bytes.size(); at += 16) {
    dump += DumpLine(bytes.substr(at, 16), u64{firstAddress} + at);
  }
  return dump;
}

bool ModelRecord::Alloc(u32 capacity) {
  if (capacity == 0) return false;
  live_ = true;
  capacity_ = capacity;
  units_.clear();
  return true;
}

void ModelRecord::Free() {
  live_ = false;
  capacity_ = 0;
  units_.clear();
}

bool ModelRecord::Append(const std::optional<ModelUnits>& text) {
  if (!live_) return false;
  if (!text) return true;
  const u64 needed = (units_.size() + text->size() + 1) * unitBytes_;
  if (needed > kMost32) return true;
  if (needed > capacity_) capacity_ = NextCapacity(capacity_, needed);
  units_.insert(units_.end(), text->begin(), text->end());
  return true;
}

bool ModelRecord::AppendOther(const std::optional<ModelUnits>& text) {
  if (!live_) return false;
  if (!text) return true;
  ModelUnits converted;
  if (unitBytes_ == 1) {
    const Converted<u8> bytes = ModelUcs2ToUtf8(*text, 0xFFFFFFFF, false);
    if (bytes.status != 0) return true;
    converted.assign(bytes.written.begin(), bytes.written.end());
  } else {
    const std::vector<u8> bytes(text->begin(), text->end());
    const Converted<ustring> units = ModelUtf8ToUcs2(bytes, 0xFFFFFFFF, false);
    if (units.status != 0) return true;
    converted.assign(units.written.begin(), units.written.end());
  }
  // The terminator ends the text, and so does a character that decodes to 0.
  converted.erase(std::find(converted.begin(), converted.end(), 0u), converted.end());
  return Append(converted);
}

s32 ModelRecord::Dump(const std::optional<std::string>& bytes, u32 firstAddress) {
  if (!bytes || bytes->empty()) return 0;
  if (!live_) return -1;
  // Line by line: the capacity doubles as often as it would for each of them.
  for (size_t at = 0; at < bytes->size(); at += 16) {
    const std::string line = DumpLine(bytes->substr(at, 16), u64{firstAddress} + at);
    (void)Append(ModelUnits(line.begin(), line.end()));
  }
  return 0;
}

std::string ModelWithoutQuotes(const std::string& text) {
  std::string rest;
  for (const char each : text) {
    if (each != '"') rest += each;
  }
  return rest;
}

s32 ModelCompareFolded(const std::string& first, const std::string& second, u32 count) {
  // A terminator is a character like any other here: it differs, or it ends both texts.
  const std::string one = Folded(first) + '\0';
  const std::string two = Folded(second) + '\0';
  for (size_t at = 0; at < count && at < one.size() && at < two.size(); ++at) {
    if (one[at] != two[at]) return s32{static_cast<u8>(one[at])} - s32{static_cast<u8>(two[at])};
  }
  return 0;
}

ModelReplaced ModelReplace(const std::string& text, const std::string& find,
                           const std::string& replace, u32 size,
                           const std::optional<std::string>& room) {
  ModelReplaced result{0, size, room.value_or("")};
  if (find.empty() || text.empty() || text.size() < find.size()) {
    result.status = 0x010F;
    return result;
  }
  const u64 needed = text.size() + replace.size() + 1 - find.size();
  if (!room || needed > size) {
    result.status = 0x000F;
    result.size = static_cast<u32>(needed);
    return result;
  }
  std::string stored;
  if (const std::optional<size_t> end = EndOfMatch(text, find)) {
    stored = text.substr(0, *end - find.size()) + replace + text.substr(*end) + '\0';
  } else {
    result.status = 0xFFFFFFFF;
    const size_t count = std::min<size_t>(UpToNul(*room).size(), size);
    stored = text.substr(0, count);
    stored.resize(count, '\0');
  }
  result.room.replace(0, stored.size(), stored);
  return result;
}

}  // namespace qvx::test
