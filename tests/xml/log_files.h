// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_XML_LOG_FILES_H
#define QVX_TESTS_XML_LOG_FILES_H

#include <dirent.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "qvxcs/types.h"

#include "base/results.h"
#include "support/files.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"
#include "support/small_disk.h"

// What the tests of the XML logs share: the texts that a log is made of, and ways to look at one.
namespace qvx::test {

inline constexpr u32 kNoMaximum = 0xFFFFFFFF;
inline constexpr uid_t kNobody = 65534;

inline const char kLogHead[] =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?><EventLog>";
inline const char kLogTail[] = "</EventLog>";

// A log with something between its tags.
inline std::string LogOf(const std::string& entries) { return kLogHead + entries + kLogTail; }

// An entry of the sandbox's host without its two times.
inline std::string EntryOf(u32 type, u32 id, const std::string& user, const std::string& source,
                           const std::string& description, const std::string& data = "") {
  return "<LogEntry><ComputerName>qvxtest</ComputerName><Type>" + std::to_string(type) +
         "</Type><ID>" + std::to_string(id) + "</ID><UserInfo>" + user + "</UserInfo><Source>" +
         source + "</Source><Description>" + description + "</Description><Data>" + data +
         "</Data></LogEntry>";
}

// The text with every TimeStamp and DateTime element taken out.
inline std::string WithoutTimes(std::string text) {
  for (const char* name : {"TimeStamp", "DateTime"}) {
    const std::string opening = std::string("<") + name + ">";
    const std::string closing = std::string("</") + name + ">";
    for (size_t at = 0; (at = text.find(opening, at)) != std::string::npos;) {
      const size_t end = text.find(closing, at);
      if (end == std::string::npos) return "(an element without its closing tag)";
      text.erase(at, end + closing.size() - at);
    }
  }
  return text;
}

// The text in each element of this name, in the order of the file.
inline std::vector<std::string> ElementsOf(const std::string& text, const std::string& name) {
  const std::string opening = "<" + name + ">";
  std::vector<std::string> found;
  for (size_t at = 0; (at = text.find(opening, at)) != std::string::npos;) {
    at += opening.size();
    found.push_back(text.substr(at, text.find("</" + name + ">", at) - at));
  }
  return found;
}

inline bool IsWellFormed(const std::string& path) {
  return RunProgram({"/usr/bin/xmllint", "--huge", "--noout", path.c_str()}) == 0;
}

inline int OpenDescriptors() {
  int count = 0;
  DIR* const folder = opendir("/proc/self/fd");
  while (readdir(folder) != nullptr) {
    ++count;
  }
  closedir(folder);
  return count;
}

// Runs `body` in a child that is not the superuser and returns its result.
template <typename Body>
bool HoldsForNobody(Body body) {
  return InChild([&body] { return seteuid(kNobody) == 0 && body() ? 0 : 1; }) == 0;
}

}  // namespace qvx::test

#endif
