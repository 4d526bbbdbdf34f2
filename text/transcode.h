// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_TRANSCODE_H
#define QVX_TEXT_TRANSCODE_H

#include "qvxcs/types.h"

namespace qvx {

// The terminator of a text that fills `*size` exactly is written one element past it: offer one
// element less than is allocated. With a null `out` they only store the size needed.

// Sizes in bytes.
u32 UCS2StrToUTF8Str(astring* out, u32* size, const ustring* text);
u32 UCS4StrToUTF8Str(astring* out, u32* size, const u32* text);

// `*size` is read as units and written back as bytes.
u32 UTF8StrToUCS2Str(ustring* out, u32* size, const astring* text);

}  // namespace qvx

#endif
