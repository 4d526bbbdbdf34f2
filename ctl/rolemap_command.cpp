// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <sys/stat.h>

#include <CLI/App.hpp>
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "base/layout.h"
#include "ctl/commands.h"
#include "ctl/json.h"
#include "ctl/role_map_check.h"
#include "os/file_id.h"

namespace qvx::ctl {
namespace {

struct RolemapArguments {
  std::string file = kRoleMapPath;
  bool asJson = false;
};

Color ColorOf(Weight weight) {
  if (weight == Weight::kNote) return Color::kNone;
  return weight == Weight::kFault ? Color::kRed : Color::kYellow;
}

void ShowFinding(const std::string& file, const RoleMapFinding& finding) {
  const std::string line = finding.line == 0 ? "" : ":" + std::to_string(finding.line);
  PrintMarked(ColorOf(finding.weight), file + line + ": " + NameOfWeight(finding.weight),
              ": " + finding.text);
}

Json JsonOf(const std::vector<RoleMapFinding>& findings) {
  Json list = Json::array();
  for (const RoleMapFinding& finding : findings) {
    list.push_back(
        {{"line", finding.line}, {"kind", NameOfWeight(finding.weight)}, {"text", finding.text}});
  }
  return list;
}

bool Has(const std::vector<RoleMapFinding>& findings, Weight weight) {
  return std::any_of(findings.begin(), findings.end(),
                     [weight](const RoleMapFinding& each) { return each.weight == weight; });
}

// By whatever name.
bool IsLiveMap(const std::string& path) {
  struct stat given {};
  struct stat live {};
  if (stat(path.c_str(), &given) != 0 || stat(kRoleMapPath, &live) != 0) {
    return path == kRoleMapPath;
  }
  return FileIdOf(given) == FileIdOf(live);
}

ExitCode Check(const RolemapArguments& given) {
  const bool isLive = IsLiveMap(given.file);
  const std::vector<RoleMapFinding> findings = CheckRoleMap(given.file, isLive);
  const bool hasFault = Has(findings, Weight::kFault);
  const bool isClean = !hasFault && !Has(findings, Weight::kWarning);
  if (given.asJson) {
    PrintJson({{"file", given.file},
               {"live", isLive},
               {"accepted", !hasFault},
               {"findings", JsonOf(findings)}});
    return isClean ? kYes : kNo;
  }
  for (const RoleMapFinding& finding : findings) {
    ShowFinding(given.file, finding);
  }
  if (hasFault) PrintLine("the library refuses this map and takes its built-in lines instead");
  if (isClean) PrintLine(given.file + ": no fault");
  return isClean ? kYes : kNo;
}

}  // namespace

void AddRolemapCommand(CLI::App& program, ExitCode& code) {
  CLI::App* const rolemap = program.add_subcommand("rolemap", "Checks role maps");
  rolemap->require_subcommand(1);
  const auto given = std::make_shared<RolemapArguments>();
  CLI::App* const check = rolemap->add_subcommand(
      "check", "Finds what the library refuses, and what is probably a mistake");
  check->add_option("FILE", given->file, "a draft; without it the live map");
  check->add_flag("--json", given->asJson, "Answer as JSON");
  check->callback([given, &code] { code = Check(*given); });
}

}  // namespace qvx::ctl
