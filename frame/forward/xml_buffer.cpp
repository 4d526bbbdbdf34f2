// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/xml_buffer.h"

#include "xml/xml_buffer.h"

void* PXTXAllocBuf(u32 initialSize, booln stylesheet) {
  return qvx::PXMAllocBuf(initialSize, stylesheet);
}
astring* PXTXFreeBuf(void* buffer) { return qvx::PXMFreeBuf(buffer, qvx::kDiscardContent); }
astring* PXTXFreeBufGetContent(void* buffer) {
  return buffer == nullptr ? nullptr : qvx::PXMFreeBuf(buffer, qvx::kGetContent);
}
void PXTXFreeBufContent(astring* text) { qvx::PXMFreeBufContent(text); }
u32 PXTXBufCatNode(void* buffer, const astring* name, const astring* attributes, s32 type,
                   const void* value) {
  return qvx::PXMBufCatNode(buffer, name, attributes, type, value);
}
u32 PXTXBufCatBeginNode(void* buffer, const astring* name, const astring* attributes) {
  return qvx::PXMBufCatBeginNode(buffer, name, attributes);
}
u32 PXTXBufCatEndNode(void* buffer, const astring* name) {
  return qvx::PXMBufCatEndNode(buffer, name);
}
u32 PXTXBufCatEmptyNode(void* buffer, const astring* name, const astring* attributes) {
  return qvx::PXMBufCatEmptyNode(buffer, name, attributes);
}
