/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_XSL_PATH_H
#define QVXCS_XSL_PATH_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT astring* PXTGetXSLPathLocale(const astring* product, const astring* dir,
                                        const astring* file, const astring* locale, u8 flags,
                                        booln forwardSlashes);

QVX_END_DECLS

#endif
