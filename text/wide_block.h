// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_WIDE_BLOCK_H
#define QVX_TEXT_WIDE_BLOCK_H

#include <cstddef>

#include "qvxcs/types.h"

#include "text/wide.h"

#ifdef QVX_WIDE_LOADS

namespace qvx {

// Blocks of 16 bytes, at any address.

inline constexpr size_t kBytes = 16;  // of a block
inline constexpr size_t kUnits = 8;

template <typename Element>
inline __m128i Load(const Element* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

template <typename Element>
inline void Store(Element* to, __m128i block) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(to), block);
}

inline u32 Mask(__m128i block) { return static_cast<u32>(_mm_movemask_epi8(block)); }

inline void WidenAsciiBlock(ustring* to, __m128i bytes) {
  Store(to, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
  Store(to + kUnits, _mm_unpackhi_epi8(bytes, _mm_setzero_si128()));
}

}  // namespace qvx

#endif

#endif
