// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: type, size (empty for the matching one), section, key and value, one a line, then the
// file. "(null)" means a value that is not given, the file "(missing)" for none.
#include <unistd.h>

#include <algorithm>
#include <optional>
#include <string>

#include "qvxcs/ini_file.h"
#include "qvxcs/status.h"

#include "fuzz/fuzz_support.h"
#include "reference/ini_model.h"
#include "support/files.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;
using qvx::fuzz::Text;
using qvx::test::Exists;
using qvx::test::IniChange;
using qvx::test::IniFile;
using qvx::test::IniOutcome;
using qvx::test::ModeOf;
using qvx::test::ReadFile;
using qvx::test::WriteFile;

constexpr char kPath[] = "/run/fuzz/update.ini";
constexpr char kCopyPath[] = "/run/fuzz/pxtini32.tmp";
constexpr size_t kWidestNumber = 8;
constexpr s32 kMostBytes = 3000;
constexpr mode_t kWrittenMode = 01664;

bool IsText(const IniChange& change) { return change.type == 1; }

// A value has as many bytes as its size says; calls that a caller may not make are not tried.
void GiveItsSize(IniChange& change, const std::string& sizeLine) {
  if (change.value && !IsText(change) && change.value->size() < kWidestNumber && change.type >= 4) {
    change.value->resize(kWidestNumber);
  }
  const size_t length = change.value ? change.value->size() : 0;
  change.size = static_cast<s32>(IsText(change) && change.value ? length + 1 : length);
  if (sizeLine.empty()) return;
  change.size = static_cast<s32>(strtol(sizeLine.c_str(), nullptr, 10)) % kMostBytes;
  if (change.value && !IsText(change) && change.size > static_cast<s32>(length)) {
    change.value->resize(static_cast<size_t>(change.size));
  }
}

void Prepare(const IniFile& file) {
  (void)unlink(kPath);
  (void)unlink(kCopyPath);
  if (file) WriteFile(kPath, *file);
}

u32 Make(const IniChange& change) {
  Text section(*change.section);
  Text key(*change.key);
  Text text(change.value.value_or(""));
  Block<astring> bytes(change.value ? change.value->size() : 0);
  if (change.value) std::copy(change.value->begin(), change.value->end(), bytes.data());
  const astring* const value = IsText(change) ? text.data() : bytes.data();
  return PXTWriteINIPathFileValue(section.data(), key.data(), change.type,
                                  change.value ? value : nullptr, change.size, kPath,
                                  QVX_LOCK_WAIT);
}

void Check(const IniOutcome& expected, u32 status) {
  Require(status == expected.status, "the status is the model's");
  Require(Exists(kPath) == expected.file.has_value(), "the file is there as in the model");
  Require(!expected.file || ReadFile(kPath) == *expected.file,
          "the file is the model's, byte by byte");
  Require(!expected.modeSet || ModeOf(kPath) == kWrittenMode, "the file's mode is set");
  Require(Exists(kCopyPath) == expected.copyLeft, "the copy is left as in the model");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  IniChange change;
  change.type = static_cast<s32>(input.Number());
  const std::string sizeLine = input.Line();
  change.section = input.Word();
  change.key = input.Word();
  const std::string value = IsText(change) ? input.Word() : input.Line();
  if (value != "(null)") change.value = value;
  GiveItsSize(change, sizeLine);
  IniFile file = input.Rest();
  if (*file == "(missing)") file.reset();

  Prepare(file);
  const IniOutcome expected = qvx::test::ModelIniWrite(file, change);
  Check(expected, Make(change));
  return 0;
}
