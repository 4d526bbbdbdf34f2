// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/ini_lint.h"

#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <set>

#include "qvxcs/status.h"

#include "config/ini_lines.h"
#include "ctl/call_failure.h"
#include "ctl/output.h"
#include "os/stdio_file.h"

namespace qvx::ctl {
namespace {

class Linter {
 public:
  std::vector<LintFinding> Read(FILE* file) {
    const auto line = std::make_unique<IniLine>();
    LineRead read = LineRead::kLine;
    while ((read = ReadLine(file, line.get())) == LineRead::kLine) {
      if (begins_) ++number_;
      CheckPiece(line.get());
    }
    if (read == LineRead::kError) Add(true, "cannot be read any further");
    if (!begins_) Add(false, "the last line has no line end: what is added comes behind it");
    return std::move(findings_);
  }

 private:
  void CheckPiece(IniLine* line) {
    const bool ends = line->length != 0 && line->text[line->length - 1] == '\n';
    if (!ends && line->length == kLineLength) {
      Add(false, "longer than 8449 characters: the rest is taken for a line of its own");
    }
    if (strlen(line->text) != line->length) Add(false, "what follows the NUL byte is not read");
    begins_ = ends;
    const u32 status = ParseForSection(line->text, line->name);
    if (status == SM_STATUS_BAD_SECTION_HEADER) {
      Add(true, "a header without \"]\": nothing from here on is found or can be set");
    } else if (status == SM_STATUS_SUCCESS) {
      CheckHeader(*line);
    } else if (!IsComment(line->text)) {
      CheckKey(line->text);
    }
  }

  void CheckHeader(const IniLine& line) {
    const std::string name = line.name;
    keys_.clear();
    isRead_ = sections_.emplace(name, number_).second;
    if (!isRead_) {
      Add(false, "section \"" + name + "\" was begun in line " + std::to_string(sections_[name]) +
                     " and is searched there alone");
    }
    if (name.size() == kNameRoom - 1) Add(false, "of a section's name 255 characters count");
    const char* const rest = strchr(strchr(line.text, '['), ']') + 1;
    if (rest[strspn(rest, " \t\r\n")] != '\0') Add(false, "what follows the \"]\" is not read");
  }

  void CheckKey(const astring* text) {
    const IniKey key = KeyOfLine(text);
    const astring first = *key.text;
    if (key.value == nullptr) {
      if (first != '\0' && first != '\n' && first != '\r')
        Add(false, "no \"=\": the line is skipped");
      return;
    }
    const std::string name(key.text, key.length);
    if (sections_.empty()) return Add(false, "key \"" + name + "\" is before the first section");
    if (first == '#' || first == ';') {
      Add(false, "a comment begins in the first column; this is key \"" + name + "\"");
    }
    CheckBlanks(name, key.value);
    if (!isRead_) return;
    const auto [found, isNew] = keys_.emplace(name, number_);
    if (isNew) return;
    Add(false, "key \"" + name + "\" is in line " + std::to_string(found->second) +
                   " already, which is the one that is read");
  }

  void CheckBlanks(const std::string& name, const astring* value) {
    if (!name.empty() && strchr(" \t", name.back()) != nullptr) {
      Add(false, "the blank before the \"=\" belongs to the key \"" + name + "\"");
    }
    if (*value == ' ' || *value == '\t')
      Add(false, "the blank after the \"=\" belongs to the value");
    const size_t length = strcspn(value, "\n");
    if (length != 0 && value[length - 1] == '\r') {
      Add(false, "the carriage return belongs to the value");
    }
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
  const FilePtr file = OpenFile(path.c_str(), "r");
  if (!file) throw CallFailure("ini lint", path, SM_STATUS_FILE_OPEN_FAILED, errno);
  return Linter().Read(file.get());
}

}  // namespace qvx::ctl
