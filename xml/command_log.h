// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_COMMAND_LOG_H
#define QVX_XML_COMMAND_LOG_H

#include "qvxcs/types.h"

namespace qvx {

astring* SUPTIntfGetCmdLogPathFileName();
u32 SUPTIntfAppendToCmdLog(s32 identifier, const astring* user, const astring* source,
                           const astring* description, u16 type);
u32 SUPTIntfClearCmdLog(const astring* user, const astring* source);
u32 SUPTIntfGetCmdLogSize(u32* size);
u32 SUPTIntfGetCmdLogMaxSize(u32* size);
u32 SUPTIntfSetCmdLogMaxSize(s32 size);

// Called by the first attach, outside the global lock.
void InitCmdMaxLogSize();

}  // namespace qvx

#endif
