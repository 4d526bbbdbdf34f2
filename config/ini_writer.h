// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_WRITER_H
#define QVX_CONFIG_INI_WRITER_H

#include <cstdio>

#include "qvxcs/types.h"

namespace qvx {

// The steps of a write, under the file lock. A null value deletes the key.
// FindSection copies the lines up to and including the section's header; FindKeyUpdateValue copies
// the rest with the key set or deleted. `in` and `out` stay open.
u32 FindSection(const astring* section, FILE* in, FILE* out);
u32 FindKeyUpdateValue(const astring* key, const astring* value, FILE* in, FILE* out);
u32 AppendValue(const astring* section, const astring* key, const astring* value,
                const astring* path);
u32 UpdateValue(const astring* section, const astring* key, const astring* value,
                const astring* path, const astring* tmpPath);

// Sets or deletes one key; every typed writer ends here.
u32 WriteINIFileValue_astring(const astring* section, const astring* key, const astring* value,
                              s32 size, const astring* path, booln lockFlag);

}  // namespace qvx

#endif
