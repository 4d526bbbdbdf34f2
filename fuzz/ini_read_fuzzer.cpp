// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: type, room, default, section and key, one a line, then the file. "(null)" means a
// default, a section or a key that is not given.
#include <algorithm>
#include <optional>
#include <string>

#include "qvxcs/ini_file.h"

#include "fuzz/fuzz_support.h"
#include "reference/ini_model.h"
#include "support/files.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;
using qvx::test::IniAnswer;
using qvx::test::IniQuestion;
using qvx::test::WriteFile;

constexpr char kPath[] = "/run/fuzz/read.ini";
constexpr u32 kMostRoom = 9000;

std::optional<std::string> Given(const std::string& line) {
  if (line == "(null)") return std::nullopt;
  return line;
}

// Lists may end one byte past the reported size.
u32 BytesOfRoom(const IniQuestion& question) {
  const bool isList = question.type == 1 && (!question.section || !question.key);
  return question.size + (isList ? 1 : 0);
}

u32 Ask(const IniQuestion& question, void* value, u32* size) {
  Text section(question.section.value_or(""));
  Text key(question.key.value_or(""));
  const std::string standIn = question.standIn.value_or("");
  Block<astring> defaultValue(standIn.size());
  std::copy(standIn.begin(), standIn.end(), defaultValue.data());
  return PXTReadINIPathFileValue(question.section ? section.data() : nullptr,
                                 question.key ? key.data() : nullptr, question.type, value, size,
                                 question.standIn ? defaultValue.data() : nullptr,
                                 static_cast<u32>(standIn.size()), kPath, QVX_LOCK_WAIT);
}

void Check(const std::string& file, const IniQuestion& question, u8 fill) {
  const IniAnswer expected = qvx::test::ModelIniRead(file, question);
  Block<astring> value(BytesOfRoom(question), fill);
  u32 size = question.size;
  Require(Ask(question, value.data(), &size) == expected.status, "the status is the model's");
  Require(size == expected.size, "the size is the model's");
  const std::string& stored = expected.stored;
  Require(stored.size() <= value.size(), "what is stored has room");
  Require(expected.anyValue || std::equal(stored.begin(), stored.end(), value.data()),
          "the value is the model's");
  Require(value.UntouchedFrom(stored.size()), "nothing is stored after the value");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  IniQuestion question;
  question.type = static_cast<s32>(input.Number());
  question.size = input.Below(kMostRoom);
  question.standIn = Given(input.Line());
  question.section = Given(input.Word());
  question.key = Given(input.Word());
  const std::string file = input.Rest();
  WriteFile(kPath, file);
  Check(file, question, 0xA5);
  // The result does not depend on what the room held.
  Check(file, question, 0x00);
  return 0;
}
