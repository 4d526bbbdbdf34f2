// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/keyvalue_model.h"

namespace qvx::test {
namespace {

constexpr size_t kLongestRead = 8449;
constexpr size_t kLineRoom = 8451;
constexpr u32 kDataTooLarge = 0x0108;
constexpr u32 kInvalidParameter = 0x010F;

bool IsBlank(char each) { return std::string(" \t\r\n").find(each) != std::string::npos; }

// What is seen of a line: its text up to the first NUL.
std::string Seen(const std::string& line) { return line.substr(0, line.find('\0')); }

// Everything up to the first character after "=" that is no blank, without its blanks outside
// quotes, and then the rest as it is.
std::string WithoutLeadingBlanks(const std::string& line) {
  size_t end = line.find('=') + 1;
  while (end < line.size() && IsBlank(line[end]))
    ++end;
  std::string kept;
  bool quoted = false;
  for (const char each : line.substr(0, end)) {
    if (each == '"') quoted = !quoted;
    if (quoted || !IsBlank(each)) kept += each;
  }
  return kept + line.substr(end);
}

std::string WithoutTrailingBlanks(std::string line) {
  while (!line.empty() && IsBlank(line.back()))
    line.pop_back();
  return line;
}

std::string WithoutQuotes(const std::string& line) {
  std::string kept;
  for (const char each : line) {
    if (each != '"') kept += each;
  }
  return kept;
}

}  // namespace

std::vector<std::string> ModelKeyValueLines(const std::string& file) {
  std::vector<std::string> lines;
  std::string line;
  for (const char each : file) {
    line += each;
    if (each != '\n' && line.size() < kLongestRead) continue;
    lines.push_back(line);
    line.clear();
  }
  if (!line.empty()) lines.push_back(line);
  return lines;
}

std::string ModelCleanLine(const std::string& line) {
  std::string seen = Seen(line);
  if (seen.find('=') == std::string::npos) return seen;
  return WithoutQuotes(WithoutTrailingBlanks(WithoutLeadingBlanks(seen)));
}

std::optional<ModelKeyValue> ModelKeyValueOf(const std::string& line) {
  const std::string clean = ModelCleanLine(line);
  if (clean.find('=') == std::string::npos) return std::nullopt;
  if (clean[0] == ';' || clean[0] == '#') return std::nullopt;
  const size_t equals = clean.find('=');
  return ModelKeyValue(clean.substr(0, equals), clean.substr(equals + 1));
}

std::vector<ModelKeyValue> ModelKeyValues(const std::string& file) {
  std::vector<ModelKeyValue> entries;
  for (const std::string& line : ModelKeyValueLines(file)) {
    if (const auto entry = ModelKeyValueOf(line)) entries.push_back(*entry);
  }
  return entries;
}

std::optional<std::string> ModelValueOf(const std::vector<ModelKeyValue>& entries,
                                        const std::string& key, u32 index) {
  std::vector<std::string> values;
  for (const ModelKeyValue& entry : entries) {
    if (entry.first == key) values.push_back(entry.second);
  }
  if (index >= values.size()) return std::nullopt;
  return values[index];
}

ModelKeyValueFile ModelSetKeyValue(const std::string& file, const ModelKeyValue& pair, u32 index) {
  if (pair.first.size() + pair.second.size() + 3 > kLineRoom) return {kDataTooLarge, file};
  const std::string written = pair.first + "=" + pair.second + "\n";
  std::vector<std::string> lines = ModelKeyValueLines(file);
  std::vector<size_t> occurrences;
  for (size_t at = 0; at < lines.size(); ++at) {
    const auto entry = ModelKeyValueOf(lines[at]);
    if (entry && entry->first == pair.first) occurrences.push_back(at);
  }
  if (index < occurrences.size()) {
    lines[occurrences[index]] = written;
  } else if (index == occurrences.size()) {
    lines.push_back(written);
  } else {
    return {kInvalidParameter, file};
  }
  std::string text;
  for (const std::string& line : lines)
    text += line;
  return {0, text};
}

std::string HostileKeyValues::Key() {
  return Pick({"a",
               "a",
               "a",
               "a",
               "a",
               "a",
               "b",
               "b",
               "log level",
               "loglevel",
               "",
               "a b",
               ";a",
               "#",
               "A",
               "a=b",
               "\xC3\xA9",
               "\xFF",
               "a\n",
               "aaaa",
               std::string(255, 'k'),
               std::string(8448, 'k')});
}

std::string HostileKeyValues::Value() {
  switch (Below(8)) {
    case 0:
      return "";
    case 1:
      return std::string(253 + Below(5), 'v');
    case 2:
      return std::string(8444 + Below(8), 'v');
    default:
      return Pick({"1", "x y", "\"x y\"", "  1  ", "=", "a=b", "1\r", "1\n", "x\nb=2", "\x80\xFF",
                   "\"", "#"});
  }
}

// Lines whose length, or the length of a part, is at a limit.
std::string HostileKeyValues::LongLine() {
  const u32 lengths[] = {254, 255, 256, 257, 8447, 8448, 8449, 8450, 8451, 16898, 16899};
  const size_t length = lengths[Below(11)];
  const std::string fill(1, "v \t\"=\0"[Below(6)]);
  std::string line = Pick({"a=", "b = ", " \"a", "; ", "=", "", "a=\""});
  while (line.size() < length - 1)
    line += fill;
  return line + Pick({"v", " ", "\"", "=", "\n", "\r"}) + Pick({"", "", "a=1", "b=\"2 \" "});
}

std::string HostileKeyValues::Line() {
  if (Below(24) == 0) return LongLine();
  std::string line;
  if (Below(3) != 0) {
    line = Pick({"a", "a", "a", "b", " a", "\ta ", "\"a\"", "log level", "\"log level\"", ";a",
                 "# c"}) +
           Pick({"=", "=", " = ", "\t=\t", "= ", " ="}) +
           Pick({"1", "", "\"x y\"", " very high ", "x y  ", "\"x \" ", "'q'", "a=b"});
  } else {
    const std::string nul(1, '\0');
    for (u32 pieces = Below(9); pieces > 0; --pieces) {
      line += Pick({"a",  "b",    "a",        "=",        "=",    "=",  " ",  "\t",
                    "\r", "\v",   "\f",       "\"",       "\"",   "\"", ";",  "#",
                    nul,  "\xFF", "\xC0\x80", "\xC3\xA9", "\x01", "  ", "aa", "\\"});
    }
  }
  return line;
}

std::string HostileKeyValues::File() {
  std::string file;
  for (u32 lines = Below(7); lines > 0; --lines)
    file += Line() + (Below(6) == 0 ? "\r\n" : "\n");
  if (!file.empty() && Below(4) == 0) file.pop_back();
  return file;
}

}  // namespace qvx::test
