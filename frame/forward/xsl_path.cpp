// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/xsl_path.h"

#include "paths/xsl_path.h"

astring* PXTGetXSLPathLocale(const astring* product, const astring* dir, const astring* file,
                             const astring* locale, u8 flags, booln forwardSlashes) {
  return qvx::SUPTIntfGetXSLPathLocale(product, dir, file, locale, flags, forwardSlashes);
}
