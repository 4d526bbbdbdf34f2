// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_UNI_NUMBER_H
#define QVX_TEXT_UNI_NUMBER_H

#include "qvxcs/types.h"

namespace qvx {

s32 UniToSigned32(const ustring* text);
u32 UniToUnSigned32(const ustring* text);
s64 UniToSigned64(const ustring* text);
u64 UniToUnSigned64(const ustring* text);
d64 UniToDouble(const ustring* text);
s32 UniDoubleToStr(ustring* out, u32* size, d64 value, s32 precision);
s32 UniUnSigned32ToStr(ustring* out, u32* size, u32 value, s32 base);
s32 UniSigned32ToStr(ustring* out, u32* size, s32 value, s32 base);

}  // namespace qvx

#endif
