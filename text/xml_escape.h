// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_XML_ESCAPE_H
#define QVX_TEXT_XML_ESCAPE_H

#include "qvxcs/types.h"

namespace qvx {

// Replaces the five characters of the XML table, byte by byte; the NUL needs room too.
u32 UTF8StrToXMLUTF8Str(astring* out, u32* size, booln* escaped, const astring* text);

// Backslash escapes for everything but 0x20 to 0x7F. Stores the size needed when it does not fit.
u32 UnicodeToEscape(astring* out, u32* size, const ustring* text);

// Repeats XML escaping `passes` times or until a pass escapes nothing. The caller owns the result;
// null when a text is null or malformed, or a block cannot be allocated.
astring* SUPTIntfGetXMLUTF8StrFromAStr(const astring* text, u32 passes);
astring* SUPTIntfGetXMLUTF8StrFromUStr(const ustring* text, u32 passes);

}  // namespace qvx

#endif
