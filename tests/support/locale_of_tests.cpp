// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Each test begins under the locale that QVX_TEST_LOCALE names, or under "C", whatever the test
// before it has set. The build's own locales are there for all.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>

// The C library leaks one of its lists for each locale that it finds in LOCPATH.
extern "C" const char* __lsan_default_suppressions() { return "leak:argz_add_sep\n"; }

namespace {

const char* WantedLocale() {
  const char* const name = getenv("QVX_TEST_LOCALE");
  return name == nullptr ? "C" : name;
}

class LocaleOfTests : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo& /*test*/) override { SetLocale(); }
  void OnTestEnd(const testing::TestInfo& /*test*/) override { SetLocale(); }

  static void SetLocale() {
    uselocale(LC_GLOBAL_LOCALE);
    if (setlocale(LC_ALL, WantedLocale()) != nullptr) return;
    (void)fprintf(stderr, "no locale %s in LOCPATH\n", WantedLocale());
    _Exit(125);
  }
};

// Appended while the program's objects are made, before its main function runs the tests.
const bool kListens = [] {
  (void)setenv("LOCPATH", QVX_LOCALE_FOLDER, 0);
  testing::UnitTest::GetInstance()->listeners().Append(new LocaleOfTests);
  return true;
}();

}  // namespace
