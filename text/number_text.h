// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_NUMBER_TEXT_H
#define QVX_TEXT_NUMBER_TEXT_H

#include "qvxcs/types.h"

namespace qvx {

s32 ASCIIToSigned32(const astring* text);
u32 ASCIIToUnSigned32(const astring* text);
s64 ASCIIToSigned64(const astring* text);
u64 ASCIIToUnSigned64(const astring* text);
d64 ASCIIToDouble(const astring* text);
booln ASCIIToBooln(const astring* text);
booln ASCIIToBoolnV(const astring* text, u32* status);
u32 ASCIIToUnSigned32VT(const astring* text, u32 base, u32* status);
s32 ASCIIToSigned32VT(const astring* text, u32 base, u32* status);
u64 ASCIIToUnSigned64VT(const astring* text, u32 base, u32* status);
s64 ASCIIToSigned64VT(const astring* text, u32 base, u32* status);
s32 Signed32ToASCII(astring* out, s32 value);
s32 UnSigned32ToASCII(astring* out, u32 value);
void UnSigned64ToASCII(astring* out, u64 value);
void Signed64ToASCII(astring* out, s64 value);
void DoubleToASCII(astring* out, d64 value);
void BoolnToASCII(astring* out, booln value);

// An internal service without a caller in the library, held by its tests.
s32 hexToDecimalConvert(astring character);

void ltostr(astring* out, u32 value, s32 base);
void dec2bin(astring* out, u32 value);
void strrev(astring* text);

}  // namespace qvx

#endif
