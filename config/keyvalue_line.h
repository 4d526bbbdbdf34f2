// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CONFIG_KEYVALUE_LINE_H
#define QVX_CONFIG_KEYVALUE_LINE_H

#include <cstddef>
#include <string_view>

#include "qvxcs/types.h"

namespace qvx {

// The rules that the reader and the writer of key=value files share.

// The room for a file's path.
inline constexpr size_t kKeyValuePathRoom = 257;

// Removes from a line that has a "=" the blanks around the key and the "=", those inside the key,
// those at the end and all double quotes; blanks between quotes stay.
void CFGEntryRemoveWhiteSpaceAndDQuotes(astring* line);

// Cleans the line and ends its key at the "="; the value, or null when the line is no entry.
astring* SplitKeyValueLine(astring* line);

// The same for a line of a file, cleaned in a buffer of kLineRoom, which then begins with
// the key.
const astring* SplitKeyValueLine(std::string_view line, astring* cleaned);

// The file's path: the name itself, or with an install flag of 1 the name below the product's INI
// path, cut at 255 characters. False without that path and for a name that does not fit.
bool KeyValuePath(const astring* name, u16 installFlag, astring (&path)[kKeyValuePathRoom]);

}  // namespace qvx

#endif
