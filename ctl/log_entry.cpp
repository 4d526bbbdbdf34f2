// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_entry.h"

#include <charconv>
#include <system_error>

namespace qvx::ctl {
namespace {

struct Entity {
  std::string_view text;
  char character;
};

constexpr Entity kEntities[] = {
    {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};

std::string DecodeEntities(std::string_view text) {
  std::string plain;
  while (!text.empty()) {
    size_t taken = 1;
    char character = text.front();
    for (const Entity& entity : kEntities) {
      if (!text.starts_with(entity.text)) continue;
      taken = entity.text.size();
      character = entity.character;
    }
    plain += character;
    text.remove_prefix(taken);
  }
  return plain;
}

// Walks over an entry; after the first part that is not as expected, every further part fails.
class Walker {
 public:
  explicit Walker(std::string_view text) : text_(text) {}

  void Expect(std::string_view part) {
    if (!text_.starts_with(part)) holds_ = false;
    if (holds_) text_.remove_prefix(part.size());
  }
  // The text up to the next `part`, which is skipped.
  std::string_view UpTo(std::string_view part) { return Split(text_.find(part), part); }
  std::string_view UpToLast(std::string_view part) { return Split(text_.rfind(part), part); }

  template <typename Number>
  Number NumberUpTo(std::string_view part) {
    const std::string_view text = UpTo(part);
    Number number = 0;
    const auto [stop, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault != std::errc() || stop != text.data() + text.size()) holds_ = false;
    return number;
  }
  [[nodiscard]] bool HoldsToTheEnd() const { return holds_ && text_.empty(); }

 private:
  std::string_view Split(size_t at, std::string_view part) {
    if (at == std::string_view::npos) holds_ = false;
    if (!holds_) return {};
    const std::string_view result = text_.substr(0, at);
    text_.remove_prefix(at + part.size());
    return result;
  }

  std::string_view text_;
  bool holds_ = true;
};

}  // namespace

std::optional<LogRecord> ParseLogRecord(std::string_view text) {
  LogRecord record;
  Walker walker(text);
  walker.Expect("<LogEntry><TimeStamp>");
  record.time = walker.NumberUpTo<s64>("</TimeStamp><DateTime>");
  record.date = walker.UpTo("</DateTime><ComputerName>");
  record.host = walker.UpTo("</ComputerName><Type>");
  record.type = walker.NumberUpTo<u32>("</Type><ID>");
  record.id = walker.NumberUpTo<u32>("</ID><UserInfo>");
  record.user = DecodeEntities(walker.UpTo("</UserInfo><Source>"));
  record.source = DecodeEntities(walker.UpTo("</Source><Description>"));
  // A dump shows 16 characters a line, too few for this mark; a description may hold it.
  record.description = walker.UpToLast("</Description><Data>");
  record.data = walker.UpTo("</Data></LogEntry>");
  if (!walker.HoldsToTheEnd()) return std::nullopt;
  return record;
}

}  // namespace qvx::ctl
