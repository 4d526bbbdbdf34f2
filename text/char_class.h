// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_CHAR_CLASS_H
#define QVX_TEXT_CHAR_CLASS_H

#include "qvxcs/types.h"

namespace qvx {

u32 IsASCIIIntNum(const astring* text, u32 allowSign);
u32 IsASCIIHexNum(const astring* text, u32 lowerCase);
u32 IsASCIIOctalNum(const astring* text);
u32 IsASCIIAlpha(const astring* text);
u32 IsASCIIAlphaNumeric(const astring* text);
u32 IsASCIIAlphaNumericPlus(const astring* text, const astring* extra);

}  // namespace qvx

#endif
