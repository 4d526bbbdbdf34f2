// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/hostile_ini.h"

#include <algorithm>
#include <cstring>

namespace qvx::test {
namespace {

const std::string kWideNul(2, '\0');

u32 WidthOf(s32 type) {
  if (type == 4) return 2;
  return type <= 6 ? 4 : 8;
}

template <typename Number>
std::string BytesOf(Number number) {
  std::string bytes(sizeof(number), '\0');
  memcpy(bytes.data(), &number, sizeof(number));
  return bytes;
}

}  // namespace

std::string HostileIni::Bytes(size_t count) {
  std::string bytes;
  while (bytes.size() < count)
    bytes += static_cast<char>(next_());
  return bytes;
}

std::string HostileIni::Blanks() {
  if (!OneIn(3)) return "";
  return OneOf({" ", "\t", "  \t", "\v", "\t\t "});
}

std::string HostileIni::Section() {
  static const std::string kLongest(255, 'n');
  if (OneIn(4)) return kLongest.substr(Below(2)) + OneOf({"", "n", "x", "nnn"});
  static const std::vector<std::string> kNames = {"A", "A",  "A",  "B",   "B",   "B",  "a",
                                                  "",  " A", "A ", "A\r", "A=1", "#A", "\xFF\xFE"};
  return OneOf(kNames);
}

std::string HostileIni::Key() {
  static const std::string kLongest(255, 'm');
  if (OneIn(8)) return kLongest.substr(Below(2)) + OneOf({"", "m"});
  static const std::vector<std::string> kNames = {"k",  "k",   "k",  "l",   "l",   "K",
                                                  "",   " k",  "k ", "k\r", "#k",  ";k",
                                                  "[k", "k=l", "kk", "\r",  "\xFF"};
  return OneOf(kNames);
}

std::string HostileIni::NumberText() {
  const std::string sign = OneOf({"", "", "", "", "-", "+", "--", " -", "- ", "\t", "\v+", "0x"});
  std::string digits = std::to_string(Bits());
  if (OneIn(6)) digits = std::string(Below(30), '0') + digits;
  if (OneIn(12)) digits += digits;
  if (OneIn(8)) digits = "";
  const std::string tail = OneOf({"", "", "", "\r", " ", ".5", "e3", "x", ",7", "=8", "1"});
  return sign + digits + tail;
}

std::string HostileIni::ByteListText() {
  const std::vector<std::string> pieces = {
      "0x01", "0xAB", "0Xff",  "ff",  "7",   "00000000fe", " 0x2", "\t3", "+4",   "-0", "\r5",
      "6\r",  "0x8z", "0x10 ", "0x0", "0xA", "0xB",        "0xC",  "0xD", "0xEE", "0",  "c"};
  const std::vector<std::string> ends = {"-1", "100", "0x1FF", "",  "zz", "0x",
                                         "-",  " ",   "0xg",   "+", "x1", "10000000000000001"};
  std::string text;
  const u32 count = OneIn(20) ? 1600 + Below(200) : Below(12);
  for (u32 at = 0; at < count; ++at)
    text += (at == 0 ? "" : ",") + (count > 12 ? std::string("0x41") : OneOf(pieces));
  if (OneIn(3)) text += "," + OneOf(ends);
  if (OneIn(3)) text += "," + OneOf(pieces);
  return text;
}

std::string HostileIni::ValueText(s32 type) {
  if (OneIn(12)) type = static_cast<s32>(Below(10));
  if (type == 2 || type == 3) return ByteListText();
  if (type == 4) {
    return OneOf({"TRUE", "FALSE", "true", "False", "true yes", "  TRUE", "TRUE\r", "TRUE ",
                  "\ttrue", "on", "1", "", " ", "FALSEHOOD", "fAlSe\tno", "TRUE FALSE"});
  }
  if (type >= 5 && type <= 8) return NumberText();
  if (type == 9) {
    return OneOf({NumberText(), "1.5", " -2.25e3", "inf", "nan", "0x1p4", ".", "1e999", "abc"});
  }
  return OneOf(
      {"v", "value", "", " v ", "a=b", "=", "[A]", "#no", "v\r", "\xFF\x80", "]", "abcdef"});
}

// A line at one of the lengths where a room ends; what follows a read looks like a line.
std::string HostileIni::Stretched(const std::string& line) {
  const size_t limit = OneIn(3) ? 256 : OneIn(2) ? 8449 : 8195;
  const size_t length = limit + Below(5) - 3;
  std::string text = line;
  while (text.size() < length)
    text += static_cast<char>('a' + Below(3));
  if (OneIn(2)) return text;
  if (text.size() < 8449) text.resize(8449, 'y');
  return text +
         OneOf({"[A]", "k=behind", "[B", "#k=1", "=", "k", std::string(8449, 'z') + "k=far"});
}

std::string HostileIni::Line(s32 type) {
  std::string line;
  switch (Below(24)) {
    case 0:
      line = OneOf({"#", ";"}) + OneOf({"", "k=1", "[A]", "[A"});
      break;
    case 1:
      line = " #" + Key() + "=" + ValueText(type);
      break;
    case 2:
    case 3:
      line = OneOf({"", "", " ", "\t \t", "\r"});
      break;
    case 4:
      line = Blanks() + Key();
      break;
    case 5:
    case 6:
    case 7:
      line = Blanks() + "[" + Section() + "]" + OneOf({"", "", "", " ", "]", "# k=1", "k=1", "\r"});
      break;
    case 9:
      line = OneIn(6) ? Blanks() + "[" + Section() : Key();
      break;
    default:
      line = Blanks() + (OneIn(4) ? Key() : OneOf({"k", "l"})) + "=" + ValueText(type);
  }
  if (OneIn(25)) line.insert(Below(line.size() + 1), 1, '\0');
  if (OneIn(25)) line.insert(Below(line.size() + 1), 1, '\xFF');
  return OneIn(20) ? Stretched(line) : line;
}

std::string HostileIni::LineEnd() { return OneIn(6) ? OneOf({"\r\n", "\n\n", "\r"}) : "\n"; }

std::string HostileIni::File(s32 type) {
  std::string file;
  if (OneIn(40)) return file;
  const u32 before = OneIn(2) ? Below(4) : 0;
  for (u32 at = 0; at < before; ++at)
    file += Line(type) + LineEnd();
  if (!OneIn(8)) file += "[" + OneOf({"A", "A", "A", "A", "B"}) + "]" + LineEnd();
  const u32 behind = Below(12);
  for (u32 at = 0; at < behind; ++at)
    file += Line(type) + LineEnd();
  if (OneIn(3)) file += Line(type);
  return file;
}

s32 HostileIni::Type() {
  if (OneIn(3)) return 1;
  if (OneIn(40)) return std::vector<s32>{0, 10, -1, 0x101, 99}[Below(5)];
  return static_cast<s32>(1 + Below(9));
}

IniQuestion HostileIni::Question(const IniFile& file, s32 type) {
  IniQuestion question = {Section(), Key(), type};
  if (!OneIn(4)) question.section = OneOf({"A", "A", "A", "A", "B"});
  if (!OneIn(4)) question.key = OneOf({"k", "l"});
  if (OneIn(type == 1 ? 6 : 40)) question.key.reset();
  if (OneIn(type == 1 ? 12 : 40)) question.section.reset();
  if (OneIn(2)) question.standIn = Bytes(OneIn(2) ? Below(12) : WidthOf(type));
  if (type == 2 && question.standIn && !OneIn(4)) {
    question.standIn = Bytes(2 * Below(6)) + kWideNul;
    if (OneIn(8)) question.standIn->resize(question.standIn->size() - 1);
  }
  question.size = 20000;
  const u32 needed = ModelIniRead(file, question).size;
  const u32 exact = needed == 0 || needed == 20000 ? WidthOf(type) : needed;
  const u32 tooSmall = exact - 1;
  const std::vector<u32> sizes = {0,     1,         Below(16), tooSmall, tooSmall,    exact, exact,
                                  exact, exact + 1, exact + 1, 8193,     exact + 100, 8451,  20000};
  question.size = sizes[Below(sizes.size())];
  return question;
}

std::string HostileIni::ValueBytes(s32 type) {
  if (type == 1) {
    if (OneIn(20)) return std::string(8188 + Below(8), 'v');
    std::string text = OneIn(4) ? "a\nk=two\n[B]\nl" : ValueText(static_cast<s32>(Below(10)));
    return text;
  }
  if (type == 2) {
    std::string units;
    const u32 count = OneIn(10) ? 815 + Below(8) : OneIn(20) ? 1020 + Below(8) : Below(8);
    for (u32 at = 0; at < count; ++at)
      units += static_cast<char>(1 + Below(255)) + Bytes(1);
    return units + kWideNul;
  }
  if (type == 3)
    return Bytes(OneIn(10) ? 1634 + Below(8) : OneIn(20) ? 2044 + Below(8) : Below(20));
  if (type == 4) return BytesOf(static_cast<booln>(OneIn(3) ? Bits() : Below(3)));
  if (type == 5 || type == 6) return BytesOf(static_cast<u32>(Bits()));
  if (type == 9 && OneIn(2)) return BytesOf((static_cast<d64>(Bits()) - 1e6) / 1024);
  return BytesOf(OneIn(3) ? ~Bits() : Bits());
}

IniChange HostileIni::Change(s32 type) {
  IniChange change = {Section(), Key(), type};
  if (OneIn(2)) change.section = OneOf({"A", "B"});
  if (OneIn(2)) change.key = OneOf({"k", "l"});
  if (OneIn(40)) change.key.reset();
  if (OneIn(40)) change.section.reset();
  if (OneIn(type <= 3 ? 3 : 15)) {
    change.size = OneIn(8) ? static_cast<s32>(Below(3)) - 1 : 0;
    return change;
  }
  change.value = ValueBytes(type);
  const s32 exact = static_cast<s32>(change.value->size()) + (type == 1 ? 1 : 0);
  change.size = exact;
  if (OneIn(12)) change.size = std::vector<s32>{0, -1, exact - 1, INT32_MIN, 1}[Below(5)];
  if (OneIn(12)) change.size = exact + static_cast<s32>(1 + Below(2000));
  // Bytes have no terminator: all reported bytes must be there.
  if (type == 3) change.size = std::min(change.size, exact);
  return change;
}

}  // namespace qvx::test
