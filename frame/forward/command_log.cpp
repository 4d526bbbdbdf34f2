// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/command_log.h"

#include "base/export_context.h"
#include "xml/command_log.h"

astring* PXTGetCmdLogPathFileName() {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfGetCmdLogPathFileName();
}
u32 PXTAppendToCmdLog(s32 identifier, const astring* user, const astring* source,
                      const astring* description, u16 type) {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfAppendToCmdLog(identifier, user, source, description, type);
}
u32 PXTClearCmdLog(const astring* user, const astring* source) {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfClearCmdLog(user, source);
}
u32 PXTGetCmdLogSize(u32* size) {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfGetCmdLogSize(size);
}
u32 PXTGetCmdLogMaxSize(u32* size) {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfGetCmdLogMaxSize(size);
}
u32 PXTSetCmdLogMaxSize(s32 size) {
  const qvx::ExportBracket bracket;
  return qvx::SUPTIntfSetCmdLogMaxSize(size);
}
