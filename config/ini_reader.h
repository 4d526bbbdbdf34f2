// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_READER_H
#define QVX_CONFIG_INI_READER_H

#include <cstdio>

#include "qvxcs/types.h"

namespace qvx {

// The scanners of an open stream, from where it stands. `*size` is the buffer's size, then what was
// delivered or, with SM_STATUS_BUFFER_TOO_SMALL, what is needed; otherwise it stays. A read error
// is SM_STATUS_BAD_SECTION_HEADER, want of memory -1.
u32 GetValue(const astring* section, const astring* key, astring* buffer, u32* size, FILE* stream);

// Lists: each name with its NUL, one more NUL behind the last, which `*size` does not count.
u32 GetAllKeys(const astring* section, astring* buffer, u32* size, FILE* stream);
u32 GetAllSections(astring* buffer, u32* size, FILE* stream);

// The base reader, on which the typed ones stand: the value's text, the section's keys (no key) or
// the file's sections (no section).
u32 ReadINIFileValue_astring(const astring* section, const astring* key, astring* value, u32* size,
                             const void* defaultValue, u32 defaultSize, const astring* path,
                             booln lockFlag);

}  // namespace qvx

#endif
