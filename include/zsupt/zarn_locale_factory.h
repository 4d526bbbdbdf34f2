// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef ZSUPT_ZARN_LOCALE_FACTORY_H
#define ZSUPT_ZARN_LOCALE_FACTORY_H

#include <locale.h>

namespace ZarnSupport {

class ZarnLocaleFactory {
 public:
  // The locale in force for the calling thread. It stays the C library's: do not free it.
  static locale_t getDefaultLocale();
};

}  // namespace ZarnSupport

#endif
