/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_XML_BUFFER_H
#define QVXCS_XML_BUFFER_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

typedef struct PXTTypedValue {
  s32 type;
  s32 format;
  void* value;
} PXTTypedValue;

QVX_EXPORT void* PXTXAllocBuf(u32 initialSize, booln stylesheet);

QVX_EXPORT astring* PXTXFreeBuf(void* buffer);

QVX_EXPORT astring* PXTXFreeBufGetContent(void* buffer);

QVX_EXPORT void PXTXFreeBufContent(astring* text);

QVX_EXPORT u32 PXTXBufCatNode(void* buffer, const astring* name, const astring* attributes,
                              s32 type, const void* value);

QVX_EXPORT u32 PXTXBufCatBeginNode(void* buffer, const astring* name, const astring* attributes);

QVX_EXPORT u32 PXTXBufCatEndNode(void* buffer, const astring* name);

QVX_EXPORT u32 PXTXBufCatEmptyNode(void* buffer, const astring* name, const astring* attributes);

QVX_END_DECLS

#endif
