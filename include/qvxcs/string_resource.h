/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_STRING_RESOURCE_H
#define QVXCS_STRING_RESOURCE_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTGetUnicodeStringFromIDPathFile(u32 stringId, u32* languageId, const astring* path,
                                                 ustring* buffer, u32* size);

QVX_END_DECLS

#endif
