// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/grow_string.h"

#include "text/ascii_util.h"
#include "text/grow_string.h"
#include "text/hex_dump.h"

astring* PXTSSAStrAlloc(SSAStr* record, u32 capacity) { return qvx::SSAStrAlloc(record, capacity); }
ustring* PXTSSUStrAlloc(SSUStr* record, u32 capacity) { return qvx::SSUStrAlloc(record, capacity); }
void PXTSSAStrFree(SSAStr* record) { qvx::SSAStrFree(record); }
void PXTSSUStrFree(SSUStr* record) { qvx::SSUStrFree(record); }
astring* PXTSSAStrCatAStr(SSAStr* record, const astring* text) {
  return qvx::SSAStrCatAStr(record, text);
}
ustring* PXTSSUStrCatUStr(SSUStr* record, const ustring* text) {
  return qvx::SSUStrCatUStr(record, text);
}
astring* PXTSSAStrCatUStr(SSAStr* record, const ustring* text) {
  return qvx::SSAStrCatUStr(record, text);
}
ustring* PXTSSUStrCatAStr(SSUStr* record, const astring* text) {
  return qvx::SSUStrCatAStr(record, text);
}
s32 PXTBufToUStr(SSUStr* record, const void* bytes, u32 count, u32 base) {
  return qvx::BufToUStr(record, bytes, count, base);
}
void PXTAppendDNode(const astring* first, const astring* second, astring** out) {
  qvx::AppendNode(first, second, out);
}
void PXTRemoveDQuotesInStrArr(u32 count, astring** strings) {
  qvx::RemoveDQuotesInStrArr(count, strings);
}
s32 PXTAStrnicmp(const astring* first, const astring* second, u32 count) {
  return qvx::AStrnicmp(first, second, count);
}
u32 PXTASCIIReplaceSubstr(const astring* text, const astring* find, const astring* replace,
                          u32* size, astring* out) {
  return qvx::ASCIIReplaceSubstr(text, find, replace, size, out);
}
