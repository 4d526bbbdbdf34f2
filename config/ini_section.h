// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_INI_SECTION_H
#define QVX_CONFIG_INI_SECTION_H

#include "qvxcs/types.h"

#include "os/descriptor.h"

namespace qvx {

// A new section of one key, under the file lock. SM_STATUS_DATA_TOO_LARGE without a value.
struct IniSection {
  const astring* name;
  const astring* key;
  const astring* value;
};

// Appends the section to the file itself, which is made when it is missing. A failed append is
// undone.
u32 AppendValue(const IniSection& section, const astring* path);

// Adds the section to a file that exists. `copy` holds the file's text, was written under the name
// `tmpPath` and takes the file's place with the section added; where that is not possible, the
// section is appended to the file. The copy no longer exists afterwards.
u32 AddSection(const IniSection& section, const astring* path, const astring* tmpPath,
               Descriptor copy);

// The same for a file that does not exist.
u32 MakeFileOfSection(const IniSection& section, const astring* path, const astring* tmpPath);

}  // namespace qvx

#endif
