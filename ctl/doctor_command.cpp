// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <CLI/App.hpp>
#include <algorithm>
#include <cerrno>
#include <memory>
#include <string>
#include <vector>

#include "ctl/commands.h"
#include "ctl/doctor_checks.h"
#include "ctl/json.h"

namespace qvx::ctl {
namespace {

using Check = Diagnosis (*)();

struct PartCheck {
  const char* part;
  Check check;
};

constexpr PartCheck kChecks[] = {
    {"folders", CheckFolders},        {"lock file", CheckLockFile},
    {"rights", CheckProcessRights},   {"role map", CheckLiveRoleMap},
    {"PAM service", CheckPamService}, {"logs", CheckCommandLog},
    {"locale", CheckLocale},          {"IPC base", CheckIpcBase},
    {"package", CheckPackageFiles},
};

// Something that cannot be examined does not end the checks. Where only root may examine it, that
// is a warning.
Diagnosis Run(const PartCheck& part) {
  try {
    return part.check();
  } catch (const Failure& failure) {
    const bool isForRoot = failure.Reason() == EACCES && geteuid() != 0;
    if (!isForRoot) return {part.part, Health::kFault, failure.what(), ""};
    return {part.part, Health::kWarning, failure.what(), "sudo qvxctl doctor"};
  }
}

const char* NameOf(Health health) {
  if (health == Health::kGood) return "good";
  return health == Health::kFault ? "fault" : "warning";
}

Color ColorOf(Health health) {
  if (health == Health::kGood) return Color::kGreen;
  return health == Health::kFault ? Color::kRed : Color::kYellow;
}

void Show(const Diagnosis& diagnosis) {
  const std::string mend = diagnosis.mend.empty() ? "" : "; mend: " + diagnosis.mend;
  PrintMarked(ColorOf(diagnosis.health), NameOf(diagnosis.health),
              " " + diagnosis.part + ": " + diagnosis.text + mend);
}

ExitCode RunDoctor(bool asJson) {
  Json list = Json::array();
  bool isGood = true;
  for (const PartCheck& part : kChecks) {
    const Diagnosis diagnosis = Run(part);
    isGood = isGood && diagnosis.health == Health::kGood;
    if (!asJson) Show(diagnosis);
    list.push_back({{"part", diagnosis.part},
                    {"health", NameOf(diagnosis.health)},
                    {"text", diagnosis.text},
                    {"mend", diagnosis.mend}});
  }
  if (asJson) PrintJson(list);
  return isGood ? kYes : kNo;
}

}  // namespace

void AddDoctorCommand(CLI::App& program, ExitCode& code) {
  auto asJson = std::make_shared<bool>(false);
  CLI::App* const command =
      program.add_subcommand("doctor", "Looks at the whole installation, one line a part");
  command->add_flag("--json", *asJson, "Answer as JSON");
  command->callback([asJson, &code] { code = RunDoctor(*asJson); });
}

}  // namespace qvx::ctl
