/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_COMMAND_LOG_H
#define QVXCS_COMMAND_LOG_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT astring* PXTGetCmdLogPathFileName(void);

QVX_EXPORT u32 PXTAppendToCmdLog(s32 identifier, const astring* user, const astring* source,
                                 const astring* description, u16 type);

QVX_EXPORT u32 PXTClearCmdLog(const astring* user, const astring* source);

QVX_EXPORT u32 PXTGetCmdLogSize(u32* size);

QVX_EXPORT u32 PXTGetCmdLogMaxSize(u32* size);

QVX_EXPORT u32 PXTSetCmdLogMaxSize(s32 size);

QVX_END_DECLS

#endif
