// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_WRITER_H
#define QVX_CONFIG_INI_WRITER_H

#include "qvxcs/types.h"

#include "os/block_reader.h"
#include "os/block_writer.h"

namespace qvx {

// The steps of a write, under the file lock. A null value deletes the key.
// FindSection copies the lines up to and including the section's header; FindKeyUpdateValue copies
// the rest with the key set or deleted. Neither flushes `out`.
u32 FindSection(const astring* section, BlockReader* in, BlockWriter* out);
u32 FindKeyUpdateValue(const astring* key, const astring* value, BlockReader* in, BlockWriter* out);
u32 UpdateValue(const astring* section, const astring* key, const astring* value,
                const astring* path, const astring* tmpPath);

// A write as the caller requested it.
struct IniWrite {
  const astring* section;
  const astring* key;
  const void* value;
  s32 size;
  const astring* path;
  booln lockFlag;
};

// Sets or deletes one key, whose value is a text; every typed writer ends here.
u32 WriteINIFileValue_astring(const IniWrite& write);

}  // namespace qvx

#endif
