// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/ini_lint.h"

#include <fcntl.h>

#include <cerrno>
#include <map>
#include <new>
#include <string>
#include <string_view>

#include "qvxcs/status.h"

#include "config/file_lines.h"
#include "config/ini_lines.h"
#include "ctl/call_failure.h"
#include "ctl/open_line.h"
#include "ctl/output.h"
#include "os/block_reader.h"
#include "os/stdio_file.h"

namespace qvx::ctl {
namespace {

class Linter {
 public:
  std::vector<LintFinding> Read(int file) {
    BlockReader in(file);
    if (!in) throw std::bad_alloc();
    std::string_view line;
    LineRead read = LineRead::kLine;
    while ((read = NextLine(&in, &line)) == LineRead::kLine) {
      if (begins_) ++number_;
      CheckPiece(line);
    }
    if (read == LineRead::kError) Add(true, "cannot be read any further");
    if (!begins_) Add(false, kOpenLineText);
    return std::move(findings_);
  }

 private:
  void CheckPiece(std::string_view line) {
    begins_ = line.ends_with('\n');
    if (!begins_ && line.size() == kLineLength) {
      Add(false, "longer than 8449 characters: the rest is taken for a line of its own");
    }
    if (line.find('\0') != std::string_view::npos) {
      Add(false, "what follows the NUL byte is not read");
    }
    astring name[kNameRoom];
    const u32 status = ParseForSection(line, name);
    if (status == SM_STATUS_BAD_SECTION_HEADER) {
      Add(true, "a header without \"]\": nothing from here on is found or can be set");
    } else if (status == SM_STATUS_SUCCESS) {
      CheckHeader(name, line);
    } else if (!IsComment(line)) {
      CheckKey(KeyOfLine(line));
    }
  }

  void CheckHeader(const std::string& name, std::string_view line) {
    keys_.clear();
    isRead_ = sections_.emplace(name, number_).second;
    if (!isRead_) {
      Add(false, "section \"" + name + "\" was begun in line " + std::to_string(sections_[name]) +
                     " and is searched there alone");
    }
    if (name.size() == kNameRoom - 1) Add(false, "of a section's name 255 characters count");
    const std::string_view rest = line.substr(line.find(']') + 1);
    if (rest.find_first_not_of(" \t\r\n") != std::string_view::npos) {
      Add(false, "what follows the \"]\" is not read");
    }
  }

  void CheckKey(const IniKey& key) {
    const std::string name(key.text);
    if (!key.hasValue) {
      if (!name.empty() && name != "\r") Add(false, "no \"=\": the line is skipped");
      return;
    }
    if (sections_.empty()) return Add(false, "key \"" + name + "\" is before the first section");
    if (name.starts_with('#') || name.starts_with(';')) {
      Add(false, "a comment begins in the first column; this is key \"" + name + "\"");
    }
    CheckBlanks(name, key.value);
    if (!isRead_) return;
    const auto [found, isNew] = keys_.emplace(name, number_);
    if (isNew) return;
    Add(false, "key \"" + name + "\" is in line " + std::to_string(found->second) +
                   " already, which is the one that is read");
  }

  void CheckBlanks(std::string_view name, std::string_view value) {
    if (name.ends_with(' ') || name.ends_with('\t')) {
      Add(false, "the blank before the \"=\" belongs to the key \"" + std::string(name) + "\"");
    }
    if (value.starts_with(' ') || value.starts_with('\t')) {
      Add(false, "the blank after the \"=\" belongs to the value");
    }
    if (value.ends_with('\r')) Add(false, "the carriage return belongs to the value");
  }

  void Add(bool refused, const std::string& text) { findings_.push_back({number_, refused, text}); }

  std::vector<LintFinding> findings_;
  std::map<std::string, unsigned> sections_;
  std::map<std::string, unsigned> keys_;
  unsigned number_ = 0;
  bool begins_ = true;   // the next piece begins a line
  bool isRead_ = false;  // the section is the first of its name
};

}  // namespace

std::vector<LintFinding> LintIniFile(const std::string& path) {
  struct stat seen = {};
  const Descriptor file = OpenRegular(path.c_str(), O_RDONLY, &seen);
  if (!file) throw CallFailure("ini lint", path, SM_STATUS_FILE_OPEN_FAILED, errno);
  return Linter().Read(file.Number());
}

}  // namespace qvx::ctl
