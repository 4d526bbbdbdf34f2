/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_OS_LOG_H
#define QVXCS_OS_LOG_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTAppendToOSLog(u16 eventType, u32 eventNumber, const ustring* source,
                                const ustring* text);

QVX_EXPORT u32 PXTClearOSLog(void);

QVX_END_DECLS

#endif
