// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <CLI/App.hpp>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>

#include "qvxcs/access.h"
#include "qvxcs/command_log.h"
#include "qvxcs/memory.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "base/layout.h"
#include "ctl/call_failure.h"
#include "ctl/commands.h"
#include "ctl/json.h"
#include "ctl/library.h"
#include "ctl/log_file.h"
#include "ctl/log_follow.h"
#include "ctl/log_repair.h"
#include "ctl/log_show.h"

namespace qvx::ctl {
namespace {

struct LogArguments {
  std::string file = std::string(kCmdLogDirectory) + kCmdLogFileName;
  std::string state;
  bool isConfirmed = false;
  LogView view;
};

using Arguments = std::shared_ptr<LogArguments>;

ExitCode Show(const LogArguments& given) { return ShowLog(given.file, given.view) ? kYes : kNo; }

ExitCode Follow(const LogArguments& given) {
  FollowLog(given.file, given.view, given.state);
  return kYes;
}

// Clearing deletes the file, whatever it holds.
void RequireLog(const std::string& path, bool isConfirmed) {
  LogFile file(path);
  if (isConfirmed || file.Size() < kSmallestLog || file.HasHead()) return;
  throw Failure(kNo, path + ": does not begin as a log does; `--yes` deletes it all the same");
}

ExitCode Clear(const LogArguments& given) {
  RequireLog(given.file, given.isConfirmed);
  astring* const user = QVX_CALL(PXTGetProcessUser)();
  errno = 0;
  const u32 status = QVX_CALL(PXTClearXMLLog)(given.file.c_str(), user, "QVXCTL");
  const int reason = errno;
  QVX_CALL(PXTFreeMem)(user);
  if (status != SM_STATUS_SUCCESS) throw CallFailure("log clear", given.file, status, reason);
  return kYes;
}

bool IsConfirmed() {
  (void)fputs("Repair it? [y/N] ", stderr);
  const int answer = getchar();
  return answer == 'y' || answer == 'Y';
}

void PrintDamage(const std::string& file, const LogDamage& damage) {
  const std::string begin = file + ": ";
  for (const std::string& text : damage.findings) {
    PrintLine(begin + text);
  }
  if (damage.size == 0) return PrintLine(begin + "empty, the next entry begins it");
  if (damage.findings.empty()) PrintLine(begin + "whole");
}

Json JsonOf(const std::string& file, const LogDamage& damage, bool isRepaired) {
  return {{"file", file},
          {"findings", damage.findings},
          {"repairable", damage.mendable},
          {"end", damage.end},
          {"repaired", isRepaired}};
}

ExitCode Repair(const LogArguments& given) {
  const LogDamage damage = ExamineLog(given.file);
  if (!given.view.asJson) PrintDamage(given.file, damage);
  FlushOutput();
  const bool isRepaired = damage.mendable && (given.isConfirmed || IsConfirmed());
  if (isRepaired) RepairLog(given.file, damage);
  if (given.view.asJson) {
    PrintJson(JsonOf(given.file, damage, isRepaired));
  } else if (isRepaired) {
    PrintLine(given.file +
              (damage.isLeft ? ": the end is repaired, the other damage is left" : ": repaired"));
  }
  const bool isWhole = damage.findings.empty() || (isRepaired && !damage.isLeft);
  return isWhole ? kYes : kNo;
}

std::string NotEmpty(const std::string& text) { return text.empty() ? "no value is given" : ""; }

CLI::App* AddOne(CLI::App* family, const char* name, const char* text, const Arguments& given,
                 ExitCode* code, ExitCode (*run)(const LogArguments&)) {
  CLI::App* const command = family->add_subcommand(name, text);
  command->add_option("FILE", given->file, "an XML log; without it the command log")
      ->check(NotEmpty);
  command->callback([given, run, code] { *code = run(*given); });
  return command;
}

void AddView(CLI::App* command, const Arguments& given) {
  command->add_option_function<std::string>(
      "--since", [given](const std::string& text) { given->view.since = ParseSince(text); },
      "only entries since a time: \"2026-11-22 14:30\", @SECONDS, 90s, 15m, 2h, 7d");
  command->add_option_function<std::string>(
      "--user", [given](const std::string& name) { given->view.user = name; },
      "only entries of this user");
  command->add_option("--id", given->view.id, "only entries of this identifier")->check(NotEmpty);
  command->add_flag("--json", given->view.asJson, "One JSON object an entry");
}

}  // namespace

void AddLogCommand(CLI::App& program, ExitCode& code) {
  CLI::App* const log = program.add_subcommand("log", "Shows, follows and mends XML logs");
  log->require_subcommand(1);
  const auto given = std::make_shared<LogArguments>();
  AddView(AddOne(log, "show", "Shows the entries", given, &code, Show), given);
  CLI::App* const follow =
      AddOne(log, "follow", "Shows the entries and waits for more", given, &code, Follow);
  AddView(follow, given);
  follow->add_option("--state", given->state, "keep the place here and go on from it")
      ->check(NotEmpty);
  CLI::App* const clear =
      AddOne(log, "clear", "Deletes the entries and begins anew", given, &code, Clear);
  clear->add_flag("--yes", given->isConfirmed, "also a file that does not begin as a log does");
  CLI::App* const repair =
      AddOne(log, "repair", "Closes a log whose end is damaged", given, &code, Repair);
  repair->add_flag("--yes", given->isConfirmed, "Do not ask");
  repair->add_flag("--json", given->view.asJson, "One JSON object");
}

}  // namespace qvx::ctl
