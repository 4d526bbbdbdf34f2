// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/os_log.h"

#include "base/export_context.h"
#include "os/os_log.h"

u32 PXTAppendToOSLog(u16 eventType, u32 eventNumber, const ustring* source, const ustring* text) {
  const qvx::ExportBracket bracket;
  return qvx::AppendToOSLog(eventType, eventNumber, source, text);
}
u32 PXTClearOSLog() {
  const qvx::ExportBracket bracket;
  return qvx::ClearOSLog();
}
