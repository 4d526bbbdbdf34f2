// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef ZSUPT_ZARN_STRING_UTILITIES_H
#define ZSUPT_ZARN_STRING_UTILITIES_H

#include <locale.h>

#include <optional>
#include <string>

namespace ZarnSupport {

// Text between a locale's 8-bit encoding and wide characters, NUL characters included.
class ZarnStringUtilities {
 public:
  // Nothing when the text is not one of the locale's encoding.
  static std::optional<std::wstring> widen(const std::string& text, locale_t locale);

  // Nothing when the locale's encoding lacks one of the characters.
  static std::optional<std::string> narrow(const std::wstring& text, locale_t locale);
};

}  // namespace ZarnSupport

#endif
