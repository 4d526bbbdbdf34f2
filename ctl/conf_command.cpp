// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <CLI/App.hpp>
#include <cerrno>
#include <memory>
#include <string>

#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "ctl/call_failure.h"
#include "ctl/commands.h"
#include "ctl/json.h"
#include "ctl/library.h"
#include "ctl/open_line.h"

namespace qvx::ctl {
namespace {

struct ConfArguments {
  std::string file;
  std::string key;
  std::string value;
  u32 index = 0;
  bool asJson = false;
};

// Whether the library can take the lock: the reading of INI files waits for it as that of entries
// does, and gives a status.
bool CanTakeLock(const std::string& file) {
  astring value[2];
  u32 size = sizeof(value);
  return QVX_CALL(PXTReadINIPathFileValue)("", "", QVX_INI_ASTRING, value, &size, nullptr, 0,
                                           file.c_str(), QVX_LOCK_WAIT) != SM_STATUS_LOCK_FAILED;
}

// The entries of a file, none for a file without entries. The library's call gives none for a file
// or a lock that it cannot take either, without a status; `what` is the command that such a failure
// names.
class Entries {
 public:
  Entries(const std::string& what, const std::string& file)
      : entries_(QVX_CALL(PXTCFGGetKeyValueEntries)(file.c_str(), &count_)) {
    if (entries_ != nullptr) return;
    if (const int reason = ReasonNotReadable(file)) {
      throw SystemFailure(what + ": " + file, reason);
    }
    if (!CanTakeLock(file)) throw CallFailure(what, file, SM_STATUS_LOCK_FAILED, 0);
  }
  ~Entries() { QVX_CALL(PXTCFGFreeKeyValueEntries)(entries_, count_); }
  Entries(const Entries&) = delete;
  Entries& operator=(const Entries&) = delete;

  [[nodiscard]] const char* Find(const std::string& key, u32 index) const {
    return QVX_CALL(PXTCFGGetKeyValue)(entries_, count_, key.c_str(), index);
  }
  [[nodiscard]] const PXTKeyValue* begin() const { return entries_; }
  [[nodiscard]] const PXTKeyValue* end() const { return entries_ + count_; }

 private:
  u32 count_ = 0;
  PXTKeyValue* entries_;
};

ExitCode Get(const ConfArguments& given) {
  const Entries entries("conf get", given.file);
  const char* const value = entries.Find(given.key, given.index);
  if (value == nullptr) {
    throw StatusFailure("conf get: " + given.file + ": " + given.key, SM_STATUS_KEY_NOT_FOUND);
  }
  if (given.asJson) {
    PrintJson({{"key", given.key}, {"value", value}});
  } else {
    PrintValue(value);
  }
  return kYes;
}

ExitCode List(const ConfArguments& given) {
  const Entries entries("conf list", given.file);
  Json list = Json::array();
  for (const PXTKeyValue& entry : entries) {
    list.push_back({{"key", entry.key}, {"value", entry.value}});
    if (!given.asJson) PrintValue(std::string(entry.key) + "=" + entry.value);
  }
  if (given.asJson) PrintJson(list);
  return kYes;
}

// A reader removes blanks at the ends of a value, and all double quotes.
std::string QuotedValue(const std::string& value) {
  const char* const blanks = " \t\r";
  const bool isBare = value.empty() || (value.find_first_of(blanks) != 0 &&
                                        value.find_last_of(blanks) != value.size() - 1);
  return isBare ? value : "\"" + value + "\"";
}

ExitCode Set(const ConfArguments& given) {
  if (given.key.empty() || given.key.find_first_of("= \t\r\n\"") != std::string::npos ||
      given.key[0] == '#' || given.key[0] == ';') {
    throw Failure(kUsage,
                  "conf set: a key has no blank, \"=\" or quote and does not begin with "
                  "\"#\" or \";\"");
  }
  if (given.value.find_first_of("\"\n") != std::string::npos) {
    throw Failure(kUsage, "conf set: a value has no quote and no line end");
  }
  std::string key = given.key;
  std::string value = QuotedValue(given.value);
  const PXTKeyValue pair{key.data(), value.data()};
  if (LacksLineEnd(given.file) &&
      Entries("conf set", given.file).Find(key, given.index) == nullptr) {
    throw OpenLineFailure("conf set: " + given.file);
  }
  errno = 0;
  const u32 status = QVX_CALL(PXTCFGSetKeyValue)(given.file.c_str(), &pair, given.index);
  if (status != SM_STATUS_SUCCESS) throw CallFailure("conf set", given.file, status, errno);
  return kYes;
}

CLI::App* AddOne(CLI::App* family, const char* name, const char* text,
                 const std::shared_ptr<ConfArguments>& given, ExitCode* code,
                 ExitCode (*run)(const ConfArguments&)) {
  CLI::App* const command = family->add_subcommand(name, text);
  command->add_option("FILE", given->file, "the key=value file")->required();
  command->callback([given, run, code] { *code = run(*given); });
  return command;
}

}  // namespace

void AddConfCommand(CLI::App& program, ExitCode& code) {
  CLI::App* const conf = program.add_subcommand("conf", "Reads and changes key=value files");
  conf->require_subcommand(1);
  const auto given = std::make_shared<ConfArguments>();
  const auto addKey = [&](CLI::App* command) {
    command->add_option("KEY", given->key, "the key")->required();
    command->add_option("--index", given->index, "which of several keys of this name, from 0");
  };
  CLI::App* const get = AddOne(conf, "get", "Shows a key's value", given, &code, Get);
  addKey(get);
  get->add_flag("--json", given->asJson, "Answer as JSON");
  CLI::App* const set = AddOne(conf, "set", "Sets a key, or appends it", given, &code, Set);
  addKey(set);
  set->add_option("VALUE", given->value, "the new value")->required();
  CLI::App* const list = AddOne(conf, "list", "Lists keys and values", given, &code, List);
  list->add_flag("--json", given->asJson, "Answer as JSON");
}

}  // namespace qvx::ctl
