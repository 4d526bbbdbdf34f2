// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_HEX_DUMP_H
#define QVX_TEXT_HEX_DUMP_H

#include "qvxcs/grow_string.h"
#include "qvxcs/types.h"

namespace qvx {

s32 BufToUStr(SSUStr* record, const void* bytes, u32 count, u32 base);

}  // namespace qvx

#endif
