// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/locale.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "qvxcs/paths.h"

#include "base/heap.h"
#include "support/alloc_fault.h"
#include "support/guard_buffer.h"

namespace qvx {
namespace {

std::string Text(astring* text) {
  const HeapArray<astring> owner(text);
  return text == nullptr ? "(null)" : text;
}

TEST(Locale, EachIdentifierHasItsName) {
  const struct {
    u32 languageId;
    const char* name;
  } cases[] = {
      {1028, "zh_TW"}, {1031, "de"},    {1033, "en_US"}, {1034, "es"},    {1036, "fr"},
      {1041, "ja"},    {1046, "pt_BR"}, {2052, "zh"},    {2057, "en_GB"}, {2066, "ko"},
  };
  for (const auto& each : cases) {
    EXPECT_STREQ(SUPTIntfGetLocaleName(each.languageId), each.name);
    EXPECT_EQ(Text(PXTGetLocaleNameAStr(each.languageId)), each.name);
  }
}

TEST(Locale, AnyOtherIdentifierIsAmericanEnglish) {
  for (const u32 languageId : {0u, 437u, 1027u, 1029u, 9999u, 0x10407u, 0xFFFFFFFFu}) {
    EXPECT_EQ(Text(PXTGetLocaleNameAStr(languageId)), "en_US") << languageId;
  }
}

TEST(Locale, EnvironmentDoesNotChangeTheLocale) {
  for (const char* lang : {"fr_FR.UTF-8", "de", "_X", ""}) {
    ASSERT_EQ(setenv("LANG", lang, 1), 0);
    EXPECT_EQ(Text(PXTGetOSLocaleName()), "en_US");
    EXPECT_EQ(Text(PXTGetOSLanguage()), "en");
    EXPECT_EQ(Text(PXTGetOSCountry()), "US");
  }
  ASSERT_EQ(unsetenv("LANG"), 0);
  EXPECT_EQ(Text(PXTGetOSLocaleName()), "en_US");
}

// An environment that cannot be read: looking at it ends the process.
TEST(Locale, NoCallLooksAtTheEnvironment) {
  char** const kept = environ;
  test::GuardBuffer<char*> unreadable(0);
  environ = unreadable.data();
  const std::string texts = Text(PXTGetOSLocaleName()) + Text(PXTGetOSLanguage()) +
                            Text(PXTGetOSCountry()) + Text(PXTGetLocaleNameAStr(1031));
  environ = kept;
  EXPECT_EQ(texts, "en_USenUSde");
}

TEST(Locale, NameWithoutCountryHasNeitherPart) {
  EXPECT_EQ(LanguageOf("fr"), nullptr);
  EXPECT_EQ(CountryOf("fr"), nullptr);
  EXPECT_EQ(LanguageOf(""), nullptr);
  EXPECT_EQ(CountryOf(""), nullptr);
}

TEST(Locale, LanguageIsEmptyWhenTheMarkComesFirst) {
  EXPECT_EQ(Text(LanguageOf("_US")), "");
  EXPECT_EQ(Text(CountryOf("_US")), "US");
}

TEST(Locale, OnlyTheFirstMarkCounts) {
  EXPECT_EQ(Text(LanguageOf("zh_Hans_CN")), "zh");
  EXPECT_EQ(Text(CountryOf("zh_Hans_CN")), "Hans_CN");
  EXPECT_EQ(Text(CountryOf("zh_")), "");
}

TEST(Locale, LanguageFillsAtMostItsBlock) {
  const std::string longest(255, 'l');
  EXPECT_EQ(Text(LanguageOf((longest + "_X").c_str())), longest);
  EXPECT_EQ(Text(LanguageOf((longest + "l_X").c_str())), longest);
}

TEST(Locale, LanguageBlockHas256Bytes) {
  const HeapArray<astring> language(PXTGetOSLanguage());
  EXPECT_EQ(test::LastAllocationSize(), 256u);
  EXPECT_STREQ(language.get(), "en");
}

TEST(Locale, IsNullWheneverAnAllocationFails) {
  for (const auto call : {SUPTIntfGetOSLocaleName, SUPTIntfGetOSLanguage, SUPTIntfGetOSCountry}) {
    HeapArray<astring> last;
    const u32 met = test::FailEachAllocation(
        [&] {
          last.reset(call());
          return last.get();
        },
        [](const astring* text) { EXPECT_EQ(text, nullptr); });
    EXPECT_GE(met, 1u);
    EXPECT_NE(last, nullptr);
  }
}

}  // namespace
}  // namespace qvx
