// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_show.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <system_error>

#include "ctl/json.h"
#include "ctl/log_file.h"
#include "ctl/log_repair.h"
#include "ctl/output.h"

namespace qvx::ctl {
namespace {

std::string LocalTime(s64 time) {
  const auto seconds = static_cast<time_t>(time);
  std::tm parts{};
  char text[64];
  if (localtime_r(&seconds, &parts) == nullptr) return "@" + std::to_string(time);
  return {text, strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &parts)};
}

std::optional<s64> SecondsOfUnit(char unit) {
  switch (unit) {
    case 's':
      return 1;
    case 'm':
      return 60;
    case 'h':
      return 3600;
    case 'd':
      return 86400;
    default:
      return std::nullopt;
  }
}

std::optional<s64> ParseAge(const std::string& text) {
  u32 count = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, count);
  if (fault != std::errc() || stop + 1 != end) return std::nullopt;
  const std::optional<s64> unit = SecondsOfUnit(*stop);
  if (!unit) return std::nullopt;
  return static_cast<s64>(time(nullptr)) - *unit * count;
}

bool IsInCalendar(const std::tm& parts) {
  using namespace std::chrono;
  return year_month_day(year(parts.tm_year + 1900), month(static_cast<unsigned>(parts.tm_mon + 1)),
                        day(static_cast<unsigned>(parts.tm_mday)))
      .ok();
}

// strptime would take "26-11-22" for a day of the year 26.
bool BeginsWithYear(const std::string& text) { return text.find_first_not_of("0123456789") == 4; }

std::optional<s64> ParseDate(const std::string& text) {
  if (!BeginsWithYear(text)) return std::nullopt;
  for (const char* format : {"%Y-%m-%d", "%Y-%m-%d %H:%M", "%Y-%m-%d %H:%M:%S"}) {
    std::tm parts{};
    parts.tm_isdst = -1;
    const char* const end = strptime(text.c_str(), format, &parts);
    if (end == nullptr || *end != '\0') continue;
    if (!IsInCalendar(parts)) return std::nullopt;
    return static_cast<s64>(mktime(&parts));
  }
  return std::nullopt;
}

std::optional<s64> ParseStamp(const std::string& text) {
  s64 time = 0;
  const char* const end = text.data() + text.size();
  if (text.empty() || text.front() != '@') return std::nullopt;
  const auto [stop, fault] = std::from_chars(text.data() + 1, end, time);
  if (fault != std::errc() || stop != end) return std::nullopt;
  return time;
}

bool IsAskedFor(const LogView& view, const LogRecord& record) {
  if (view.since && record.time < *view.since) return false;
  if (view.user && record.user != *view.user) return false;
  return !view.id || record.id == *view.id;
}

Json JsonOf(const LogRecord& record, u64 offset) {
  return {{"time", record.time}, {"host", record.host},     {"offset", offset},
          {"date", record.date}, {"type", record.type},     {"id", record.id},
          {"user", record.user}, {"source", record.source}, {"description", record.description},
          {"data", record.data}};
}

}  // namespace

s64 ParseSince(const std::string& text) {
  if (const auto stamp = ParseStamp(text)) return *stamp;
  if (const auto age = ParseAge(text)) return *age;
  if (const auto date = ParseDate(text)) return *date;
  throw Failure(kUsage, "log: \"" + text + "\" is no time");
}

void ShowEntry(const LogView& view, const LogRecord& record, u64 offset) {
  if (!IsAskedFor(view, record)) return;
  if (view.asJson) return PrintJson(JsonOf(record, offset));
  PrintRow(LocalTime(record.time) + " " + record.host + " " + record.user + " " + record.source +
           " " + std::to_string(record.id) + "/" + std::to_string(record.type) + ": " +
           record.description + (record.data.empty() ? "" : " (with data)"));
}

bool ShowLog(const std::string& path, const LogView& view) {
  LogFile file(path);
  LogReader reader(&file);
  for (;;) {
    switch (reader.Next()) {
      case LogPart::kEntry:
        ShowEntry(view, reader.Record(), reader.Begin());
        continue;
      case LogPart::kDamage:
        continue;
      case LogPart::kEnd:
        if (reader.EndOfUnclosed() != 0) ShowEntry(view, reader.Record(), reader.End());
        break;
      case LogPart::kClosed:
        break;
    }
    break;
  }
  FlushOutput();
  const LogDamage damage = ExamineLog(path);
  const std::string begin = path + ": ";
  for (const std::string& text : damage.findings) {
    Warn(begin + text);
  }
  return damage.findings.empty();
}

}  // namespace qvx::ctl
