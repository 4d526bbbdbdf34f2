// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <CLI/App.hpp>
#include <charconv>
#include <string>
#include <system_error>

#include "ctl/commands.h"
#include "ctl/json.h"
#include "ctl/status_table.h"

namespace qvx::ctl {
namespace {

// Decimal, "0x" and hexadecimal digits, or -1, the value that calls without a status fail with.
u32 ParseStatus(const std::string& text) {
  if (text == "-1") return 0xFFFFFFFF;
  const bool isHex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  const char* const begin = text.data() + (isHex ? 2 : 0);
  const char* const end = text.data() + text.size();
  u32 value = 0;
  const auto [stop, fault] = std::from_chars(begin, end, value, isHex ? 16 : 10);
  if (fault != std::errc() || stop != end) {
    throw Failure(kUsage, "status: " + text + ": no 32-bit number");
  }
  return value;
}

ExitCode ShowStatus(const std::string& text, bool asJson) {
  const u32 value = ParseStatus(text);
  const StatusEntry& entry = EntryOfStatus(value);
  if (asJson) {
    PrintJson({{"value", value},
               {"known", IsStatus(value)},
               {"name", entry.name},
               {"meaning", entry.meaning},
               {"advice", entry.advice}});
  } else {
    PrintMarked(Color::kBold, entry.name, "");
    PrintLine(std::string("meaning:    ") + entry.meaning);
    PrintLine(std::string("what to do: ") + entry.advice);
  }
  return IsStatus(value) ? kYes : kNo;
}

struct StatusArguments {
  std::string number;
  bool asJson = false;
};

}  // namespace

void AddStatusCommand(CLI::App& program, ExitCode& code) {
  auto arguments = std::make_shared<StatusArguments>();
  CLI::App* const command = program.add_subcommand("status", "Says what a status means");
  command->add_option("NUMBER", arguments->number, "decimal, hexadecimal with 0x, or -1")
      ->required();
  command->add_flag("--json", arguments->asJson, "Answer as JSON");
  command->callback(
      [arguments, &code] { code = ShowStatus(arguments->number, arguments->asJson); });
}

const char* Version() { return "qvxctl " QVXCS_VERSION; }

}  // namespace qvx::ctl
