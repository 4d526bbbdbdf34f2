// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_INI_VALUE_H
#define QVX_CTL_INI_VALUE_H

#include <string>
#include <string_view>
#include <vector>

#include "qvxcs/types.h"

#include "ctl/json.h"

// The values of the nine INI types, from and to the text of a command line.
namespace qvx::ctl {

struct IniTypeEntry {
  const char* name;
  s32 code;
  u32 width;  // 0 for a text or a block
};

// Throws a Failure for a name that is no type.
const IniTypeEntry& FindIniType(std::string_view name);
std::vector<std::string> IniTypeNames();

// The value as the library's writer expects it. Throws a Failure for a text that is no such value.
std::vector<u8> EncodeIniValue(const IniTypeEntry& type, const std::string& text);

// A value as the library's reader has stored it.
std::string TextOfIniValue(const IniTypeEntry& type, const std::vector<u8>& bytes);
Json JsonOfIniValue(const IniTypeEntry& type, const std::vector<u8>& bytes);

}  // namespace qvx::ctl

#endif
