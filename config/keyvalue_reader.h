// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_KEYVALUE_READER_H
#define QVX_CONFIG_KEYVALUE_READER_H

#include "qvxcs/keyvalue.h"
#include "qvxcs/types.h"

namespace qvx {

astring* CFGGetKeyValue(const PXTKeyValue* entries, u32 count, const astring* key, u32 index);
void CFGFreeKeyValueEntries(PXTKeyValue* entries, u32 count);

// An install flag of 1 looks for the file below the product's INI path.
PXTKeyValue* CFGGetKeyValueEntries(const astring* name, u16 installFlag, u32* count);

// One pass over the file. Without an array, and a count of 0, it counts the entries and always
// returns -1; with one it stores at most `*count` entries, reports how many there are, and fails
// with nothing stored when the file holds more. CFGGetKeyValueEntries reads the file once instead.
// An internal service without a caller in the library, held by its tests.
u32 PopulateKeyValueEntries(const astring* path, PXTKeyValue* entries, u32* count);

}  // namespace qvx

#endif
