// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_XML_BUFFER_H
#define QVX_XML_XML_BUFFER_H

#include <memory>

#include "qvxcs/types.h"

namespace qvx {

void* PXMAllocBuf(u32 initialSize, booln stylesheet);
void PXMFreeBufContent(astring* text);
u32 PXMBufCatNode(void* buffer, const astring* name, const astring* attributes, s32 type,
                  const void* value);
u32 PXMBufCatBeginNode(void* buffer, const astring* name, const astring* attributes);
u32 PXMBufCatEndNode(void* buffer, const astring* name);
u32 PXMBufCatEmptyNode(void* buffer, const astring* name, const astring* attributes);

// Frees the buffer. With kGetContent its text is returned and the caller owns it; otherwise the
// result is null.
inline constexpr u16 kDiscardContent = 0;
inline constexpr u16 kGetContent = 1;
astring* PXMFreeBuf(void* buffer, u16 mode);

// A buffer that frees itself.
struct XmlBufferDeleter {
  void operator()(void* buffer) const { (void)PXMFreeBuf(buffer, kDiscardContent); }
};
using XmlBuffer = std::unique_ptr<void, XmlBufferDeleter>;
inline XmlBuffer AllocXmlBuffer(u32 initialSize) { return XmlBuffer(PXMAllocBuf(initialSize, 0)); }
// Frees it and hands its text to the caller.
inline astring* ReleaseContent(XmlBuffer buffer) {
  return PXMFreeBuf(buffer.release(), kGetContent);
}

// `format` is the radix of the numbers of up to 32 bits (0, 10, 16) and the number of escaping
// passes of the escaped texts (below 1: one pass); the other types ignore it.
u32 PXMBufCatNodeT(void* buffer, const astring* name, const astring* attributes, s32 code,
                   const void* value, s32 format);

}  // namespace qvx

#endif
