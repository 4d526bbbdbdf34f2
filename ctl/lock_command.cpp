// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "ctl/commands.h"
#include "ctl/json.h"
#include "ctl/lock_holders.h"

namespace qvx::ctl {
namespace {

const char* StateOf(const LockHolder& holder) {
  if (holder.waits) return holder.writes ? "waits to write" : "waits to read";
  return holder.writes ? "writes" : "reads";
}

Json JsonOf(const LockHolder& holder) {
  return {{"pid", holder.process},
          {"state", StateOf(holder)},
          {"command", holder.command},
          {"user", holder.user},
          {"start", holder.start}};
}

ExitCode ShowLock(bool asJson) {
  const std::vector<LockHolder> holders = FindLockHolders();
  if (asJson) {
    Json list = Json::array();
    for (const LockHolder& holder : holders) {
      list.push_back(JsonOf(holder));
    }
    PrintJson({{"held", !holders.empty()}, {"processes", list}});
    return kYes;
  }
  if (holders.empty()) PrintLine("free: no process holds the lock");
  for (const LockHolder& holder : holders) {
    PrintMarked(Color::kBold, std::to_string(holder.process),
                std::string(" ") + StateOf(holder) + ", user " + holder.user + ", started " +
                    holder.start + ": " + holder.command);
  }
  return kYes;
}

}  // namespace

void AddLockCommand(CLI::App& program, ExitCode& code) {
  auto asJson = std::make_shared<bool>(false);
  CLI::App* const command =
      program.add_subcommand("lock", "Shows the processes that hold the suite's lock");
  command->add_flag("--json", *asJson, "Answer as JSON");
  command->callback([asJson, &code] { code = ShowLock(*asJson); });
}

}  // namespace qvx::ctl
