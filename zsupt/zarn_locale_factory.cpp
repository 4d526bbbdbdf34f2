// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_locale_factory.h"

namespace ZarnSupport {

locale_t ZarnLocaleFactory::getDefaultLocale() { return uselocale(nullptr); }

}  // namespace ZarnSupport
