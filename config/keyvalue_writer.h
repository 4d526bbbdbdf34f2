// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_KEYVALUE_WRITER_H
#define QVX_CONFIG_KEYVALUE_WRITER_H

#include "qvxcs/keyvalue.h"
#include "qvxcs/types.h"

namespace qvx {

// An install flag of 1 looks for the file below the product's INI path.
u32 CFGSetKeyValue(const astring* name, u16 installFlag, const PXTKeyValue* pair, u32 index);

// Replaces the key's occurrence of that index, counted from 0, or appends the next one.
u32 SetKeyValueEntry(const astring* path, const PXTKeyValue* pair, u32 index);

}  // namespace qvx

#endif
