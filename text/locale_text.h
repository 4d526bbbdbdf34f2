// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_LOCALE_TEXT_H
#define QVX_TEXT_LOCALE_TEXT_H

#include "qvxcs/types.h"

namespace qvx {

u32 GetLocalLanguageID();

// The C library's current multibyte encoding; not the exported converters of these names, which use
// UTF-8. Every failure is 0xFFFFFFFF and leaves `*size` as it was; `size` may be null only with an
// empty text.

// At most `*size` bytes: what does not fit is left off, and a result that fills the size has no
// NUL. Returns the bytes written plus one; a null output or a size of 0 only measures.
u32 UnicodeToASCII(astring* out, u32* size, const ustring* text);
u32 UnicodeToLocal(astring* out, u32* size, const ustring* text);

// `*size` in bytes, both ways. At most `*size` / 2 characters: what does not fit is left off, and
// the terminator is written one unit past the room: offer one unit less than is allocated. A null
// output or a size of 0 only measures.
u32 ASCIIToUnicode(ustring* out, u32* size, const astring* text);
// An internal service without a caller in the library, held by its tests.
u32 LocalToUnicode(ustring* out, u32* size, const astring* text);

}  // namespace qvx

#endif
