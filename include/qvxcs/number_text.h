/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_NUMBER_TEXT_H
#define QVXCS_NUMBER_TEXT_H

#include <time.h>

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTIsASCIIIntNum(const astring* text, u32 allowSign);

QVX_EXPORT u32 PXTIsASCIIHexNum(const astring* text, u32 lowerCase);

QVX_EXPORT u32 PXTIsASCIIOctalNum(const astring* text);

QVX_EXPORT u32 PXTIsASCIIAlpha(const astring* text);

QVX_EXPORT u32 PXTIsASCIIAlphaNumeric(const astring* text);

QVX_EXPORT u32 PXTIsASCIIAlphaNumericPlus(const astring* text, const astring* extra);

QVX_EXPORT s32 PXTASCIIToSigned32(const astring* text);

QVX_EXPORT u32 PXTASCIIToUnSigned32(const astring* text);

QVX_EXPORT s64 PXTASCIIToSigned64(const astring* text);

QVX_EXPORT u64 PXTASCIIToUnSigned64(const astring* text);

QVX_EXPORT d64 PXTASCIIToDouble(const astring* text);

QVX_EXPORT booln PXTASCIIToBooln(const astring* text);

QVX_EXPORT booln PXTASCIIToBoolnV(const astring* text, u32* status);

QVX_EXPORT u32 PXTASCIIToUnSigned32VT(const astring* text, u32 base, u32* status);

QVX_EXPORT s32 PXTASCIIToSigned32VT(const astring* text, u32 base, u32* status);

QVX_EXPORT u64 PXTASCIIToUnSigned64VT(const astring* text, u32 base, u32* status);

QVX_EXPORT s64 PXTASCIIToSigned64VT(const astring* text, u32 base, u32* status);

QVX_EXPORT s32 PXTSigned32ToASCII(astring* out, s32 value);

QVX_EXPORT s32 PXTUnSigned32ToASCII(astring* out, u32 value);

QVX_EXPORT void PXTUnSigned64ToASCII(astring* out, u64 value);

QVX_EXPORT void PXTSigned64ToASCII(astring* out, s64 value);

QVX_EXPORT void PXTDoubleToASCII(astring* out, d64 value);

QVX_EXPORT void PXTBoolnToASCII(astring* out, booln value);

QVX_EXPORT s32 PXTUniToSigned32(const ustring* text);

QVX_EXPORT u32 PXTUniToUnSigned32(const ustring* text);

QVX_EXPORT s64 PXTUniToSigned64(const ustring* text);

QVX_EXPORT u64 PXTUniToUnSigned64(const ustring* text);

QVX_EXPORT d64 PXTUniToDouble(const ustring* text);

QVX_EXPORT s32 PXTUniDoubleToStr(ustring* out, u32* size, d64 value, s32 precision);

QVX_EXPORT s32 PXTUniUnSigned32ToStr(ustring* out, u32* size, u32 value, s32 base);

QVX_EXPORT s32 PXTUniSigned32ToStr(ustring* out, u32* size, s32 value, s32 base);

QVX_EXPORT s32 PXTTimeToAStr(astring* out, time_t time);

QVX_EXPORT s32 PXTUniTimeToStr(ustring* out, u32* size, time_t time);

QVX_EXPORT void PXTDSTFix(time_t* time);

QVX_END_DECLS

#endif
