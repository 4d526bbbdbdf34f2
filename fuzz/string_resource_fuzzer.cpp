// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: identifier, language ("-" for none) and room, one a line, then the file.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>

#include "qvxcs/string_resource.h"

#include "fuzz/fuzz_support.h"
#include "support/files.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;

constexpr char kPath[] = "/run/fuzz/resource";
constexpr size_t kLineUnits = 1024;
constexpr u32 kMostRoom = 3000;

using Units = std::u16string;

Units UnitsOf(const std::string& bytes) {
  Units units(bytes.size() / 2, u'\0');
  memcpy(units.data(), bytes.data(), units.size() * 2);
  return units;
}

Units Widened(const char* text) { return Units(text, text + strlen(text)); }

// The next line, up to its CR LF or 1,024 units; without a line end, or where the line end is the
// very last of those units, it loses its last unit, and the next line begins with that unit. Empty
// when fewer than two are left.
Units NextLine(const Units& file, size_t* at) {
  const Units piece = file.substr(*at, kLineUnits);
  if (piece.size() < 2) return Units();
  const size_t end = piece.find(u"\r\n");
  const bool ends = end != Units::npos && end + 2 < kLineUnits;
  const Units line = piece.substr(0, ends ? end + 2 : piece.size() - 1);
  *at += line.size();
  return line;
}

// The text after the last "=" of the first line that contains the key.
std::optional<Units> TextIn(const Units& file, u32 language, u32 identifier) {
  char key[32];
  (void)snprintf(key, sizeof(key), "%X:%X=", language, identifier);
  size_t at = 0;
  for (Units line = NextLine(file, &at); !line.empty(); line = NextLine(file, &at)) {
    line = line.substr(0, line.find(u'\0'));
    if (line.find(Widened(key)) == Units::npos) continue;
    const Units text = line.substr(line.rfind(u'=') + 1);
    return text.substr(0, text.find_first_of(u"\r\n"));
  }
  return std::nullopt;
}

struct Answer {
  std::optional<Units> text;
  u32 language;
};

Answer Expected(const std::string& file, u32 identifier, u32 language) {
  if (file.substr(0, 2) != "\xFF\xFE") return {Widened("Invalid string resource found"), language};
  const Units units = UnitsOf(file.substr(2));
  const u32 sought = language == 1033 || language == 437 ? 0 : language;
  const std::optional<Units> text = TextIn(units, sought, identifier);
  if (text || sought == 0) return {text, sought};
  return {TextIn(units, 0, identifier), 0};
}

void CheckDelivery(const Answer& expected, u32 identifier, const std::optional<u32>& given,
                   u32 room) {
  const auto needed = static_cast<u32>(expected.text ? expected.text->size() * 2 + 2 : 0);
  Block<ustring> buffer(room / 2);
  u32 language = given.value_or(0);
  u32 size = room;
  const u32 delivered = PXTGetUnicodeStringFromIDPathFile(identifier, given ? &language : nullptr,
                                                          kPath, buffer.data(), &size);
  Require(delivered == (needed <= room ? needed : 0), "a text that fits is delivered");
  Require(size == delivered, "the size is what was delivered");
  Require(!given || language == expected.language, "the language is the one that had the text");
  Require(buffer.UntouchedFrom(delivered / 2), "nothing is stored after the text");
  if (delivered == 0) return;
  Require(std::equal(expected.text->begin(), expected.text->end(), buffer.data()) &&
              buffer[delivered / 2 - 1] == 0,
          "the text is the model's, and ends");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  const auto identifier = static_cast<u32>(input.Number());
  const std::string languageLine = input.Line();
  std::optional<u32> language;
  if (languageLine != "-") {
    language = static_cast<u32>(strtoull(languageLine.c_str(), nullptr, 10));
  }
  const u32 room = input.Below(kMostRoom);
  const std::string file = input.Rest();
  qvx::test::WriteFile(kPath, file);

  const Answer expected = Expected(file, identifier, language.value_or(0));
  CheckDelivery(expected, identifier, language, room);
  const auto needed = static_cast<u32>(expected.text ? expected.text->size() * 2 + 2 : 0);
  CheckDelivery(expected, identifier, language, needed);
  if (needed != 0) CheckDelivery(expected, identifier, language, needed - 1);
  u32 asked = language.value_or(0);
  Require(PXTGetUnicodeStringFromIDPathFile(identifier, &asked, kPath, nullptr, nullptr) == needed,
          "without buffer and size the bytes needed are returned");
  return 0;
}
