// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_READER_H
#define QVX_CONFIG_INI_READER_H

#include "qvxcs/types.h"

#include "os/block_reader.h"

namespace qvx {

// The scanners of an open file, from its position on. `*size` is the buffer's size, then what was
// delivered or, with SM_STATUS_BUFFER_TOO_SMALL, what is needed; otherwise it is unchanged. A read
// error is SM_STATUS_BAD_SECTION_HEADER; without enough memory the status is -1.
u32 GetValue(const astring* section, const astring* key, astring* buffer, u32* size,
             BlockReader* file);

// Lists: each name with its NUL, one more NUL after the last, which `*size` does not count.
u32 GetAllKeys(const astring* section, astring* buffer, u32* size, BlockReader* file);
u32 GetAllSections(astring* buffer, u32* size, BlockReader* file);

// A read as the caller requested it.
struct IniRead {
  const astring* section;
  const astring* key;
  void* value;
  u32* size;
  const void* defaultValue;
  u32 defaultSize;
  const astring* path;
  booln lockFlag;
};

// The base reader, which the typed ones call: the value's text, the section's keys (no key) or the
// file's sections (no section).
u32 ReadINIFileValue_astring(const IniRead& read);

}  // namespace qvx

#endif
