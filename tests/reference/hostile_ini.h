// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_HOSTILE_INI_H
#define QVX_TESTS_REFERENCE_HOSTILE_INI_H

#include <random>
#include <string>
#include <vector>

#include "reference/ini_model.h"

namespace qvx::test {

// Files, questions and changes that look for trouble, the same on every run.
class HostileIni {
 public:
  explicit HostileIni(u32 seed) : next_(seed) {}
  u32 Below(size_t limit) { return static_cast<u32>(next_() % limit); }
  bool OneIn(u32 count) { return Below(count) == 0; }
  std::string OneOf(const std::vector<std::string>& texts) { return texts[Below(texts.size())]; }

  // Values that fit the type, and some that do not.
  std::string File(s32 type);
  s32 Type();
  IniQuestion Question(const IniFile& file, s32 type);
  IniChange Change(s32 type);

 private:
  u64 Bits() { return next_() >> Below(64); }
  std::string Bytes(size_t count);
  std::string Blanks();
  std::string Section();
  std::string Key();
  std::string ValueText(s32 type);
  std::string NumberText();
  std::string ByteListText();
  std::string Line(s32 type);
  std::string Stretched(const std::string& line);
  std::string LineEnd();
  std::string ValueBytes(s32 type);
  std::mt19937_64 next_;
};

}  // namespace qvx::test

#endif
