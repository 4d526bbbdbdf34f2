// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "torture/log_text.h"

#include <unistd.h>

#include <cstring>

namespace qvx::torture {
namespace {

constexpr size_t kStampLength = 10;
constexpr size_t kDateLength = 24;

std::string HostName() {
  char name[256] = "";
  (void)gethostname(name, sizeof(name) - 1);
  return name;
}

}  // namespace

std::string LogBegin() {
  return "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?><EventLog>";
}

std::string PatternOf(const EntryText& entry) {
  static const std::string kHost = HostName();
  return "<LogEntry><TimeStamp>" + std::string(kStampLength, kAny) + "</TimeStamp><DateTime>" +
         std::string(kDateLength, kAny) + "</DateTime><ComputerName>" + kHost +
         "</ComputerName><Type>4</Type><ID>" + std::to_string(entry.id) + "</ID><UserInfo>" +
         entry.user + "</UserInfo><Source>" + entry.source + "</Source><Description>" +
         entry.description + "</Description><Data>" + entry.data + "</Data></LogEntry>";
}

std::string ClearedPattern(const std::string& user, const std::string& source) {
  return PatternOf({0, "Log was cleared", "", user, source});
}

bool Fits(const std::string& text, const std::string& pattern) {
  if (text.size() != pattern.size()) return false;
  for (size_t at = 0; at < text.size(); ++at) {
    if (pattern[at] != kAny && pattern[at] != text[at]) return false;
  }
  return true;
}

unsigned CountOf(const std::string& text, const char* word) {
  unsigned count = 0;
  for (size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += strlen(word)) {
    ++count;
  }
  return count;
}

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

unsigned EntryCount(const std::string& log) { return CountOf(log, "</LogEntry>"); }

bool WellFormed(const std::string& log) {
  return StartsWith(log, LogBegin()) && CountOf(log, "<EventLog>") == 1 &&
         CountOf(log, kLogEnd) == 1 && CountOf(log, "<LogEntry>") == EntryCount(log) &&
         log.compare(log.size() - strlen(kLogEnd), std::string::npos, kLogEnd) == 0;
}

std::string EntriesOf(const std::string& log) { return log.substr(0, log.rfind(kLogEnd)); }

}  // namespace qvx::torture
