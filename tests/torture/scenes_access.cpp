// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Rights and logins, by the accounts and the role map that scripts/torture sets up.
#include <pwd.h>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr qvx_ustring kUser[] = {'a', 'd', 'a', 0};
constexpr char kPrograms[] = "/etc/cim/zarn/plinthos/vexilon/qvx/ini/torture.ini";

// The C library ends the process where its own first look at the accounts finds no memory.
void Accounts() { (void)getpwuid(0); }
void Programs() { WriteText(kPrograms, "[programs]\nmask=7\n"); }

// Each unit less one, so that the program's own memory has no copy of the secret.
constexpr qvx_ustring kSpelt[] = {'n', 'o', 'd', 'm', 0x1F, 'r', 'd', 'r', '`', 'l', 'd'};
static_assert(sizeof(kSpelt) / sizeof(kSpelt[0]) == kSecretLength);

qvx_u32 Login() {
  volatile qvx_ustring password[kBeforeSecret + kSecretLength + 1];
  for (size_t at = 0; at < kBeforeSecret; ++at) {
    password[at] = 'a';
  }
  for (size_t at = 0; at < kSecretLength; ++at) {
    password[kBeforeSecret + at] = static_cast<qvx_ustring>(kSpelt[at] + 1);
  }
  password[kBeforeSecret + kSecretLength] = 0;
  return Status(PXTAuthenticateUser(nullptr, kUser, const_cast<qvx_ustring*>(password)) != 0);
}

}  // namespace

bool IsSecret(const unsigned char* bytes, size_t width) {
  for (size_t at = 0; at < kSecretLength; ++at) {
    const unsigned char* const unit = bytes + at * width;
    if (unit[0] != kSpelt[at] + 1) return false;
    for (size_t zero = 1; zero < width; ++zero) {
      if (unit[zero] != 0) return false;
    }
  }
  return true;
}

Scene LoginScene() { return {"login by PAM", Kind::kPure, nullptr, Accounts, Login, true, true}; }

std::vector<Scene> AccessScenes() {
  std::vector<Scene> scenes = {LoginScene()};
  const auto add = [&scenes](const char* name, void (*prepare)(), bool (*act)(), bool others) {
    scenes.push_back(
        {name, Kind::kPure, nullptr, prepare, [act] { return Status(act()); }, true, others});
  };
  add(
      "rights of a user", Accounts, [] { return PXTAuthorizeUser(nullptr, kUser) != 0; }, true);
  add(
      "rights of the process", Accounts, [] { return PXTGetProcessRights() != 0; }, true);
  add(
      "rights by the role map", Accounts,
      [] { return PXTOpenRolemapFile() == 0 && PXTGetRightsUsingRolemap() != 0; }, true);
  add(
      "rights of programs", Programs,
      [] {
        qvx_u32 reason = 0;
        return PXTMaskProgramRights(7, "p", "torture.ini", &reason) != 0xFFFFFFFF;
      },
      false);
  return scenes;
}

std::vector<Scene> AllScenes() {
  std::vector<Scene> scenes = UpdatingScenes();
  for (const auto& more :
       {ReadingScenes(), PathScenes(), ValueScenes(), NumberScenes(), AccessScenes()}) {
    scenes.insert(scenes.end(), more.begin(), more.end());
  }
  return scenes;
}

}  // namespace qvx::torture
