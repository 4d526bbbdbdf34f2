// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_OS_LOG_H
#define QVX_OS_OS_LOG_H

#include "qvxcs/types.h"

namespace qvx {

u32 AppendToOSLog(u16 eventType, u32 eventNumber, const ustring* source, const ustring* text);
u32 ClearOSLog();

void RemoveCarriageReturns(astring* text);

}  // namespace qvx

#endif
