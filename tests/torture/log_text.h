// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TORTURE_LOG_TEXT_H
#define QVX_TESTS_TORTURE_LOG_TEXT_H

#include <string>

// A log's text as it must be. In a pattern, kAny is any one byte: an entry's time is not known.
namespace qvx::torture {

inline constexpr char kAny = '\x01';
inline constexpr char kLogEnd[] = "</EventLog>";

std::string LogBegin();

struct EntryText {
  unsigned id = 7001;
  std::string description;
  std::string data = "";
  std::string user = "root";
  std::string source = "TORTURE";
};
// The pattern of an entry of type 4.
std::string PatternOf(const EntryText& entry);
// That of the entry that begins a cleared log.
std::string ClearedPattern(const std::string& user, const std::string& source);

bool Fits(const std::string& text, const std::string& pattern);

unsigned CountOf(const std::string& text, const char* word);
bool StartsWith(const std::string& text, const std::string& start);
unsigned EntryCount(const std::string& log);
bool WellFormed(const std::string& log);
// What comes before the closing tag, which every later log begins with.
std::string EntriesOf(const std::string& log);

}  // namespace qvx::torture

#endif
