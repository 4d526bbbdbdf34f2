// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/cli_value.h"

#include "base/cancel_hold.h"
#include "cli/cmd_help.h"
#include "cli/param_node.h"
#include "cli/value_convert.h"
#include "cli/value_text.h"

u32 PXTNVSASCIIToXVal(const astring* text, s32 type, void* out) {
  return qvx::NVSuptASCIIToXVal(text, type, out);
}
u32 PXTNVSNVPValToXVal(s32 count, astring** vector, const astring* name, s32 type, void* out) {
  return qvx::NVSuptNVPValToXVal(count, vector, name, type, out);
}
astring* PXTNVSXValToASCII(s32 type, const void* value) {
  return qvx::NVSuptXValToASCII(type, value);
}
astring* PXTNVSUstrToAstrD(const ustring* text, const astring* fallback, u32* status) {
  return qvx::NVSuptUstrToAstrD(text, fallback, status);
}
astring* PXTNVSUstrToAstr(const ustring* text, u32* status) {
  return qvx::NVSuptUstrToAstr(text, status);
}
ustring* PXTNVSAstrToUstrD(const astring* text, const ustring* fallback, u32* status) {
  return qvx::NVSuptAstrToUstrD(text, fallback, status);
}
ustring* PXTNVSAstrToUstr(const astring* text, u32* status) {
  return qvx::NVSuptAstrToUstr(text, status);
}
u32 PXTNVSBufCatSetCmdParam(void* buffer, const astring* name, const void* oldValue,
                            const void* newValue, const void* value, s32 type) {
  return qvx::NVSuptBufCatSetCmdParam(buffer, name, oldValue, newValue, value, type);
}
void PXTNVSCatSMStatusNode(void* buffer, s32 status, const astring* message) {
  qvx::NVSuptCatSMStatusNode(buffer, status, message);
}
astring* PXTNVSCMDHelp(s32 ignoredCount, astring** ignoredVector, const PXTCommand* table,
                       s32 count, PXTCommandFunction self) {
  const qvx::CancelHold hold;
  return qvx::NVSuptCMDHelp(ignoredCount, ignoredVector, table, count, self);
}
