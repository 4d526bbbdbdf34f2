// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_KEYVALUE_MODEL_H
#define QVX_TESTS_REFERENCE_KEYVALUE_MODEL_H

#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "qvxcs/types.h"

// A slow, obvious model of files of "key=value" lines: whole files as strings, cut into lines, each
// line made into an entry or nothing. Nothing is shared with the library.
namespace qvx::test {

using ModelKeyValue = std::pair<std::string, std::string>;

// The lines as they are read: each ends after its line end or after 8,449 characters.
std::vector<std::string> ModelKeyValueLines(const std::string& file);
// A line up to its first NUL; where it has a "=", without the blanks that do not count and without
// its quotes.
std::string ModelCleanLine(const std::string& line);
// The entry of a line; nothing for a comment or a line without "=".
std::optional<ModelKeyValue> ModelKeyValueOf(const std::string& line);
std::vector<ModelKeyValue> ModelKeyValues(const std::string& file);
// The value of the occurrence of a key, counted from 0.
std::optional<std::string> ModelValueOf(const std::vector<ModelKeyValue>& entries,
                                        const std::string& key, u32 index);

struct ModelKeyValueFile {
  u32 status;
  std::string text;
};
// The file after a pair has been put in place of an occurrence, or after the last.
ModelKeyValueFile ModelSetKeyValue(const std::string& file, const ModelKeyValue& pair, u32 index);

// Files and pairs that look for trouble, the same on every run.
class HostileKeyValues {
 public:
  explicit HostileKeyValues(u32 seed) : next_(seed) {}
  u32 Below(u32 limit) { return static_cast<u32>(next_() % limit); }
  std::string File();
  std::string Line();
  // Keys that occur in the files, and others. None holds a 0.
  std::string Key();
  std::string Value();

 private:
  std::string Pick(const std::vector<std::string>& pieces) {
    return pieces[Below(static_cast<u32>(pieces.size()))];
  }
  std::string LongLine();
  std::mt19937 next_;
};

}  // namespace qvx::test

#endif
