// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_INI_MODEL_H
#define QVX_TESTS_REFERENCE_INI_MODEL_H

#include <optional>
#include <string>
#include <vector>

#include "qvxcs/types.h"

// Slow, obvious models of the INI reader and the INI writer: they work on the whole file as one
// string of bytes, nothing shared with the library. A file that is not there has no string.
namespace qvx::test {

using IniFile = std::optional<std::string>;

// A file as line by line reading sees it: each piece with its line end, 8,449 bytes at most.
std::vector<std::string> ModelIniPieces(const std::string& file);

// The arguments of a reader. `size` is the room; `standIn` the bytes of the default.
struct IniQuestion {
  std::optional<std::string> section;
  std::optional<std::string> key;
  s32 type = 1;
  u32 size = 0;
  std::optional<std::string> standIn = {};
};

// What it returns: the bytes that the room now begins with (all after them is as it was), and the
// size. A 32-bit number from beyond 64 bits may have any value.
struct IniAnswer {
  u32 status = 0;
  std::string stored = {};
  u32 size = 0;
  bool anyValue = false;
};
IniAnswer ModelIniRead(const IniFile& file, const IniQuestion& question);

// What a writer is given. A text comes without its NUL, a wide text with its 0 unit.
struct IniChange {
  std::optional<std::string> section;
  std::optional<std::string> key;
  s32 type = 1;
  std::optional<std::string> value = {};
  s32 size = 0;
};

// What it leaves: the file, whether its mode has been set, whether its copy is beside it.
struct IniOutcome {
  u32 status = 0;
  IniFile file = {};
  bool modeSet = false;
  bool copyLeft = false;
};
IniOutcome ModelIniWrite(const IniFile& file, const IniChange& change);

}  // namespace qvx::test

#endif
