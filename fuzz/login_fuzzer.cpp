// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Input: a login on each line, "user", "user@host" or "domain\user"; each byte is a unit. Only root
// is the superuser.
#include <algorithm>
#include <string>

#include "qvxcs/access.h"

#include "fuzz/fuzz_support.h"

namespace {

using qvx::fuzz::Block;
using qvx::fuzz::Input;
using qvx::fuzz::Require;

// The text that the operating system looks up: up to the end of the first part.
std::string LookedUp(const std::string& login) {
  const char separator = login.find('@') != std::string::npos ? '@' : '\\';
  const size_t begin = login.find_first_not_of(separator);
  return begin == std::string::npos ? login : login.substr(0, login.find(separator, begin));
}

// As UTF-8, a login may have one byte more than it has units; each of these takes a second byte.
bool IsConverted(const std::string& login) {
  return std::count_if(login.begin(), login.end(),
                       [](char unit) { return static_cast<u8>(unit) > 0x7F; }) <= 1;
}

void Check(const std::string& login) {
  Block<ustring> units(login.size() + 1);
  for (size_t at = 0; at <= login.size(); ++at) {
    units[at] = static_cast<u8>(login.c_str()[at]);
  }
  const u32 rights = PXTAuthorizeUser(nullptr, units.data());
  const bool root = IsConverted(login) && LookedUp(login) == "root";
  Require((rights == (QVX_PRIV_ADMINISTRATOR | QVX_PRIV_ROOT)) == root,
          "root alone has the superuser's rights");
  for (size_t at = 0; at <= login.size(); ++at) {
    Require(units[at] == static_cast<u8>(login.c_str()[at]), "the caller's text is left alone");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size) {
  Input input(data, size);
  while (!input.AtEnd()) {
    Check(input.Word());
  }
  return 0;
}
