// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/ini_model.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "reference/number_model.h"

namespace qvx::test {
namespace {

using Pieces = std::vector<std::string>;

constexpr u32 kSuccess = 0;
constexpr u32 kBadArgument = 0x0002;
constexpr u32 kOpenFailed = 0x0007;
constexpr u32 kTooSmall = 0x0010;
constexpr u32 kBadHeader = 0x0105;
constexpr u32 kNoSection = 0x0106;
constexpr u32 kNoKey = 0x0107;
constexpr u32 kTooLarge = 0x0108;

constexpr size_t kMostOfARead = 8449;
constexpr size_t kMostOfAName = 255;
constexpr size_t kMostOfAText = 8192;

const std::string kNul(1, '\0');

// A line's text ends at its line end or at a NUL.
std::string TextOf(const std::string& piece) {
  return piece.substr(0, piece.find_first_of("\n" + kNul));
}

bool BeginsWithOneOf(const std::string& text, const std::string& characters) {
  return !text.empty() && characters.find(text[0]) != std::string::npos;
}

bool IsComment(const std::string& piece) { return BeginsWithOneOf(TextOf(piece), "#;"); }

std::string WithoutLeadingBlanks(const std::string& piece) {
  const std::string text = TextOf(piece);
  const size_t start = text.find_first_not_of(" \t");
  return start == std::string::npos ? "" : text.substr(start);
}

bool OpensABracket(const std::string& piece) {
  return BeginsWithOneOf(WithoutLeadingBlanks(piece), "[");
}

bool ClosesItsBracket(const std::string& piece) {
  return TextOf(piece).find(']') != std::string::npos;
}

std::string NameInBrackets(const std::string& piece) {
  const std::string inside = WithoutLeadingBlanks(piece).substr(1);
  return inside.substr(0, inside.find(']')).substr(0, kMostOfAName);
}

struct Search {
  u32 status;
  size_t behind;  // the piece after the header
};

Search FindSection(const Pieces& pieces, const std::string& section) {
  for (size_t at = 0; at < pieces.size(); ++at) {
    if (!OpensABracket(pieces[at])) continue;
    if (!ClosesItsBracket(pieces[at])) return {kBadHeader, 0};
    if (NameInBrackets(pieces[at]) == section) return {kSuccess, at + 1};
  }
  return {kNoSection, 0};
}

struct KeyLine {
  std::string key;
  std::string value;
};

// The key lines from one piece up to the next that opens a bracket.
std::vector<KeyLine> KeyLinesFrom(const Pieces& pieces, size_t first) {
  std::vector<KeyLine> lines;
  for (size_t at = first; at < pieces.size() && !OpensABracket(pieces[at]); ++at) {
    const std::string text = WithoutLeadingBlanks(pieces[at]);
    const size_t equals = text.find('=');
    if (IsComment(pieces[at]) || equals == std::string::npos) continue;
    lines.push_back({text.substr(0, equals), text.substr(equals + 1)});
  }
  return lines;
}

struct Found {
  u32 status;
  std::string value;
};

Found FindValue(const std::string& file, const std::string& section, const std::string& key) {
  const Pieces pieces = ModelIniPieces(file);
  const Search search = FindSection(pieces, section);
  if (search.status != kSuccess) return {search.status, ""};
  for (const KeyLine& line : KeyLinesFrom(pieces, search.behind)) {
    if (line.key == key) return {kSuccess, line.value};
  }
  return {kNoKey, ""};
}

// Lists: the names that fit, each with its NUL, and the NUL that closes them. The first two bytes
// are zeroed before anything is known.

IniAnswer ListOf(const std::vector<std::string>& names, u32 room, u32 failure, u32 whenEmpty) {
  std::string stored;
  u64 total = 0;
  for (const std::string& name : names) {
    total += name.size() + 1;
    if (total <= room) stored += name + kNul;
  }
  stored += kNul;
  if (stored.size() < 2) stored += kNul;
  if (failure != kSuccess) return {failure, stored, room};
  if (names.empty()) return {whenEmpty, stored, room};
  return {total <= room ? kSuccess : kTooSmall, stored, static_cast<u32>(total)};
}

IniAnswer ListKeys(const std::string& file, const IniQuestion& question) {
  const Pieces pieces = ModelIniPieces(file);
  const Search search = FindSection(pieces, *question.section);
  std::vector<std::string> names;
  if (search.status == kSuccess) {
    for (const KeyLine& line : KeyLinesFrom(pieces, search.behind))
      names.push_back(line.key);
  }
  return ListOf(names, question.size, search.status, kNoKey);
}

IniAnswer ListSections(const std::string& file, const IniQuestion& question) {
  std::vector<std::string> names;
  u32 failure = kSuccess;
  for (const std::string& piece : ModelIniPieces(file)) {
    if (!OpensABracket(piece)) continue;
    if (!ClosesItsBracket(piece)) {
      failure = kBadHeader;
      break;
    }
    names.push_back(NameInBrackets(piece));
  }
  return ListOf(names, question.size, failure, kNoSection);
}

IniAnswer ReadText(const IniFile& file, const IniQuestion& question) {
  const u32 room = question.size;
  if (room == 0) return {kBadArgument, "", room};
  if (!file) return {kOpenFailed, "", room};
  const bool isList = !question.section || !question.key;
  if (isList && room < 2) return {kBadArgument, "", room};
  if (!question.section) return ListSections(*file, question);
  if (!question.key) return ListKeys(*file, question);
  const Found found = FindValue(*file, *question.section, *question.key);
  if (found.status == kSuccess) {
    const std::string whole = found.value + kNul;
    const u32 needed = static_cast<u32>(whole.size());
    if (needed > room) return {kTooSmall, "", needed};
    return {kSuccess, whole, needed};
  }
  if (!question.standIn || question.standIn->empty()) return {found.status, kNul, 0};
  std::string copied = question.standIn->substr(0, room);
  copied.back() = '\0';
  return {found.status, copied, static_cast<u32>(copied.size())};
}

// The text for a typed value, which the work room of the numbers must hold.
Found TypedText(const IniFile& file, const IniQuestion& question, size_t mostCharacters) {
  if (!file) return {kOpenFailed, ""};
  const Found found = FindValue(*file, *question.section, *question.key);
  if (found.value.size() > mostCharacters) return {kTooSmall, ""};
  return found;
}

std::string Lower(std::string text) {
  for (char& each : text) {
    if (each >= 'A' && each <= 'Z') each = static_cast<char>(each - 'A' + 'a');
  }
  return text;
}

template <typename Number>
std::string BytesOf(Number number) {
  std::string bytes(sizeof(number), '\0');
  memcpy(bytes.data(), &number, sizeof(number));
  return bytes;
}

struct Converted {
  u32 status;
  std::string bytes;
};

Converted ConvertBoolean(const std::string& text) {
  const size_t start = text.find_first_not_of(' ');
  if (start == std::string::npos) return {kTooLarge, ""};
  const std::string rest = Lower(text.substr(start));
  const std::string word = rest.substr(0, rest.find(' '));
  if (word == "true") return {kSuccess, BytesOf(booln{1})};
  if (word == "false") return {kSuccess, BytesOf(booln{0})};
  return {kTooLarge, ""};
}

Converted ConvertNumber(const std::string& text, s32 type) {
  if (type == 4) return ConvertBoolean(text);
  if (type == 5) return {kSuccess, BytesOf(static_cast<u32>(ModelDecimal64(text, "+-")))};
  if (type == 6) return {kSuccess, BytesOf(static_cast<u32>(ModelDecimal64(text, "+-")))};
  if (type == 7) return {kSuccess, BytesOf(ModelDecimal64(text, "+"))};
  if (type == 8) return {kSuccess, BytesOf(ModelDecimal64(text, "+-"))};
  return {kSuccess, BytesOf(strtod(text.c_str(), nullptr))};
}

u32 WidthOf(s32 type) {
  if (type == 4) return 2;
  return type <= 6 ? 4 : 8;
}

bool MayExceed64Bits(const std::string& text) {
  return std::count_if(text.begin(), text.end(),
                       [](char each) { return each >= '0' && each <= '9'; }) > 18;
}

IniAnswer ReadNumber(const IniFile& file, const IniQuestion& question) {
  const u32 width = WidthOf(question.type);
  if (question.size < width) return {kBadArgument, "", question.size};
  const Found found = TypedText(file, question, kMostOfAText);
  Converted converted = {found.status, ""};
  if (found.status == kSuccess) converted = ConvertNumber(found.value, question.type);
  const bool anyValue = (question.type == 5 || question.type == 6) && MayExceed64Bits(found.value);
  if (converted.status == kSuccess) return {kSuccess, converted.bytes, question.size, anyValue};
  if (question.standIn && question.standIn->size() >= width) {
    return {converted.status, question.standIn->substr(0, width), width};
  }
  return {converted.status, "", 0};
}

// One piece of a byte list: no number, a byte, or a number that is no byte.
enum class Piece { kNoNumber, kByte, kNoByte };

Piece ReadHexadecimal(const std::string& piece, u8* byte) {
  const size_t start = piece.find_first_not_of(" \t\n\v\f\r");
  if (start == std::string::npos) return Piece::kNoNumber;
  std::string rest = Lower(piece.substr(start));
  const bool negative = rest[0] == '-';
  if (rest[0] == '-' || rest[0] == '+') rest = rest.substr(1);
  const std::string digits = "0123456789abcdef";
  // A prefix without digits is the number 0 before a letter.
  if (rest.substr(0, 2) == "0x" && rest.size() > 2 && digits.find(rest[2]) != std::string::npos) {
    rest = rest.substr(2);
  }
  const std::string number = rest.substr(0, rest.find_first_not_of(digits));
  if (number.empty()) return Piece::kNoNumber;
  const size_t first = number.find_first_not_of('0');
  if (first == std::string::npos) {
    *byte = 0;
    return Piece::kByte;
  }
  const std::string significant = number.substr(first);
  if (negative || significant.size() > 2) return Piece::kNoByte;
  *byte = 0;
  for (const char digit : significant)
    *byte = static_cast<u8>(*byte * 16 + digits.find(digit));
  return Piece::kByte;
}

Converted ConvertBytes(const std::string& text) {
  std::string bytes;
  std::string rest = text + ",";
  while (!rest.empty()) {
    const size_t comma = rest.find(',');
    u8 byte = 0;
    const Piece piece = ReadHexadecimal(rest.substr(0, comma), &byte);
    if (piece == Piece::kNoNumber) return {kSuccess, bytes};
    if (piece == Piece::kNoByte) return {kTooLarge, bytes};
    bytes += static_cast<char>(byte);
    rest = rest.substr(comma + 1);
  }
  return {kSuccess, bytes};
}

IniAnswer ReadBytes(const IniFile& file, const IniQuestion& question) {
  const u32 room = question.size;
  const Found found = TypedText(file, question, kMostOfARead);
  Converted converted = {found.status, ""};
  if (found.status == kSuccess) converted = ConvertBytes(found.value);
  std::string stored = converted.bytes.substr(0, room);
  if (converted.status == kSuccess) {
    const u32 count = static_cast<u32>(converted.bytes.size());
    return {count > room ? kTooSmall : kSuccess, stored, count};
  }
  if (!question.standIn) return {converted.status, stored, 0};
  const std::string copied = question.standIn->substr(0, room);
  stored.replace(0, copied.size(), copied);
  return {converted.status, stored, static_cast<u32>(copied.size())};
}

// How many bytes a wide text takes with its 0 unit; 0 when it has none.
size_t WideSize(const std::string& bytes) {
  for (size_t at = 0; at + 2 <= bytes.size(); at += 2) {
    if (bytes[at] == '\0' && bytes[at + 1] == '\0') return at + 2;
  }
  return 0;
}

bool IsWideTextOfItsSize(const std::string& bytes) {
  return !bytes.empty() && WideSize(bytes) == bytes.size();
}

// ---- The writer.

std::string HexadecimalList(const std::string& bytes) {
  const std::string digits = "0123456789ABCDEF";
  std::string text;
  for (const char each : bytes) {
    const u8 byte = static_cast<u8>(each);
    if (!text.empty()) text += ',';
    text += std::string("0x") + digits[byte / 16] + digits[byte % 16];
  }
  return text;
}

template <typename Number>
Number NumberIn(const std::string& bytes) {
  Number number = 0;
  memcpy(&number, bytes.data(), sizeof(number));
  return number;
}

std::string NumberAsText(const std::string& bytes, s32 type) {
  if (type == 4) return NumberIn<booln>(bytes) == 1 ? "TRUE" : "FALSE";
  if (type == 5) return std::to_string(NumberIn<u32>(bytes));
  if (type == 6) return std::to_string(NumberIn<s32>(bytes));
  if (type == 7) return std::to_string(NumberIn<u64>(bytes));
  if (type == 8) return std::to_string(NumberIn<s64>(bytes));
  return ModelDouble(NumberIn<d64>(bytes), 8);
}

// The key's text runs up to "=" or to the end of the line.
std::string KeyOf(const std::string& piece) {
  const std::string text = WithoutLeadingBlanks(piece);
  return text.substr(0, text.find('='));
}

std::string Joined(const Pieces& pieces, size_t first, size_t last) {
  std::string text;
  for (size_t at = first; at < last; ++at)
    text += pieces[at];
  return text;
}

IniOutcome Append(const IniFile& file, const IniChange& change,
                  const std::optional<std::string>& text) {
  if (!text) return {kTooLarge, file, false, false};
  const std::string added = "[" + *change.section + "]\n" + *change.key + "=" + *text + "\n";
  return {kSuccess, file.value_or("") + added, true, false};
}

IniOutcome Update(const std::string& file, const IniChange& change,
                  const std::optional<std::string>& text) {
  const Pieces pieces = ModelIniPieces(file);
  const Search search = FindSection(pieces, *change.section);
  if (search.status == kNoSection) return Append(file, change, text);
  if (search.status != kSuccess) return {search.status, file, false, true};
  size_t at = search.behind;
  bool matched = false;
  while (at < pieces.size() && !OpensABracket(pieces[at])) {
    matched = !IsComment(pieces[at]) && KeyOf(pieces[at]) == *change.key;
    if (matched) break;
    ++at;
  }
  const std::string line = text ? *change.key + "=" + *text + "\n" : "";
  const std::string after = Joined(pieces, matched ? at + 1 : at, pieces.size());
  return {kSuccess, Joined(pieces, 0, at) + line + after, true, false};
}

IniOutcome WriteText(const IniFile& file, const IniChange& change,
                     const std::optional<std::string>& text) {
  if (!change.section || change.section->size() > kMostOfAName || !change.key ||
      change.key->size() > kMostOfAName) {
    return {kBadArgument, file, false, false};
  }
  if (text && text->size() > kMostOfAText) return {kTooLarge, file, false, false};
  return file ? Update(*file, change, text) : Append(file, change, text);
}

// Whether a value has the size that its type asks for; for a text the names come first.
bool FitsItsSize(const IniChange& change) {
  const s32 size = change.size;
  if (!change.value) return size == 0;
  if (change.type == 2)
    return size < 2049 && size >= 2 && WideSize(*change.value) == static_cast<size_t>(size);
  if (change.type == 3) return size >= 1 && size <= 2048;
  return size >= static_cast<s32>(WidthOf(change.type));
}

}  // namespace

std::vector<std::string> ModelIniPieces(const std::string& file) {
  Pieces pieces;
  std::string rest = file;
  while (!rest.empty()) {
    std::string piece = rest.substr(0, kMostOfARead);
    if (piece.find('\n') != std::string::npos) piece = piece.substr(0, piece.find('\n') + 1);
    rest = rest.substr(piece.size());
    pieces.push_back(piece);
  }
  return pieces;
}

IniAnswer ModelIniRead(const IniFile& file, const IniQuestion& question) {
  const IniAnswer refused = {kBadArgument, "", question.size};
  if (question.type < 1 || question.type > 9) return refused;
  if (question.type == 1) return ReadText(file, question);
  if (!question.section || !question.key || question.size == 0) return refused;
  if (question.type >= 4) return ReadNumber(file, question);
  if (question.type == 2 && question.standIn && !IsWideTextOfItsSize(*question.standIn)) {
    return refused;
  }
  return ReadBytes(file, question);
}

IniOutcome ModelIniWrite(const IniFile& file, const IniChange& change) {
  const IniOutcome refused = {kBadArgument, file, false, false};
  const IniOutcome doesNotFit = {kTooLarge, file, false, false};
  if (change.type < 1 || change.type > 9) return refused;
  if (change.type == 1) {
    // Names are checked before the size.
    const IniOutcome named = WriteText(file, change, change.value);
    if (named.status == kBadArgument) return named;
    const s64 wanted = change.value ? static_cast<s64>(change.value->size()) + 1 : 0;
    return change.size == wanted ? named : doesNotFit;
  }
  if (change.type >= 4 && !change.value) return refused;
  if (!FitsItsSize(change)) return doesNotFit;
  if (!change.value) return WriteText(file, change, change.value);
  const std::string bytes = change.value->substr(0, static_cast<size_t>(change.size));
  return WriteText(file, change,
                   change.type <= 3 ? HexadecimalList(bytes) : NumberAsText(bytes, change.type));
}

}  // namespace qvx::test
