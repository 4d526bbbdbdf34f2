// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_AUTH_FILE_READER_H
#define QVX_ACCESS_AUTH_FILE_READER_H

#include <time.h>

#include <deque>
#include <memory>
#include <string>

#include "access/auth_file_record.h"
#include "access/role_map_stream.h"
#include "zsupt/zarn_critical_section.h"

namespace qvx {

// Reads the role map file, again only when its modification time has changed. One for the process;
// its calls exclude each other, but the lists they return are the reader's own: use them at once.
// Every fault is thrown as a QVXRoleMapFileReaderException.
class QVAuthFileReader : public ZarnSupport::ZarnCriticalSectionObject {
 public:
  static QVAuthFileReader& GetInstance();
  QVAuthFileReader(const QVAuthFileReader&) = delete;
  QVAuthFileReader& operator=(const QVAuthFileReader&) = delete;

  // Checks the file and opens it for the next GetRecords. Nothing is parsed.
  void Open();

  // A new modification time makes the records and the algorithm's maps stale. Runs under Open.
  void CheckFilePermissions();

  // The records of the file, read when they are not loaded.
  std::deque<QVAuthFileRecord*>& GetRecords();

  // Three built-in lines in place of the records: the superuser administers, its group are power
  // users, everybody else is a user. Does not count as loaded.
  std::deque<QVAuthFileRecord*>& GetDefaultRecords();

 private:
  QVAuthFileReader();
  ~QVAuthFileReader();

  void DeleteRecords();
  void AppendRecord(const std::wstring& line, s32 lineNumber);

  bool loaded_ = false;
  std::string path_;
  std::deque<QVAuthFileRecord*> records_;
  std::unique_ptr<RoleMapStream> stream_;
  time_t lastModification_ = 0;
};

}  // namespace qvx

#endif
