// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_WIDE_TEXT_H
#define QVX_ACCESS_WIDE_TEXT_H

#include <optional>
#include <string>

#include "qvxcs/types.h"

namespace qvx {

// By the locale in force for the thread; nothing when the text is not in its encoding.
std::optional<std::wstring> Widen(const astring* text);

// Nothing when the encoding has no such character, or the text has a NUL inside, which no 8-bit
// text can hold.
std::optional<std::string> Narrow(const std::wstring& text);

}  // namespace qvx

#endif
