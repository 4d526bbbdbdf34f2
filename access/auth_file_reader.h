// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_AUTH_FILE_READER_H
#define QVX_ACCESS_AUTH_FILE_READER_H

#include <ctime>
#include <deque>
#include <memory>
#include <string>

#include "access/auth_file_record.h"
#include "access/role_map_stream.h"
#include "base/layout.h"
#include "zsupt/zarn_critical_section.h"

namespace qvx {

// Records in the order of their lines, owned. The list is handed out as the suite's programs know
// it, a queue of plain pointers; this class deletes them.
class QVAuthFileRecords {
 public:
  QVAuthFileRecords() = default;
  ~QVAuthFileRecords() { Clear(); }
  QVAuthFileRecords(const QVAuthFileRecords&) = delete;
  QVAuthFileRecords& operator=(const QVAuthFileRecords&) = delete;

  // A line that does not parse throws and leaves the list as it was.
  void Append(std::wstring line, s32 lineNumber);
  void Clear();
  void Swap(QVAuthFileRecords& other) { list_.swap(other.list_); }
  std::deque<QVAuthFileRecord*>& List() { return list_; }

 private:
  std::deque<QVAuthFileRecord*> list_;
};

// Reads the role map file, again only when its modification time has changed. The library has one
// for the process; its calls exclude each other, but the lists they return are the reader's own:
// use them at once. Every fault is thrown as a QVXRoleMapFileReaderException.
class QVAuthFileReader : public ZarnSupport::ZarnCriticalSectionObject {
 public:
  static QVAuthFileReader& GetInstance();
  // Runs at the process's exit, but not while a thread is using the reader.
  static void DeleteInstance();

  // A separate reader, which may read another file: a tool checks a draft with it before the draft
  // is put in place.
  explicit QVAuthFileReader(const std::string& path = kRoleMapPath) : path_(path) {}
  ~QVAuthFileReader();
  QVAuthFileReader(const QVAuthFileReader&) = delete;
  QVAuthFileReader& operator=(const QVAuthFileReader&) = delete;

  // Checks the file and opens it for the next GetRecords. Nothing is parsed.
  void Open();

  // Opens the file whatever its mode, for the next GetRecords.
  void OpenDraft();

  // A new modification time makes the records and the algorithm's maps stale. Runs under Open.
  void CheckFilePermissions();

  // The records of the file, read when they are not loaded. Without enough memory nothing more of
  // the file is read, now or later.
  std::deque<QVAuthFileRecord*>& GetRecords();

  // Three built-in lines in place of the records: the superuser administers, its group are power
  // users, everybody else is a user. They do not count as loaded. Without enough memory the records
  // stay as they were.
  std::deque<QVAuthFileRecord*>& GetDefaultRecords();

  // Reads nothing more of an open file: the rest of it is not the whole file.
  void StopReading();

 private:
  void OpenStream();
  void ReadRecords();

  bool loaded_ = false;
  bool defaultsStand_ = false;  // records_ are the built-in lines
  std::string path_;
  QVAuthFileRecords records_;
  std::unique_ptr<RoleMapStream> stream_;
  time_t lastModification_ = 0;
};

}  // namespace qvx

#endif
