/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_GROW_STRING_H
#define QVXCS_GROW_STRING_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

typedef struct SSAStr {
  astring* text;
  u32 capacity;
  u32 length;
} SSAStr;

typedef struct SSUStr {
  ustring* text;
  u32 capacity;
  u32 length;
} SSUStr;

QVX_EXPORT astring* PXTSSAStrAlloc(SSAStr* record, u32 capacity);

QVX_EXPORT ustring* PXTSSUStrAlloc(SSUStr* record, u32 capacity);

QVX_EXPORT void PXTSSAStrFree(SSAStr* record);

QVX_EXPORT void PXTSSUStrFree(SSUStr* record);

QVX_EXPORT astring* PXTSSAStrCatAStr(SSAStr* record, const astring* text);

QVX_EXPORT ustring* PXTSSUStrCatUStr(SSUStr* record, const ustring* text);

QVX_EXPORT astring* PXTSSAStrCatUStr(SSAStr* record, const ustring* text);

QVX_EXPORT ustring* PXTSSUStrCatAStr(SSUStr* record, const astring* text);

QVX_EXPORT s32 PXTBufToUStr(SSUStr* record, const void* bytes, u32 count, u32 base);

QVX_EXPORT void PXTAppendDNode(const astring* first, const astring* second, astring** out);

QVX_EXPORT void PXTRemoveDQuotesInStrArr(u32 count, astring** strings);

QVX_EXPORT s32 PXTAStrnicmp(const astring* first, const astring* second, u32 count);

QVX_EXPORT u32 PXTASCIIReplaceSubstr(const astring* text, const astring* find,
                                     const astring* replace, u32* size, astring* out);

QVX_END_DECLS

#endif
