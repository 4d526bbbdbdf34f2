// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/xsl_path.h"

#include "base/cancel_hold.h"
#include "paths/xsl_path.h"

astring* PXTGetXSLPathLocale(const astring* product, const astring* dir, const astring* file,
                             const astring* locale, u8 flags, booln forwardSlashes) {
  const qvx::CancelHold hold;
  return qvx::SUPTIntfGetXSLPathLocale(product, dir, file, locale, flags, forwardSlashes);
}
