/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_INI_FILE_H
#define QVXCS_INI_FILE_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTReadINIPathFileValue(const astring* section, const astring* key, s32 type,
                                       void* value, u32* size, const void* defaultValue,
                                       u32 defaultSize, const astring* path, booln lockFlag);

QVX_EXPORT u32 PXTReadINIFileValue(const astring* section, const astring* key, s32 type,
                                   void* value, u32* size, const void* defaultValue,
                                   u32 defaultSize, const astring* fileName, booln lockFlag);

QVX_EXPORT u32 PXTWriteINIPathFileValue(const astring* section, const astring* key, s32 type,
                                        const void* value, s32 size, const astring* path,
                                        booln lockFlag);

QVX_EXPORT u32 PXTWriteINIFileValue(const astring* section, const astring* key, s32 type,
                                    const void* value, s32 size, const astring* fileName,
                                    booln lockFlag);

QVX_END_DECLS

#endif
