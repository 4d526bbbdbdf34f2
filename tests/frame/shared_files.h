// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_FRAME_SHARED_FILES_H
#define QVX_TESTS_FRAME_SHARED_FILES_H

#include <dirent.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "qvxcs/ini_file.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"

// The files that several threads and processes use at once, and one call on each kind of them.
namespace qvx::test {

constexpr char kFolder[] = "/run/threads";
constexpr u32 kNoMaximum = 0xFFFFFFFF;
constexpr s32 kU32 = 5;

inline std::string InFolder(const std::string& name) { return std::string(kFolder) + "/" + name; }

inline std::set<std::string> NamesInFolder() {
  std::set<std::string> names;
  DIR* const folder = opendir(kFolder);
  while (const dirent* const entry = readdir(folder)) {
    if (entry->d_name[0] != '.' || entry->d_name[1] != '\0') names.insert(entry->d_name);
  }
  (void)closedir(folder);
  names.erase("..");
  return names;
}

inline void Start() {
  ASSERT_EQ(mkdir(kFolder, 0755), 0);
  ASSERT_EQ(ModuleInit(), 1);
}

// An entry's identifier is its thread times this and its number.
constexpr u32 kEntries = 100000;

inline u32 Append(const std::string& log, u32 thread, u32 number, u32 maximum = kNoMaximum) {
  return PXTAppendToXMLLog(log.c_str(), QVX_LOG_INFORMATION, thread * kEntries + number, "u", "s",
                           "<D/>", nullptr, 0, maximum);
}

// How many of its entries, in order and from 0 on, each thread has in the text; `count` threads.
inline std::vector<u32> EntriesInOrder(const std::string& text, u32 count) {
  std::vector<u32> next(count, 0);
  constexpr char kMark[] = "<ID>";
  for (size_t at = text.find(kMark); at != std::string::npos; at = text.find(kMark, at + 1)) {
    const u32 identifier = static_cast<u32>(strtoul(text.c_str() + at + 4, nullptr, 10));
    const u32 thread = identifier / kEntries;
    if (thread < count && identifier % kEntries == next[thread]) ++next[thread];
  }
  return next;
}

inline u32 WriteNumber(const std::string& path, const std::string& section, const std::string& key,
                       u32 number) {
  return PXTWriteINIPathFileValue(section.c_str(), key.c_str(), kU32, &number, sizeof(number),
                                  path.c_str(), QVX_LOCK_WAIT);
}

inline u32 ReadNumber(const std::string& path, const std::string& section, const std::string& key,
                      u32* number) {
  u32 size = sizeof(*number);
  return PXTReadINIPathFileValue(section.c_str(), key.c_str(), kU32, number, &size, nullptr, 0,
                                 path.c_str(), QVX_LOCK_WAIT);
}

inline u32 SetNumber(const std::string& path, std::string key, u32 number) {
  std::string value = std::to_string(number);
  const PXTKeyValue pair = {key.data(), value.data()};
  return PXTCFGSetKeyValue(path.c_str(), &pair, 0);
}

// The number of a key=value file's entries; 0 when they cannot be read.
inline u32 CountOfEntries(const std::string& path) {
  u32 count = 0;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(path.c_str(), &count);
  PXTCFGFreeKeyValueEntries(entries, count);
  return count;
}

}  // namespace qvx::test

#endif
