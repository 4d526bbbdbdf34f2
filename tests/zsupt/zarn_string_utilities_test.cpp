// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_string_utilities.h"

#include <gtest/gtest.h>

#include <clocale>
#include <optional>
#include <string>

#include "zsupt/zarn_locale_factory.h"

namespace {

using ZarnSupport::ZarnLocaleFactory;
using ZarnSupport::ZarnStringUtilities;

std::optional<std::wstring> Widen(const std::string& text) {
  return ZarnStringUtilities::widen(text, ZarnLocaleFactory::getDefaultLocale());
}

std::optional<std::string> Narrow(const std::wstring& text) {
  return ZarnStringUtilities::narrow(text, ZarnLocaleFactory::getDefaultLocale());
}

TEST(ZarnStringUtilities, ConvertsSevenBitTextInAnyLocale) {
  EXPECT_EQ(Widen("srv1.example"), L"srv1.example");
  EXPECT_EQ(Narrow(L"srv1.example"), "srv1.example");
  EXPECT_EQ(Widen(""), L"");
  EXPECT_EQ(Narrow(L""), "");
}

TEST(ZarnStringUtilities, ConvertsByTheLocaleInForce) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  EXPECT_EQ(Widen("\xC3\xA9\xE2\x82\xAC"), L"\u00E9\u20AC");
  EXPECT_EQ(Narrow(L"\u00E9\u20AC"), "\xC3\xA9\xE2\x82\xAC");
}

TEST(ZarnStringUtilities, ConvertsByTheLocaleGiven) {
  locale_t utf8 = newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
  ASSERT_NE(utf8, nullptr);
  EXPECT_EQ(ZarnStringUtilities::widen("\xC3\xA9", utf8), L"\u00E9");
  EXPECT_EQ(ZarnStringUtilities::narrow(L"\u00E9", utf8), "\xC3\xA9");
  EXPECT_EQ(Widen("\xC3\xA9"), std::nullopt) << "the thread's own locale is back";
  freelocale(utf8);
}

TEST(ZarnStringUtilities, MalformedAndIncompleteTextGivesNothing) {
  ASSERT_NE(setlocale(LC_ALL, "C.UTF-8"), nullptr);
  EXPECT_EQ(Widen("a\xFFz"), std::nullopt);
  EXPECT_EQ(Widen("a\xC3"), std::nullopt);
}

TEST(ZarnStringUtilities, ACharacterThatTheLocaleLacksGivesNothing) {
  EXPECT_EQ(Narrow(L"a\u00E9"), std::nullopt);
  EXPECT_EQ(Widen("a\xC3\xA9"), std::nullopt);
}

TEST(ZarnStringUtilities, KeepsNulCharacters) {
  EXPECT_EQ(Widen(std::string("a\0b", 3)), std::wstring(L"a\0b", 3));
  EXPECT_EQ(Narrow(std::wstring(L"a\0b", 3)), std::string("a\0b", 3));
}

}  // namespace
