// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/wide_text.h"

#include "zsupt/zarn_locale_factory.h"
#include "zsupt/zarn_string_utilities.h"

namespace qvx {

using ZarnSupport::ZarnLocaleFactory;
using ZarnSupport::ZarnStringUtilities;

std::optional<std::wstring> Widen(const astring* text) {
  return ZarnStringUtilities::widen(text, ZarnLocaleFactory::getDefaultLocale());
}

std::optional<std::string> Narrow(const std::wstring& text) {
  if (text.find(L'\0') != std::wstring::npos) return std::nullopt;
  return ZarnStringUtilities::narrow(text, ZarnLocaleFactory::getDefaultLocale());
}

}  // namespace qvx
