// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_locale_factory.h"

#include <gtest/gtest.h>

namespace {

using ZarnSupport::ZarnLocaleFactory;

TEST(ZarnLocaleFactory, GivesTheProcessLocaleWhereTheThreadHasNoneOfItsOwn) {
  EXPECT_EQ(ZarnLocaleFactory::getDefaultLocale(), LC_GLOBAL_LOCALE);
}

TEST(ZarnLocaleFactory, GivesTheThreadsOwnLocale) {
  locale_t own = newlocale(LC_ALL_MASK, "C.UTF-8", nullptr);
  ASSERT_NE(own, nullptr);
  uselocale(own);
  EXPECT_EQ(ZarnLocaleFactory::getDefaultLocale(), own);
  uselocale(LC_GLOBAL_LOCALE);
  freelocale(own);
}

}  // namespace
