// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/ini_file.h"

#include <cerrno>
#include <cstring>

#include "qvxcs/ini_file.h"
#include "qvxcs/status.h"

#include "ctl/call_failure.h"
#include "ctl/library.h"

namespace qvx::ctl {
namespace {

constexpr s32 kTextType = 1;
constexpr u32 kValueRoom = 8452;  // the longest line that is read
constexpr u32 kListRoom = 65536;  // grows as the library asks

// The names of a list: each with its NUL, one more NUL after the last.
std::vector<std::string> SplitNames(const std::vector<u8>& list) {
  std::vector<std::string> names;
  const char* at = reinterpret_cast<const char*>(list.data());
  const char* const end = at + list.size();
  while (at < end) {
    names.emplace_back(at);
    at += names.back().size() + 1;
  }
  return names;
}

}  // namespace

void IniFile::Prepare(const char* what) const {
  if (!waits_) RequireFreeLock(what);
}

// errno is the system's reason for a failure.
u32 IniFile::Read(const char* what, const IniTypeEntry& type, const std::string& section,
                  const std::string& key, std::vector<u8>* value) const {
  Prepare(what);
  u32 size = type.width != 0 ? type.width : kValueRoom;
  value->resize(size);
  errno = 0;
  const u32 status =
      QVX_CALL(PXTReadINIPathFileValue)(section.c_str(), key.c_str(), type.code, value->data(),
                                        &size, nullptr, 0, path_.c_str(), waits_ ? 1 : 0);
  if (status == SM_STATUS_SUCCESS) value->resize(size);
  return status;
}

std::vector<u8> IniFile::Get(const char* what, const IniTypeEntry& type, const std::string& section,
                             const std::string& key) const {
  std::vector<u8> value;
  const u32 status = Read(what, type, section, key, &value);
  if (status != SM_STATUS_SUCCESS) throw CallFailure(what, path_, status, errno);
  return value;
}

bool IniFile::Has(const char* what, const std::string& section, const std::string& key) const {
  std::vector<u8> value;
  const u32 status = Read(what, FindIniType("astring"), section, key, &value);
  if (status == SM_STATUS_SUCCESS) return true;
  if (status == SM_STATUS_SECTION_NOT_FOUND || status == SM_STATUS_KEY_NOT_FOUND) return false;
  throw CallFailure(what, path_, status, errno);
}

std::vector<std::string> IniFile::List(const std::optional<std::string>& section) const {
  Prepare("ini list");
  // The status of a list that has no name: the file or the section itself was found.
  const u32 nothing = section ? SM_STATUS_KEY_NOT_FOUND : SM_STATUS_SECTION_NOT_FOUND;
  for (u32 room = kListRoom;;) {
    std::vector<u8> list(size_t{room} + 1);
    u32 size = room;
    errno = 0;
    const u32 status = QVX_CALL(PXTReadINIPathFileValue)(section ? section->c_str() : nullptr,
                                                         nullptr, kTextType, list.data(), &size,
                                                         nullptr, 0, path_.c_str(), waits_ ? 1 : 0);
    if (status == SM_STATUS_BUFFER_TOO_SMALL && size > room) {
      room = size;
      continue;
    }
    if (status == nothing) return {};
    if (status != SM_STATUS_SUCCESS) throw CallFailure("ini list", path_, status, errno);
    list.resize(size);
    return SplitNames(list);
  }
}

void IniFile::Set(const IniTypeEntry& type, const std::string& section, const std::string& key,
                  const std::optional<std::vector<u8>>& value) const {
  const char* const what = value ? "ini set" : "ini delete";
  Prepare(what);
  errno = 0;
  const u32 status = QVX_CALL(PXTWriteINIPathFileValue)(
      section.c_str(), key.c_str(), type.code, value ? value->data() : nullptr,
      value ? static_cast<s32>(value->size()) : 0, path_.c_str(), waits_ ? 1 : 0);
  if (status != SM_STATUS_SUCCESS) throw CallFailure(what, path_, status, errno);
}

}  // namespace qvx::ctl
