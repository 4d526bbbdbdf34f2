// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_error.h"

#include "qvxcs/access.h"

namespace qvx {

// Here, so that the type's run-time information has one home.
QVXRoleMapFileReaderException::~QVXRoleMapFileReaderException() = default;

unsigned long QVXRoleMapFileReaderException::MapErrorCodeToCmdId() const {
  switch (errorCode_) {
    case RoleFileOpenFailed:
      return QVX_ROLEMAP_OPEN_FAILED;
    case RoleMissingField:
      return QVX_ROLEMAP_MISSING_FIELD;
    case RoleInvalidRole:
      return QVX_ROLEMAP_INVALID_ROLE;
    case RoleBadPermissions:
      return QVX_ROLEMAP_BAD_PERMISSIONS;
    case RoleNoRecords:
      return QVX_ROLEMAP_NO_RECORDS;
    case RoleConflict:
      return QVX_ROLEMAP_CONFLICT;
  }
  return 0x170C;
}

}  // namespace qvx
