// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>
#include <cstring>

#include "text/wide.h"
#include "text/wide_block.h"
#include "text/wide_transcode.h"

namespace qvx {

#ifdef QVX_WIDE_PAGES

namespace {

// The text is read in aligned blocks, which no page cuts.

// A bit for each byte of the block that is not of an ASCII character, as the terminator's.
u32 Others(const astring* block) {
  const __m128i bytes = _mm_load_si128(reinterpret_cast<const __m128i*>(block));
  return ~Mask(_mm_cmpgt_epi8(bytes, _mm_setzero_si128())) & 0xFFFF;
}

u32 Others(const ustring* block) {
  const __m128i units = _mm_load_si128(reinterpret_cast<const __m128i*>(block));
  const __m128i before = _mm_add_epi16(units, _mm_set1_epi16(-1));  // the greatest for a 0
  const __m128i beyond = _mm_subs_epu16(before, _mm_set1_epi16(0x7E));
  return ~Mask(_mm_cmpeq_epi16(beyond, _mm_setzero_si128())) & 0xFFFF;
}

// The element that the lowest of some bits belongs to.
template <typename Element>
size_t Lowest(u32 bits) {
  return static_cast<u32>(__builtin_ctz(bits)) / sizeof(Element);
}

template <typename Element>
size_t AsciiAtStart(const Element* text, size_t most) {
  const auto address = reinterpret_cast<uintptr_t>(text);
  if (address % sizeof(Element) != 0 || !ProcessorHas(kBaseline)) return 0;
  auto block = reinterpret_cast<const Element*>(address & ~(kBytes - 1));
  u32 others = Others(block) >> (address % kBytes);
  if (others != 0) return std::min(Lowest<Element>(others), most);
  const Element* const end = text + most;
  for (block += kBytes / sizeof(Element); block < end; block += kBytes / sizeof(Element)) {
    others = Others(block);
    if (others == 0) continue;
    const Element* const other = block + Lowest<Element>(others);
    return static_cast<size_t>(std::min(other, end) - text);
  }
  return most;
}

// 16, 8 or 4 characters that are known to be ASCII.

void Copy16(ustring* to, const astring* from) { WidenAsciiBlock(to, Load(from)); }
void Copy16(astring* to, const ustring* from) {
  Store(to, _mm_packus_epi16(Load(from), Load(from + kUnits)));
}

void Copy8(ustring* to, const astring* from) {
  const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
  Store(to, _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
}
void Copy8(astring* to, const ustring* from) {
  const __m128i units = Load(from);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_packus_epi16(units, units));
}

void Copy4(ustring* to, const astring* from) {
  s32 bytes = 0;
  memcpy(&bytes, from, sizeof(bytes));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(to),
                   _mm_unpacklo_epi8(_mm_cvtsi32_si128(bytes), _mm_setzero_si128()));
}
void Copy4(astring* to, const ustring* from) {
  const __m128i units = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(from));
  const s32 bytes = _mm_cvtsi128_si32(_mm_packus_epi16(units, units));
  memcpy(to, &bytes, sizeof(bytes));
}

// What the last piece shares with the one before is stored twice.
template <typename To, typename From>
void CopyAscii(To* to, const From* from, size_t count) {
  if (count >= 16) {
    for (size_t at = 0; at < count - 16; at += 16) {
      Copy16(to + at, from + at);
    }
    Copy16(to + count - 16, from + count - 16);
  } else if (count >= 8) {
    Copy8(to, from);
    Copy8(to + count - 8, from + count - 8);
  } else if (count >= 4) {
    Copy4(to, from);
    Copy4(to + count - 4, from + count - 4);
  } else {
    for (size_t at = 0; at < count; ++at) {
      to[at] = static_cast<To>(from[at]);
    }
  }
}

template <typename To, typename From>
size_t Start(To* to, const From* text, size_t most) {
  const size_t count = AsciiAtStart(text, most);
  if (to != nullptr) CopyAscii(to, text, count);
  return count;
}

}  // namespace

size_t WidenStart(ustring* to, const astring* text, size_t most) { return Start(to, text, most); }
size_t NarrowStart(astring* to, const ustring* text, size_t most) { return Start(to, text, most); }

#else

// The plain loops are those of transcode.cpp.
size_t WidenStart(ustring*, const astring*, size_t) { return 0; }
size_t NarrowStart(astring*, const ustring*, size_t) { return 0; }

#endif

}  // namespace qvx
