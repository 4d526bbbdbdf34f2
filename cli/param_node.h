// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CLI_PARAM_NODE_H
#define QVX_CLI_PARAM_NODE_H

#include "qvxcs/types.h"

#include "base/heap.h"

namespace qvx {

u32 NVSuptBufCatSetCmdParam(void* buffer, const astring* name, const void* oldValue,
                            const void* newValue, const void* value, s32 type);
void NVSuptCatSMStatusNode(void* buffer, s32 status, const astring* message);

// The attribute name="text" with nothing escaped; empty without enough memory.
HeapArray<astring> QuotedAttribute(const astring* name, const astring* text);

}  // namespace qvx

#endif
