// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_ROLE_H
#define QVX_ACCESS_ROLE_H

#include <string>

#include "qvxcs/access.h"

namespace qvx {

// The public values with a type of 32 bits. A higher role contains the lower ones, so that of two
// grants the greater number is the larger.
enum QVXPrivilege : u32 {
  QVX_PRIV_NONE = ::QVX_PRIV_NONE,
  QVX_PRIV_USER = ::QVX_PRIV_USER,
  QVX_PRIV_POWERUSER = ::QVX_PRIV_POWERUSER,
  QVX_PRIV_ADMINISTRATOR = ::QVX_PRIV_ADMINISTRATOR,
  // Set in addition to the level of the operating system's superuser.
  QVX_PRIV_ROOT = ::QVX_PRIV_ROOT,
};

// One user on one host: an entry of the role map, or a query to be answered.
struct QVXRole {
  std::wstring user;  // as written; "+" begins a group, "*" is anybody
  std::wstring host;  // lower-case; "*" is any host, "*." marks a domain
  u32 privileges = QVX_PRIV_NONE;
};

// Applied to each entry of a queue that owns its roles.
struct RolemapDeleteObject {
  void operator()(const QVXRole* role) const { delete role; }
};

}  // namespace qvx

#endif
