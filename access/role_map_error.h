// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_ROLE_MAP_ERROR_H
#define QVX_ACCESS_ROLE_MAP_ERROR_H

#include "zsupt/zarn_exception.h"

namespace qvx {

enum fileReadErrorCode {
  RoleFileOpenFailed = 1,  // the file cannot be examined or opened
  RoleMissingField = 2,    // fewer than three fields
  RoleInvalidRole = 3,     // the third field is no role word
  RoleBadPermissions = 4,  // the mode is neither 0640 nor 01640
  RoleNoRecords = 5,       // no record line at all
  RoleConflict = 6,        // a plain user is given the same host twice
};

// Every fault of the role map file. Line 0 where no line applies.
class QVXRoleMapFileReaderException : public ZarnSupport::ZarnException {
 public:
  QVXRoleMapFileReaderException() = default;
  QVXRoleMapFileReaderException(fileReadErrorCode code, unsigned long lineNumber)
      : lineNumber_(lineNumber), errorCode_(code) {}
  QVXRoleMapFileReaderException(const QVXRoleMapFileReaderException&) = default;
  QVXRoleMapFileReaderException& operator=(const QVXRoleMapFileReaderException&) = default;
  QVXRoleMapFileReaderException(QVXRoleMapFileReaderException&&) = default;
  QVXRoleMapFileReaderException& operator=(QVXRoleMapFileReaderException&&) = default;
  ~QVXRoleMapFileReaderException() override;

  fileReadErrorCode getErrorCode() const { return errorCode_; }
  unsigned long GetLineNumber() const { return lineNumber_; }

  // The command log's identifier for this fault.
  unsigned long MapErrorCodeToCmdId() const;

 private:
  unsigned long lineNumber_ = 0;
  fileReadErrorCode errorCode_{};
};

}  // namespace qvx

#endif
