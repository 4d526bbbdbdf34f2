// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_ASCII_UTIL_H
#define QVX_TEXT_ASCII_UTIL_H

#include "qvxcs/grow_string.h"
#include "qvxcs/types.h"

namespace qvx {

void AppendNode(const astring* first, const astring* second, astring** out);
void RemoveDQuotesInStrArr(u32 count, astring** strings);
s32 AStrnicmp(const astring* first, const astring* second, u32 count);
u32 ASCIIReplaceSubstr(const astring* text, const astring* find, const astring* replace, u32* size,
                       astring* out);

// An internal service without a caller in the library, held by its tests.
astring* strupr(astring* text);
astring* strlwr(astring* text);
u32 strToUpperCase(astring* text);

}  // namespace qvx

#endif
