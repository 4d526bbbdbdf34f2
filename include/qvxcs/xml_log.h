/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_XML_LOG_H
#define QVXCS_XML_LOG_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTForceXMLLogExists(const astring* path, const astring* user,
                                    const astring* source);

QVX_EXPORT u32 PXTClearXMLLog(const astring* path, const astring* user, const astring* source);

QVX_EXPORT u32 PXTAppendToXMLLog(const astring* path, u16 type, u32 id, const astring* user,
                                 const astring* source, const astring* description,
                                 const void* data, u32 dataSize, u32 maxSize);

QVX_EXPORT u32 PXTGetBackupXMLLogPathFileName(const astring* path, astring* buffer, u32* size);

QVX_EXPORT astring* PXTCmdGetXMLLogContent(const astring* path);

QVX_END_DECLS

#endif
