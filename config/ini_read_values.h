// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_READ_VALUES_H
#define QVX_CONFIG_INI_READ_VALUES_H

#include "qvxcs/types.h"

namespace qvx {

// One key's value as one of the nine types, or the caller's default.
u32 ReadINIPathFileValue(const astring* section, const astring* key, s32 type, void* value,
                         u32* size, const void* defaultValue, u32 defaultSize, const astring* path,
                         booln lockFlag);

// The same for a bare file name in the product's INI directory; -1 without an install path.
u32 SUPTIntfReadINIFileValue(const astring* section, const astring* key, s32 type, void* value,
                             u32* size, const void* defaultValue, u32 defaultSize,
                             const astring* fileName, booln lockFlag);

// The product's INI path of a bare file name, cut at 255 characters; SM_STATUS_BAD_ARGUMENT without
// a name, -1 without an install path.
inline constexpr u32 kIniPathRoom = 256;
u32 ProductIniFilePath(const astring* fileName, astring (&path)[kIniPathRoom]);

}  // namespace qvx

#endif
