// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_OPEN_LINE_H
#define QVX_CTL_OPEN_LINE_H

#include <string>

#include "ctl/output.h"

// A last line without its line end: the library writes a new key right after it, into that line.
namespace qvx::ctl {

inline constexpr char kOpenLineText[] =
    "the last line has no line end: new text continues that line";

// Whether a file that can be read ends without a line feed; an empty file does not.
bool LacksLineEnd(const std::string& path);

// The refusal to add to such a file.
Failure OpenLineFailure(const std::string& what);

}  // namespace qvx::ctl

#endif
