// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_error.h"

namespace qvx {

// Here, so that the type's run-time information has one home.
QVXRoleMapFileReaderException::~QVXRoleMapFileReaderException() = default;

unsigned long QVXRoleMapFileReaderException::MapErrorCodeToCmdId() const {
  switch (errorCode_) {
    case RoleFileOpenFailed:
      return 0x1718;
    case RoleMissingField:
      return 0x1717;
    case RoleInvalidRole:
      return 0x171B;
    case RoleBadPermissions:
      return 0x1719;
    case RoleNoRecords:
      return 0x171A;
    case RoleConflict:
      return 0x171C;
  }
  return 0x170C;
}

}  // namespace qvx
