// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_ROLE_MAP_RECORDS_H
#define QVX_CTL_ROLE_MAP_RECORDS_H

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "access/auth_file_reader.h"

// A role map as the library's own reader and algorithm see it, without anything attached or logged.
namespace qvx::ctl {

struct RoleMapFault {
  unsigned long line;  // 0 where no line applies
  int code;            // fileReadErrorCode
};

// The reason in words.
const char* TextOfFault(int code);

class RoleMapRecords {
 public:
  // Reads the file whatever its mode; after a faulty line the reader continues with the next one,
  // so that every fault is found. With a fault the library uses none of the records.
  explicit RoleMapRecords(const std::string& path);

  // The live map, whose mode counts too. Throws a Failure when this user may not read it: programs
  // with more rights do.
  [[nodiscard]] static RoleMapRecords OfLiveMap();

  [[nodiscard]] const std::vector<RoleMapFault>& Faults() const { return faults_; }

  // Of a file without faults; otherwise none.
  [[nodiscard]] const std::deque<QVAuthFileRecord*>& List() const { return records_; }

 private:
  void FindConflict();

  std::unique_ptr<QVAuthFileReader> reader_;
  std::deque<QVAuthFileRecord*> records_;
  std::vector<RoleMapFault> faults_;
};

// What the library finds when it opens the live map: 0 or a fileReadErrorCode.
int FaultOfOpening(const std::string& path);

}  // namespace qvx::ctl

#endif
