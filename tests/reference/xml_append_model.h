// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_XML_APPEND_MODEL_H
#define QVX_TESTS_REFERENCE_XML_APPEND_MODEL_H

#include <map>
#include <optional>
#include <string>

#include "qvxcs/types.h"

// A slow, obvious model of the XML log files: a file is a string, a folder is a map of strings, and
// a log is rebuilt as a whole with every entry. A null text is nothing.
namespace qvx::test {

struct ModelLogEntry {
  u32 type = 0;
  u32 id = 0;
  std::optional<std::string> user;
  std::optional<std::string> source;
  std::optional<std::string> description;
  std::optional<std::string> data;
  u32 dataSize = 0;  // at most the size of `data`, where there are data
};

std::string ModelLogEntryText(const ModelLogEntry& entry, s64 now, const std::string& host);
// The log's new bytes with an entry's text; nothing for a log that has no closing tag.
std::optional<std::string> ModelAppended(const std::string& log, const std::string& entryText);

struct ModelBackup {
  u32 status;
  std::optional<u32> size;          // where the size is set
  std::optional<std::string> name;  // where the name is written
};
ModelBackup ModelBackupName(const std::string& path);

struct ModelNode {
  bool isFolder = false;
  std::string bytes;
  u32 mode = 0;  // of a folder only where the library makes it
};

// All there is below one folder, by whole path. That folder is a node too.
class ModelLogFiles {
 public:
  explicit ModelLogFiles(std::string host) : host_(std::move(host)) {}

  std::map<std::string, ModelNode> nodes;

  // `now` is the time of the entry, `later` that of the entry which a backup leaves.
  u32 Append(const std::optional<std::string>& path, const ModelLogEntry& entry, u32 maxSize,
             s64 now, s64 later);
  u32 ForceExists(const std::optional<std::string>& path, const std::optional<std::string>& user,
                  const std::optional<std::string>& source, s64 now);
  u32 Clear(const std::optional<std::string>& path, const std::optional<std::string>& user,
            const std::optional<std::string>& source, s64 now);
  // Whether the last append moved the log.
  [[nodiscard]] bool moved() const { return moved_; }
  [[nodiscard]] std::optional<std::string> Content(const std::optional<std::string>& path) const;

 private:
  [[nodiscard]] bool IsFile(const std::string& path) const;
  [[nodiscard]] bool IsFolder(const std::string& path) const;
  bool MakeFolderOf(const std::string& path);
  bool MoveToBackup(const std::string& path);

  std::string host_;
  bool moved_ = false;
};

}  // namespace qvx::test

#endif
