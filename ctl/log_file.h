// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOG_FILE_H
#define QVX_CTL_LOG_FILE_H

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>

#include "ctl/log_reader.h"
#include "os/descriptor.h"
#include "os/file_id.h"

namespace qvx::ctl {

// A log that is open for reading; it stays the same file when another file gets its name.
class LogFile final : public LogReader::Source {
 public:
  // Throws a Failure when the file cannot be opened.
  explicit LogFile(const std::string& path);
  // Null for a missing file.
  static std::unique_ptr<LogFile> OpenIfThere(const std::string& path);

  size_t Read(u64 offset, char* room, size_t size) override;
  [[nodiscard]] u64 Size() const;
  [[nodiscard]] bool IsSameFile(const LogFile& other) const;
  // Whether the name still refers to this file.
  [[nodiscard]] bool IsAt(const std::string& path) const;

  [[nodiscard]] bool HasHead();
  // A mark of the first entry, by which a log is recognized under another name; empty without a
  // whole entry.
  [[nodiscard]] std::string Mark();
  // Distinguishes one finished file from another: number, size and time of the last change.
  [[nodiscard]] std::string Key() const;
  // The mark of the entry at an offset.
  [[nodiscard]] std::string MarkAt(u64 offset);

 private:
  LogFile(Descriptor file, const std::string& path);

  std::string path_;
  Descriptor file_;
  FileId id_ = {};
};

std::string MarkOf(const std::string& text);

// The path of a log's backup.
std::string BackupPath(const std::string& path);

}  // namespace qvx::ctl

#endif
