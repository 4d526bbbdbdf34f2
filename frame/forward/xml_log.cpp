// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/xml_log.h"

#include "base/cancel_hold.h"
#include "base/export_context.h"
#include "cli/log_content.h"
#include "xml/xml_log.h"

u32 PXTForceXMLLogExists(const astring* path, const astring* user, const astring* source) {
  const qvx::ExportBracket bracket;
  return qvx::ForceXMLLogExists(path, user, source);
}
u32 PXTClearXMLLog(const astring* path, const astring* user, const astring* source) {
  const qvx::ExportBracket bracket;
  return qvx::ClearXMLLog(path, user, source);
}
u32 PXTAppendToXMLLog(const astring* path, u16 type, u32 id, const astring* user,
                      const astring* source, const astring* description, const void* data,
                      u32 dataSize, u32 maxSize) {
  const qvx::ExportBracket bracket;
  return qvx::AppendToXMLLog(path, type, id, user, source, description, data, dataSize, maxSize);
}
u32 PXTGetBackupXMLLogPathFileName(const astring* path, astring* buffer, u32* size) {
  const qvx::ExportBracket bracket;
  return qvx::GetBackupXMLLogPathFileName(path, buffer, size);
}
astring* PXTCmdGetXMLLogContent(const astring* path) {
  const qvx::CancelHold hold;
  return qvx::CmdGetXMLLogContent(path);
}
