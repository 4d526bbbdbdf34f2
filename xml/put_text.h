// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_PUT_TEXT_H
#define QVX_XML_PUT_TEXT_H

#include <cstddef>
#include <cstring>

#include "qvxcs/types.h"

#include "base/unaligned.h"

namespace qvx {

// Copies `length` bytes to each place, `Part` wide at each end: both copies overlap where there are
// fewer than two parts. There is at least one part, and everything is read before anything is
// written.
template <typename Part, typename... Places>
[[gnu::always_inline]] inline void PutBothEnds(const astring* text, size_t length, Places... to) {
  const Part first = LoadValue<Part>(text);
  const Part last = LoadValue<Part>(text + length - sizeof(Part));
  (StoreValue(to, first), ...);
  (StoreValue(to + length - sizeof(Part), last), ...);
}

struct SixteenBytes {
  u64 halves[2];
};

// Copies a text to each place. Names and values are short: two copies that may overlap replace a
// call.
template <typename... Places>
[[gnu::always_inline]] inline void PutText(const astring* text, size_t length, Places... to) {
  if (length >= sizeof(u64)) {
    if (length <= sizeof(SixteenBytes)) {
      PutBothEnds<u64>(text, length, to...);
    } else if (length <= 2 * sizeof(SixteenBytes)) {
      PutBothEnds<SixteenBytes>(text, length, to...);
    } else {
      (memcpy(to, text, length), ...);
    }
  } else if (length >= sizeof(u32)) {
    PutBothEnds<u32>(text, length, to...);
  } else if (length >= sizeof(u16)) {
    PutBothEnds<u16>(text, length, to...);
  } else if (length == 1) {
    ((*to = *text), ...);
  }
}

}  // namespace qvx

#endif
