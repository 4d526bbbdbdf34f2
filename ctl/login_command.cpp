// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <CLI/App.hpp>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "qvxcs/access.h"
#include "qvxcs/status.h"

#include "ctl/commands.h"
#include "ctl/json.h"
#include "ctl/library.h"
#include "ctl/password.h"
#include "ctl/role_decision.h"
#include "ctl/role_map_faults.h"
#include "ctl/role_map_records.h"
#include "text/transcode.h"

namespace qvx::ctl {
namespace {

struct LoginArguments {
  std::string user;
  bool asJson = false;
};

// 16-bit text, wiped when it is destroyed: the object is whole before the conversion can fail.
class Units {
 public:
  explicit Units(const char* text) : Units(strlen(text) + 2) {
    u32 size = static_cast<u32>(units_.size() - 1);
    if (UTF8StrToUCS2Str(units_.data(), &size, text) == SM_STATUS_SUCCESS) return;
    throw Failure(kUsage, "login: name or password is no UTF-8 text");
  }
  ~Units() { explicit_bzero(units_.data(), units_.size() * sizeof(ustring)); }
  Units(const Units&) = delete;
  Units& operator=(const Units&) = delete;

  ustring* Data() { return units_.data(); }

 private:
  explicit Units(size_t room) : units_(room) {}

  std::vector<ustring> units_;
};

u32 Authenticate(const std::string& user) {
  const Password password("Password of " + OneLine(user) + ": ");
  Units name(user.c_str());
  Units secret(password.Text());
  // The role map decides logins only after a query has opened and read the file.
  (void)QVX_CALL(PXTOpenRolemapFile)();
  (void)QVX_CALL(PXTGetRightsUsingRolemap)();
  return QVX_CALL(PXTAuthenticateUser)(nullptr, name.Data(), secret.Data());
}

void ShowAnswer(const std::string& user, u32 rights, const std::vector<RoleMapFault>& faults) {
  WarnOfFaults(faults);
  PrintLine(user + ": " + (rights == 0 ? "refused" : TextOfRights(rights)));
}

// A map that this user may not read ends the command before the password is asked for: the library
// would answer by its built-in lines.
ExitCode Login(const LoginArguments& given) {
  const std::vector<RoleMapFault> faults = RoleMapRecords::OfLiveMap().Faults();
  const u32 rights = Authenticate(given.user);
  if (given.asJson) {
    PrintJson({{"user", given.user},
               {"accepted", rights != 0},
               {"rights", rights},
               {"faults", JsonOfFaults(faults)}});
  } else {
    ShowAnswer(given.user, rights, faults);
  }
  return rights != 0 && faults.empty() ? kYes : kNo;
}

}  // namespace

void AddLoginCommand(CLI::App& program, ExitCode& code) {
  const auto given = std::make_shared<LoginArguments>();
  CLI::App* const login =
      program.add_subcommand("login", "Asks for a user's password and shows the rights");
  login->add_option("USER", given->user, "user, user@host or domain\\user")->required();
  login->add_flag("--json", given->asJson, "Answer as JSON");
  login->callback([given, &code] { code = Login(*given); });
}

}  // namespace qvx::ctl
