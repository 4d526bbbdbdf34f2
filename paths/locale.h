// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_PATHS_LOCALE_H
#define QVX_PATHS_LOCALE_H

#include "qvxcs/types.h"

namespace qvx {

// New heap texts.
astring* SUPTIntfGetLocaleNameAStr(u32 languageId);
astring* SUPTIntfGetOSLocaleName();
astring* SUPTIntfGetOSLanguage();
astring* SUPTIntfGetOSCountry();

// Static text, "en_US" for an identifier that is not in the table.
const astring* SUPTIntfGetLocaleName(u32 languageId);

// The parts before and after the first "_" of a locale name; null without one.
astring* LanguageOf(const astring* localeName);
astring* CountryOf(const astring* localeName);

}  // namespace qvx

#endif
