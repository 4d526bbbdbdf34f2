/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_KEYVALUE_H
#define QVXCS_KEYVALUE_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

typedef struct PXTKeyValue {
  astring* key;
  astring* value;
} PXTKeyValue;

QVX_EXPORT PXTKeyValue* PXTCFGGetKeyValueEntries(const astring* name, u32* count);

QVX_EXPORT PXTKeyValue* PXTCFGInstGetKeyValueEntries(const astring* name, u32* count);

QVX_EXPORT astring* PXTCFGGetKeyValue(const PXTKeyValue* entries, u32 count, const astring* key,
                                      u32 index);

QVX_EXPORT void PXTCFGFreeKeyValueEntries(PXTKeyValue* entries, u32 count);

QVX_EXPORT u32 PXTCFGSetKeyValue(const astring* name, const PXTKeyValue* pair, u32 index);

QVX_EXPORT u32 PXTCFGInstSetKeyValue(const astring* name, const PXTKeyValue* pair, u32 index);

QVX_END_DECLS

#endif
