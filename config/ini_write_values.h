// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_WRITE_VALUES_H
#define QVX_CONFIG_INI_WRITE_VALUES_H

#include "qvxcs/types.h"

namespace qvx {

u32 WriteINIPathFileValue(const astring* section, const astring* key, s32 type, const void* value,
                          s32 size, const astring* path, booln lockFlag);
u32 SUPTIntfWriteINIFileValue(const astring* section, const astring* key, s32 type,
                              const void* value, s32 size, const astring* fileName, booln lockFlag);

}  // namespace qvx

#endif
