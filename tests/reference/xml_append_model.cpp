// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "reference/xml_append_model.h"

#include <cstdio>
#include <ctime>

#include "reference/grow_string_model.h"
#include "reference/text_model.h"

namespace qvx::test {
namespace {

constexpr u32 kBadArgument = 0x0002;
constexpr u32 kBadData = 0x0101;
constexpr u32 kFailed = 0xFFFFFFFF;
constexpr u32 kLogMode = 01664;
constexpr u32 kOwnMaximum = 131072;

const char* const kBegin =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?><EventLog>";
const char* const kEnd = "</EventLog>";

std::string Element(const std::string& name, const std::string& content) {
  return "<" + name + ">" + content + "</" + name + ">";
}

std::string TimeText(s64 now) {
  const char* const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  const char* const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const time_t seconds = static_cast<time_t>(now);
  struct tm local = {};
  tzset();
  (void)localtime_r(&seconds, &local);
  char rest[64];
  (void)snprintf(rest, sizeof(rest), " %2d %02d:%02d:%02d %d", local.tm_mday, local.tm_hour,
                 local.tm_min, local.tm_sec, local.tm_year + 1900);
  return std::string(days[local.tm_wday]) + " " + months[local.tm_mon] + rest;
}

bool IsWithin(const std::optional<std::string>& text, size_t longest) {
  return !text || (!text->empty() && text->size() <= longest);
}

ModelLogEntry OwnEntry(u32 id, const std::string& description,
                       const std::optional<std::string>& user,
                       const std::optional<std::string>& source) {
  ModelLogEntry entry;
  entry.type = 4;
  entry.id = id;
  entry.user = user;
  entry.source = source;
  entry.description = description;
  return entry;
}

}  // namespace

std::string ModelLogEntryText(const ModelLogEntry& entry, s64 now, const std::string& host) {
  const std::string data = entry.data.value_or("").substr(0, entry.dataSize);
  return Element("LogEntry",
                 Element("TimeStamp", std::to_string(now)) + Element("DateTime", TimeText(now)) +
                     Element("ComputerName", host) + Element("Type", std::to_string(entry.type)) +
                     Element("ID", std::to_string(entry.id)) +
                     Element("UserInfo", ModelXml(entry.user.value_or(""))) +
                     Element("Source", ModelXml(entry.source.value_or(""))) +
                     Element("Description", entry.description.value_or("")) +
                     Element("Data", ModelHexDump(data, 0)));
}

std::optional<std::string> ModelAppended(const std::string& log, const std::string& entryText) {
  if (log.size() < 65) return kBegin + entryText + kEnd;
  const size_t at = log.rfind(kEnd);
  if (at == std::string::npos || at < 65) return std::nullopt;
  return log.substr(0, at) + entryText + kEnd;
}

ModelBackup ModelBackupName(const std::string& path) {
  if (path.size() < 2) return {0x010F, std::nullopt, std::nullopt};
  const u32 size = static_cast<u32>(path.size()) + 1;
  if (path.size() >= 256) return {0x0010, size, std::nullopt};
  return {0, size, path.substr(0, path.size() - 1) + "_"};
}

bool ModelLogFiles::IsFile(const std::string& path) const {
  const auto node = nodes.find(path);
  return node != nodes.end() && !node->second.isFolder;
}

bool ModelLogFiles::IsFolder(const std::string& path) const {
  const auto node = nodes.find(path);
  return node != nodes.end() && node->second.isFolder;
}

// Only one level is made.
bool ModelLogFiles::MakeFolderOf(const std::string& path) {
  const std::string folder = path.substr(0, path.rfind('/'));
  if (IsFolder(folder)) return true;
  if (IsFile(folder) || !IsFolder(folder.substr(0, folder.rfind('/')))) return false;
  nodes[folder] = {true, "", 0755};
  return true;
}

bool ModelLogFiles::MoveToBackup(const std::string& path) {
  const std::optional<std::string> backup = ModelBackupName(path).name;
  if (!backup || *backup == path || IsFolder(*backup)) return false;
  nodes[*backup] = {false, nodes.at(path).bytes, kLogMode};
  nodes.erase(path);
  return true;
}

u32 ModelLogFiles::Append(const std::optional<std::string>& path, const ModelLogEntry& entry,
                          u32 maxSize, s64 now, s64 later) {
  moved_ = false;
  if (!path || (!entry.data && entry.dataSize != 0) || entry.dataSize > 32768 ||
      !IsWithin(entry.user, 1023) || !IsWithin(entry.source, 1023) ||
      !IsWithin(entry.description, 16383)) {
    return kBadArgument;
  }
  if (!MakeFolderOf(*path)) return kFailed;
  const std::string text = ModelLogEntryText(entry, now, host_);
  if (IsFile(*path) && nodes.at(*path).bytes.size() + text.size() >= maxSize &&
      MoveToBackup(*path)) {
    const ModelLogEntry created = OwnEntry(1, "Log backup created", entry.user, entry.source);
    (void)Append(path, created, kOwnMaximum, later, later);
    moved_ = true;
  }
  if (path->ends_with("/") || IsFolder(*path)) return kFailed;
  ModelNode& log = nodes[*path];
  log.mode = kLogMode;
  const std::optional<std::string> appended = ModelAppended(log.bytes, text);
  if (!appended) return kBadData;
  log.bytes = *appended;
  return 0;
}

u32 ModelLogFiles::ForceExists(const std::optional<std::string>& path,
                               const std::optional<std::string>& user,
                               const std::optional<std::string>& source, s64 now) {
  if (path && IsFile(*path) && nodes.at(*path).bytes.size() > 64) return 0;
  return Append(path, OwnEntry(0, "Log was cleared", user, source), kOwnMaximum, now, now);
}

u32 ModelLogFiles::Clear(const std::optional<std::string>& path,
                         const std::optional<std::string>& user,
                         const std::optional<std::string>& source, s64 now) {
  if (!path || !IsWithin(user, 1023) || !IsWithin(source, 1023)) return kBadArgument;
  if (!IsFile(*path)) return kFailed;
  nodes.erase(*path);
  return Append(path, OwnEntry(0, "Log was cleared", user, source), kOwnMaximum, now, now);
}

std::optional<std::string> ModelLogFiles::Content(const std::optional<std::string>& path) const {
  if (!path || !IsFile(*path) || nodes.at(*path).bytes.empty()) return std::nullopt;
  std::string rest = nodes.at(*path).bytes;
  std::string shown;
  while (!rest.empty()) {
    const size_t newline = rest.find('\n');
    const std::string line = newline == std::string::npos ? rest : rest.substr(0, newline + 1);
    shown += line.substr(0, line.find('\0'));
    rest.erase(0, line.size());
  }
  return Element("Content", shown) + Element("SMStatus", "0");
}

}  // namespace qvx::test
