// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_XML_FILL_H
#define QVX_TEXT_XML_FILL_H

#include <cstddef>

#include "qvxcs/types.h"

namespace qvx {

// One pass of XML escaping over a text whose length is known, in two steps: measure, then fill.

// How many bytes longer the text becomes; 0 when nothing is escaped.
u64 XmlGrowth(const astring* text, size_t length);

// Writes the text escaped, exactly `length` and its growth, without a terminator.
void FillXml(astring* to, u64 growth, const astring* text, size_t length);

}  // namespace qvx

#endif
