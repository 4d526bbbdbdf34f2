// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_INI_FILE_H
#define QVX_CTL_INI_FILE_H

#include <optional>
#include <string>
#include <vector>

#include "ctl/ini_value.h"

// An INI file through the library's calls. Every failure is thrown with the status's name.
namespace qvx::ctl {

class IniFile {
 public:
  // Without `waits` a lock that is held ends the command at once.
  IniFile(std::string path, bool waits) : path_(std::move(path)), waits_(waits) {}

  // `what` is the command that a failure names.
  [[nodiscard]] std::vector<u8> Get(const char* what, const IniTypeEntry& type,
                                    const std::string& section, const std::string& key) const;

  // Whether the key is found; a failure other than a missing section or key is thrown.
  [[nodiscard]] bool Has(const char* what, const std::string& section,
                         const std::string& key) const;

  // The keys of a section, or without one the sections; none of a file or section without any.
  [[nodiscard]] std::vector<std::string> List(const std::optional<std::string>& section) const;

  // Sets, or without a value deletes.
  void Set(const IniTypeEntry& type, const std::string& section, const std::string& key,
           const std::optional<std::vector<u8>>& value) const;

 private:
  void Prepare(const char* what) const;
  [[nodiscard]] u32 Read(const char* what, const IniTypeEntry& type, const std::string& section,
                         const std::string& key, std::vector<u8>* value) const;

  std::string path_;
  bool waits_;
};

}  // namespace qvx::ctl

#endif
