// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: the file.
#include <string>

#include "base/layout.h"
#include "fuzz/fuzz_support.h"
#include "os/ipc_name.h"
#include "support/files.h"

namespace {

using qvx::fuzz::Input;
using qvx::fuzz::Require;

constexpr size_t kMostOfARead = 255;
constexpr u32 kDefaultBase = 100000;
constexpr char kSpace[] = " \t\n\v\f\r";
constexpr char kDigits[] = "0123456789";
constexpr char kName[] = "ipcnamebase=";
// The number of decimal digits that always fit 64 bits; a longer number may yield any value.
constexpr size_t kSureDigits = 18;

// Where text that is no white space begins.
std::string WithoutSpace(const std::string& text) {
  const size_t start = text.find_first_not_of(kSpace);
  return start == std::string::npos ? "" : text.substr(start);
}

struct Base {
  u32 value;
  bool sure;
};

// False when the line does not set the base.
bool BaseIn(const std::string& line, Base* base) {
  const std::string text = WithoutSpace(line.substr(0, line.find('\0')));
  if (!text.starts_with(kName)) return false;
  std::string number = WithoutSpace(text.substr(sizeof(kName) - 1));
  const bool negative = number.starts_with("-");
  if (negative || number.starts_with("+")) number = number.substr(1);
  number = number.substr(0, number.find_first_not_of(kDigits));
  if (number.empty()) return false;
  u32 value = 0;
  for (const char digit : number) {
    value = value * 10 + static_cast<u32>(digit - '0');
  }
  *base = {negative ? 0 - value : value, number.size() <= kSureDigits};
  return true;
}

// The base that the first line of that form sets.
Base BaseOf(const std::string& file) {
  Base base = {kDefaultBase, true};
  for (size_t at = 0; at < file.size();) {
    std::string piece = file.substr(at, kMostOfARead);
    const size_t end = piece.find('\n');
    if (end != std::string::npos) piece = piece.substr(0, end + 1);
    if (BaseIn(piece, &base)) return base;
    at += piece.size();
  }
  return base;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  const std::string file = Input(data, size).Rest();
  qvx::test::WriteFile(qvx::kIPCConfigPath, file);
  const Base expected = BaseOf(file);
  const auto found = static_cast<u32>(qvx::ReadIPCNameBase());
  Require(!expected.sure || found == expected.value, "the base is the model's");
  return 0;
}
