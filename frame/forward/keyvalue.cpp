// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/keyvalue.h"

#include "base/export_context.h"
#include "config/keyvalue_reader.h"
#include "config/keyvalue_writer.h"

PXTKeyValue* PXTCFGGetKeyValueEntries(const astring* name, u32* count) {
  const qvx::ExportBracket bracket;
  return qvx::CFGGetKeyValueEntries(name, 0, count);
}
PXTKeyValue* PXTCFGInstGetKeyValueEntries(const astring* name, u32* count) {
  const qvx::ExportBracket bracket;
  return qvx::CFGGetKeyValueEntries(name, 1, count);
}
astring* PXTCFGGetKeyValue(const PXTKeyValue* entries, u32 count, const astring* key, u32 index) {
  const qvx::ExportBracket bracket;
  return qvx::CFGGetKeyValue(entries, count, key, index);
}
void PXTCFGFreeKeyValueEntries(PXTKeyValue* entries, u32 count) {
  const qvx::ExportBracket bracket;
  qvx::CFGFreeKeyValueEntries(entries, count);
}
u32 PXTCFGSetKeyValue(const astring* name, const PXTKeyValue* pair, u32 index) {
  const qvx::ExportBracket bracket;
  return qvx::CFGSetKeyValue(name, 0, pair, index);
}
u32 PXTCFGInstSetKeyValue(const astring* name, const PXTKeyValue* pair, u32 index) {
  const qvx::ExportBracket bracket;
  return qvx::CFGSetKeyValue(name, 1, pair, index);
}
