// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CLI_VALUE_CONVERT_H
#define QVX_CLI_VALUE_CONVERT_H

#include "qvxcs/types.h"

namespace qvx {

u32 NVSuptASCIIToXVal(const astring* text, s32 code, void* out);
u32 NVSuptNVPValToXVal(s32 count, astring** vector, const astring* name, s32 code, void* out);
astring* NVSuptXValToASCII(s32 code, const void* value);

}  // namespace qvx

#endif
