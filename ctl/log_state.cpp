// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_state.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "ctl/json.h"
#include "ctl/log_file.h"
#include "ctl/output.h"
#include "os/stdio_file.h"
#include "os/uninterrupted.h"

namespace qvx::ctl {
namespace {

// More than a place takes.
constexpr size_t kRoom = size_t{1} << 16;

void WriteCopy(const std::string& path, const std::string& text) {
  Descriptor file = OpenCopy(path.c_str(), nullptr);
  if (!file) throw SystemFailure(path, errno);
  const ssize_t written =
      Uninterrupted([&] { return write(file.Number(), text.data(), text.size()); });
  if (written >= 0 && static_cast<size_t>(written) != text.size()) {
    throw SystemFailure(path, ENOSPC);
  }
  if (written < 0 || fsync(file.Number()) != 0 || !file.Close()) throw SystemFailure(path, errno);
}

}  // namespace

std::optional<LogPlace> LoadPlace(const std::string& path, const std::string& log) {
  const std::unique_ptr<LogFile> file = LogFile::OpenIfThere(path);
  if (file == nullptr) return std::nullopt;
  std::string text(kRoom, '\0');
  text.resize(file->Read(0, text.data(), text.size()));
  if (text.empty()) return std::nullopt;
  try {
    const Json json = Json::parse(text);
    LogPlace place{json.at("log"),      json.at("first"), json.at("last"),
                   json.at("lastMark"), json.at("next"),  json.at("backup")};
    if (place.log != log) throw Failure(kUnknown, path + ": the place belongs to " + place.log);
    return place;
  } catch (const Json::exception&) {
    throw Failure(kUnknown, path + ": holds no place of a log");
  }
}

void SavePlace(const std::string& path, const LogPlace& place) {
  const Json json = {{"log", place.log},   {"first", place.first},
                     {"last", place.last}, {"lastMark", place.lastMark},
                     {"next", place.next}, {"backup", place.backup}};
  const std::string text = json.dump() + "\n";
  const std::string copy = path + ".new";
  WriteCopy(copy, text);
  if (rename(copy.c_str(), path.c_str()) != 0) throw SystemFailure(path, errno);
}

}  // namespace qvx::ctl
