// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <CLI/App.hpp>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ctl/commands.h"
#include "ctl/ini_file.h"
#include "ctl/ini_lint.h"
#include "ctl/json.h"
#include "ctl/open_line.h"

namespace qvx::ctl {
namespace {

struct IniArguments {
  std::string file;
  std::optional<std::string> section;
  std::string key;
  std::string value;
  std::string type = "astring";
  bool waits = false;
  bool asJson = false;
};

using Arguments = std::shared_ptr<IniArguments>;

// What would be written but never be found again.
void RefuseUnreadable(const IniArguments& given) {
  const auto has = [](const std::string& text, const char* characters) {
    return text.find_first_of(characters) != std::string::npos;
  };
  if (has(*given.section, "]\n")) {
    throw Failure(kUsage, "ini set: a section has no \"]\" or line end");
  }
  if (has(given.key, "=\n") || given.key.empty() || has(given.key.substr(0, 1), "[#; \t")) {
    throw Failure(kUsage,
                  "ini set: a key has no \"=\" or line end and does not begin with a blank, "
                  "\"[\", \"#\" or \";\"");
  }
  if (has(given.value, "\n")) throw Failure(kUsage, "ini set: a value has no line end");
}

ExitCode Get(const IniArguments& given) {
  const IniTypeEntry& type = FindIniType(given.type);
  const std::vector<u8> value =
      IniFile(given.file, given.waits).Get("ini get", type, *given.section, given.key);
  if (given.asJson) {
    PrintJson({{"section", *given.section},
               {"key", given.key},
               {"type", type.name},
               {"value", JsonOfIniValue(type, value)}});
  } else {
    PrintValue(TextOfIniValue(type, value));
  }
  return kYes;
}

ExitCode Set(const IniArguments& given) {
  RefuseUnreadable(given);
  const IniTypeEntry& type = FindIniType(given.type);
  const std::vector<u8> value = EncodeIniValue(type, given.value);
  const IniFile file(given.file, given.waits);
  if (LacksLineEnd(given.file) && !file.Has("ini set", *given.section, given.key)) {
    throw OpenLineFailure("ini set: " + given.file);
  }
  file.Set(type, *given.section, given.key, value);
  return kYes;
}

// The library silently accepts deleting what does not exist, and deletes one line; an operator gets
// a message.
ExitCode Delete(const IniArguments& given) {
  const char* const what = "ini delete";
  const IniFile file(given.file, given.waits);
  const IniTypeEntry& text = FindIniType("astring");
  (void)file.Get(what, text, *given.section, given.key);
  file.Set(text, *given.section, given.key, std::nullopt);
  // The key is gone already, so this look waits for a lock that was taken meanwhile.
  if (!IniFile(given.file, true).Has(what, *given.section, given.key)) return kYes;
  throw Failure(kNo, std::string(what) + ": " + given.file +
                         ": one line of the key is deleted; another line of it is in force now");
}

ExitCode List(const IniArguments& given) {
  const std::vector<std::string> names = IniFile(given.file, given.waits).List(given.section);
  if (given.asJson) {
    PrintJson({{given.section ? "keys" : "sections", names}});
    return kYes;
  }
  for (const std::string& name : names) {
    PrintValue(name);
  }
  return kYes;
}

ExitCode Lint(const IniArguments& given) {
  const std::vector<LintFinding> findings = LintIniFile(given.file);
  Json list = Json::array();
  for (const LintFinding& finding : findings) {
    const char* const kind = finding.refused ? "fault" : "warning";
    list.push_back({{"line", finding.line}, {"kind", kind}, {"text", finding.text}});
    if (given.asJson) continue;
    const Color color = finding.refused ? Color::kRed : Color::kYellow;
    PrintMarked(color, given.file + ":" + std::to_string(finding.line) + ": " + kind,
                ": " + finding.text);
  }
  if (given.asJson) PrintJson({{"file", given.file}, {"findings", list}});
  return findings.empty() ? kYes : kNo;
}

class Family {
 public:
  Family(CLI::App* family, ExitCode* code) : family_(family), code_(code) {}

  CLI::App* Add(const char* name, const char* text, ExitCode (*run)(const IniArguments&)) {
    given_ = std::make_shared<IniArguments>();
    CLI::App* const command = family_->add_subcommand(name, text);
    command->add_option("FILE", given_->file, "the INI file")->required();
    command->callback([given = given_, run, code = code_] { *code = run(*given); });
    return command;
  }
  void AddSection(CLI::App* command, bool required) {
    command->add_option("SECTION", given_->section, "the section's name")->required(required);
  }
  void AddKey(CLI::App* command) {
    AddSection(command, true);
    command->add_option("KEY", given_->key, "the key's name")->required();
  }
  void AddType(CLI::App* command) {
    command->add_option("--type", given_->type, "the value's type")
        ->check(CLI::IsMember(IniTypeNames()));
  }
  void AddWait(CLI::App* command) {
    command->add_flag("--wait", given_->waits, "Wait for the suite's lock");
  }
  void AddJson(CLI::App* command) { command->add_flag("--json", given_->asJson, "Answer as JSON"); }
  IniArguments& Given() { return *given_; }

 private:
  CLI::App* family_;
  ExitCode* code_;
  Arguments given_;
};

}  // namespace

void AddIniCommand(CLI::App& program, ExitCode& code) {
  CLI::App* const ini = program.add_subcommand("ini", "Reads, changes and checks INI files");
  ini->require_subcommand(1);
  Family family(ini, &code);

  CLI::App* const get = family.Add("get", "Shows a key's value", Get);
  family.AddKey(get);
  family.AddType(get);
  family.AddWait(get);
  family.AddJson(get);

  CLI::App* const set = family.Add("set", "Sets a key", Set);
  family.AddKey(set);
  set->add_option("VALUE", family.Given().value, "the new value")->required();
  family.AddType(set);
  family.AddWait(set);

  CLI::App* const remove = family.Add("delete", "Deletes a key", Delete);
  family.AddKey(remove);
  family.AddWait(remove);

  CLI::App* const list = family.Add("list", "Lists the sections, or a section's keys", List);
  family.AddSection(list, false);
  family.AddWait(list);
  family.AddJson(list);

  family.AddJson(family.Add("lint", "Shows what the library skips or refuses", Lint));
}

}  // namespace qvx::ctl
