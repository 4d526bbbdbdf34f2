// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/role_map_records.h"

#include <cerrno>

#include "access/role_map_algorithm.h"
#include "access/role_map_error.h"
#include "base/layout.h"
#include "ctl/call_failure.h"
#include "ctl/output.h"

namespace qvx::ctl {

const char* TextOfFault(int code) {
  switch (code) {
    case RoleFileOpenFailed:
      return "the file is missing or cannot be opened";
    case RoleMissingField:
      return "a field is missing: users, hosts and a role are needed";
    case RoleInvalidRole:
      return "the role is none of administrator, poweruser and user";
    case RoleBadPermissions:
      return "the file's mode is neither 0640 nor 01640";
    case RoleNoRecords:
      return "no line counts";
    case RoleConflict:
      return "a user is given the same host a second time";
    default:
      return "an unknown fault";
  }
}

RoleMapRecords::RoleMapRecords(const std::string& path)
    : reader_(std::make_unique<QVAuthFileReader>(path)) {
  unsigned long before = 0;  // lines of the readings that ended with a fault
  try {
    reader_->OpenDraft();
  } catch (const QVXRoleMapFileReaderException& fault) {
    faults_.push_back({0, fault.getErrorCode()});
    return;
  }
  for (;;) {
    try {
      records_ = reader_->GetRecords();
      break;
    } catch (const QVXRoleMapFileReaderException& fault) {
      if (fault.getErrorCode() == RoleNoRecords) {
        if (faults_.empty()) faults_.push_back({0, RoleNoRecords});
        break;
      }
      before += fault.GetLineNumber();
      faults_.push_back({before, fault.getErrorCode()});
    }
  }
  if (faults_.empty()) {
    FindConflict();
  } else {
    records_.clear();
  }
}

RoleMapRecords RoleMapRecords::OfLiveMap() {
  if (ReasonNotReadable(kRoleMapPath) == EACCES) throw SystemFailure(kRoleMapPath, EACCES);
  RoleMapRecords map(kRoleMapPath);
  if (const int code = FaultOfOpening(kRoleMapPath); code != 0 && map.faults_.empty()) {
    map.faults_.push_back({0, code});
    map.records_.clear();
  }
  return map;
}

void RoleMapRecords::FindConflict() {
  QVXRoleMapAlgorithm& algorithm = QVXRoleMapAlgorithm::GetInstance();
  algorithm.ForgetInitialized();
  try {
    algorithm.Initialize(records_);
  } catch (const QVXRoleMapFileReaderException& fault) {
    faults_.push_back({fault.GetLineNumber(), fault.getErrorCode()});
    records_.clear();
  }
  algorithm.ForgetInitialized();
}

int FaultOfOpening(const std::string& path) {
  QVAuthFileReader reader(path);
  try {
    reader.Open();
  } catch (const QVXRoleMapFileReaderException& fault) {
    return fault.getErrorCode();
  }
  return 0;
}

}  // namespace qvx::ctl
