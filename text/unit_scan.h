// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_UNIT_SCAN_H
#define QVX_TEXT_UNIT_SCAN_H

#include <cstddef>

#include "qvxcs/types.h"

namespace qvx {

// Searches in 16-bit text. None reads beyond the page of the unit that ends it.

// The units before the terminator; the library measures 16-bit text with this function.
u64 UnitCount(const ustring* text);

// The same, but at most `limit`; the text need not end before that.
size_t UnitCountWithin(const ustring* text, size_t limit);

// The first place of `unit`, or else of the terminator.
const ustring* FindUnitOrEnd(const ustring* text, ustring unit);

// How many leading units of both texts agree, up to the terminator.
size_t EqualUnits(const ustring* first, const ustring* second);

// The first place of `pattern` in `text`; null without one. Takes time in proportion to both
// lengths, whatever they hold, and no memory.
const ustring* FindUnits(const ustring* text, size_t textLength, const ustring* pattern,
                         size_t patternLength);

}  // namespace qvx

#endif
