// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_STRING_RESOURCE_H
#define QVX_CONFIG_STRING_RESOURCE_H

#include "qvxcs/types.h"

#include "os/block_reader.h"

namespace qvx {

u32 GetUnicodeStringFromIDPathFile(u32 stringId, u32* languageId, const astring* path,
                                   ustring* buffer, u32* size);

// Copies the text when it fits. `*size` is the room in bytes and then the bytes needed, the 0 unit
// counted. Returns the bytes copied, or 0; without a buffer and a size, the bytes needed.
u32 SetUnicodeStringToDestination(const ustring* text, ustring* buffer, u32* size);

// Reads a line of at most `units` - 1 units, its carriage return and line feed included, and leaves
// the file after them; the last unit of a piece without that pair is read again with the next.
// Null at the end, and when less than two units are left. `units` is at most half a block.
ustring* dc_fgetws(ustring* buffer, u32 units, BlockReader* file);

}  // namespace qvx

#endif
