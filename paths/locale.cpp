// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/locale.h"

#include <algorithm>
#include <cstring>

#include "base/heap.h"
#include "text/locale_text.h"

namespace qvx {
namespace {

constexpr size_t kLanguageRoom = 256;

struct LocaleName {
  u32 languageId;
  const astring* name;
};

constexpr astring kDefaultName[] = "en_US";
constexpr LocaleName kLocaleNames[] = {
    {1028, "zh_TW"}, {1031, "de"},    {1033, kDefaultName}, {1034, "es"},    {1036, "fr"},
    {1041, "ja"},    {1046, "pt_BR"}, {2052, "zh"},         {2057, "en_GB"}, {2066, "ko"},
};

}  // namespace

const astring* SUPTIntfGetLocaleName(u32 languageId) {
  for (const LocaleName& locale : kLocaleNames) {
    if (locale.languageId == languageId) return locale.name;
  }
  return kDefaultName;
}

astring* SUPTIntfGetLocaleNameAStr(u32 languageId) {
  return CopyText(SUPTIntfGetLocaleName(languageId)).release();
}

astring* SUPTIntfGetOSLocaleName() { return SUPTIntfGetLocaleNameAStr(GetLocalLanguageID()); }

astring* LanguageOf(const astring* localeName) {
  const astring* const mark = strchr(localeName, '_');
  if (mark == nullptr) return nullptr;
  HeapArray<astring> language = AllocArray<astring>(kLanguageRoom);
  if (!language) return nullptr;
  const size_t length = std::min(static_cast<size_t>(mark - localeName), kLanguageRoom - 1);
  memcpy(language.get(), localeName, length);
  language[length] = '\0';
  return language.release();
}

astring* CountryOf(const astring* localeName) {
  const astring* const mark = strchr(localeName, '_');
  return mark == nullptr ? nullptr : CopyText(mark + 1).release();
}

astring* SUPTIntfGetOSLanguage() {
  const HeapArray<astring> name(SUPTIntfGetOSLocaleName());
  return name ? LanguageOf(name.get()) : nullptr;
}

astring* SUPTIntfGetOSCountry() {
  const HeapArray<astring> name(SUPTIntfGetOSLocaleName());
  return name ? CountryOf(name.get()) : nullptr;
}

}  // namespace qvx
