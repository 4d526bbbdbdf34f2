// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_state.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "ctl/json.h"
#include "ctl/output.h"
#include "os/stdio_file.h"

namespace qvx::ctl {

std::optional<LogPlace> LoadPlace(const std::string& path, const std::string& log) {
  errno = 0;
  std::ifstream file(path);
  if (!file && errno == ENOENT) return std::nullopt;
  if (!file) throw SystemFailure(path, errno);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (text.empty()) return std::nullopt;
  try {
    const Json json = Json::parse(text);
    LogPlace place{json.at("log"),      json.at("first"), json.at("last"),
                   json.at("lastMark"), json.at("next"),  json.at("backup")};
    if (place.log != log) throw Failure(kUnknown, path + ": the place is one of " + place.log);
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
  FilePtr file = OpenFile(copy.c_str(), "w");
  if (!file) throw SystemFailure(copy, errno);
  const bool isWritten = fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
                         fflush(file.get()) == 0 && fsync(fileno(file.get())) == 0;
  if (!isWritten) throw SystemFailure(copy, errno);
  if (!CloseWritten(std::move(file))) throw SystemFailure(copy, errno);
  if (rename(copy.c_str(), path.c_str()) != 0) throw SystemFailure(path, errno);
}

}  // namespace qvx::ctl
