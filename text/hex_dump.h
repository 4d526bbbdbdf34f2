// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_HEX_DUMP_H
#define QVX_TEXT_HEX_DUMP_H

#include "qvxcs/grow_string.h"
#include "qvxcs/types.h"

namespace qvx {

s32 BufToUStr(SSUStr* record, const void* bytes, u32 count, u32 base);

// The same lines in 8 bits, addresses from 0, without a NUL: PutHexDump writes HexDumpLength
// characters. For blocks of less than 64 MiB.
u32 HexDumpLength(u32 count);
void PutHexDump(astring* out, const void* bytes, u32 count);

}  // namespace qvx

#endif
