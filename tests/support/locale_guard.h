// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_LOCALE_GUARD_H
#define QVX_TESTS_SUPPORT_LOCALE_GUARD_H

#include <clocale>
#include <string>

namespace qvx::test {

// Locales that the build makes for tests.
inline constexpr char kDecimalComma[] = "de_DE.UTF-8";
inline constexpr char kLatin1[] = "en_GB.ISO-8859-1";
inline constexpr char kTurkishUtf8[] = "tr_TR.UTF-8";
inline constexpr char kTurkish8Bit[] = "tr_TR.ISO-8859-9";
inline constexpr char kWidePoint[] = "ps_AF.UTF-8";  // a decimal point of two bytes

// The process's locale while it lives; the one before it comes back.
class LocaleGuard {
 public:
  explicit LocaleGuard(const char* name)
      : before_(setlocale(LC_ALL, nullptr)), set_(setlocale(LC_ALL, name) != nullptr) {}
  ~LocaleGuard() { (void)setlocale(LC_ALL, before_.c_str()); }
  LocaleGuard(const LocaleGuard&) = delete;
  LocaleGuard& operator=(const LocaleGuard&) = delete;

  // Whether there is such a locale.
  explicit operator bool() const { return set_; }

 private:
  const std::string before_;
  const bool set_;
};

}  // namespace qvx::test

#endif
