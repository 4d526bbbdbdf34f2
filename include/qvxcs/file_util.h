/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_FILE_UTIL_H
#define QVXCS_FILE_UTIL_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTDeleteFile(const astring* path);

QVX_EXPORT u32 PXTGetSizeOfFile(const astring* path, u32* size);

QVX_EXPORT u32 PXTGetTmpFile(const astring* directory, astring* name, u32* size);

QVX_EXPORT u32 PXTMkDir(const astring* path);

QVX_EXPORT u32 PXTRmDir(const astring* path);

QVX_END_DECLS

#endif
