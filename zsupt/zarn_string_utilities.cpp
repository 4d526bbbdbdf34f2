// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_string_utilities.h"

#include <climits>
#include <cwchar>

namespace ZarnSupport {
namespace {

constexpr size_t kMalformed = static_cast<size_t>(-1);
constexpr size_t kIncomplete = static_cast<size_t>(-2);

// The C library converts by the thread's locale, so this one replaces it meanwhile.
class LocaleInForce {
 public:
  explicit LocaleInForce(locale_t locale) : previous_(uselocale(locale)) {}
  ~LocaleInForce() { (void)uselocale(previous_); }
  LocaleInForce(const LocaleInForce&) = delete;
  LocaleInForce& operator=(const LocaleInForce&) = delete;

 private:
  locale_t previous_;
};

}  // namespace

std::optional<std::wstring> ZarnStringUtilities::widen(const std::string& text, locale_t locale) {
  const LocaleInForce inForce(locale);
  std::wstring wide;
  std::mbstate_t state{};
  for (size_t at = 0; at < text.size();) {
    wchar_t character = L'\0';
    const size_t used = std::mbrtowc(&character, text.data() + at, text.size() - at, &state);
    if (used == kMalformed || used == kIncomplete) return std::nullopt;
    wide.push_back(character);
    at += used == 0 ? 1 : used;  // 0 means a NUL character
  }
  return wide;
}

std::optional<std::string> ZarnStringUtilities::narrow(const std::wstring& text, locale_t locale) {
  const LocaleInForce inForce(locale);
  std::string narrowed;
  std::mbstate_t state{};
  for (const wchar_t character : text) {
    char bytes[MB_LEN_MAX];
    const size_t length = std::wcrtomb(bytes, character, &state);
    if (length == kMalformed) return std::nullopt;
    narrowed.append(bytes, length);
  }
  return narrowed;
}

}  // namespace ZarnSupport
