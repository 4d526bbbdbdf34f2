// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <CLI/App.hpp>
#include <memory>
#include <optional>
#include <string>

#include "base/layout.h"
#include "ctl/commands.h"
#include "ctl/json.h"
#include "ctl/role_decision.h"
#include "ctl/role_map_faults.h"
#include "ctl/role_map_text.h"

namespace qvx::ctl {
namespace {

struct RightsArguments {
  std::string user;
  std::optional<std::string> host;
  bool asJson = false;
};

std::string LineText(const RoleDecision& decision) {
  if (decision.entry.empty()) return "no line grants anything";
  if (decision.line == 0) return "built-in line for " + decision.entry;
  return "line " + std::to_string(decision.line) + ": " +
         ReadRoleMapText(kRoleMapPath).Line(decision.line);
}

Json JsonOf(const RoleDecision& decision) {
  return {{"user", decision.user},     {"host", decision.host},
          {"map", decision.byMap},     {"line", decision.line},
          {"entry", decision.entry},   {"system", decision.bySystem},
          {"rights", decision.rights}, {"faults", JsonOfFaults(decision.faults)}};
}

void ShowDecision(const RoleDecision& decision) {
  WarnOfFaults(decision.faults);
  PrintLine("user:   " + decision.user);
  PrintLine("host:   " + decision.host);
  PrintLine("map:    " + TextOfRights(decision.byMap) + ", " + LineText(decision));
  PrintLine("system: " + TextOfRights(decision.bySystem));
  PrintMarked(Color::kBold, "rights: " + TextOfRights(decision.rights), "");
}

// A login has one host; what follows a second separator would not count.
std::string LoginOf(const RightsArguments& given) {
  if (!given.host) return given.user;
  if (given.user.find_first_of("@\\") != std::string::npos) {
    throw Failure(kUsage, "rights: " + given.user + " names a host already: leave out --host");
  }
  if (given.host->empty() || given.host->find('@') != std::string::npos) {
    throw Failure(kUsage, "rights: --host \"" + *given.host + "\" is no host");
  }
  return given.user + "@" + *given.host;
}

ExitCode Show(const RightsArguments& given) {
  const RoleDecision decision = DecideRights(LoginOf(given));
  if (given.asJson) {
    PrintJson(JsonOf(decision));
  } else {
    ShowDecision(decision);
  }
  return decision.rights != 0 && decision.faults.empty() ? kYes : kNo;
}

}  // namespace

void AddRightsCommand(CLI::App& program, ExitCode& code) {
  const auto given = std::make_shared<RightsArguments>();
  CLI::App* const rights =
      program.add_subcommand("rights", "Shows a user's rights and which line decides");
  rights->add_option("USER", given->user, "user, user@host or domain\\user")->required();
  rights->add_option("--host", given->host, "the host or domain of the login");
  rights->add_flag("--json", given->asJson, "Answer as JSON");
  rights->callback([given, &code] { code = Show(*given); });
}

}  // namespace qvx::ctl
