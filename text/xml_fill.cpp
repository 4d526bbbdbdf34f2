// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/xml_fill.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "text/code_point.h"
#include "text/wide_block.h"

namespace qvx {
namespace {

u32 GrowthOf(astring character) {
  const XmlEntity* const entity = FindXmlEntity(static_cast<u8>(character));
  return entity == nullptr ? 0 : entity->length - 1;
}

// The plain loops, which define the others.

u64 PlainGrowth(const astring* text, const astring* end) {
  u64 growth = 0;
  for (; text != end; ++text) {
    growth += GrowthOf(*text);
  }
  return growth;
}

void PlainFill(astring* to, const astring* text, const astring* end) {
  for (; text != end; ++text) {
    const XmlEntity* const entity = FindXmlEntity(static_cast<u8>(*text));
    if (entity == nullptr) {
      *to++ = *text;
    } else {
      memcpy(to, entity->text, entity->length);
      to += entity->length;
    }
  }
}

#ifdef QVX_WIDE_SHUFFLE

#define QVX_SHUFFLES __attribute__((target("ssse3")))

constexpr ptrdiff_t kBlock = static_cast<ptrdiff_t>(kBytes);

// The table's characters differ in their lower four bits, which a shuffle looks up.
using ByLowerBits = std::array<u8, kBytes>;

// The character with these bits; for other bits one that does not have them.
constexpr ByLowerBits kSpecialOf = [] {
  ByLowerBits specials{};
  specials[0] = 1;
  for (const XmlEntity& entity : kXmlEntities) {
    specials[entity.character & 0xF] = static_cast<u8>(entity.character);
  }
  return specials;
}();

// How much longer the text becomes by it.
constexpr ByLowerBits kGrowthOf = [] {
  ByLowerBits growth{};
  for (const XmlEntity& entity : kXmlEntities) {
    growth[entity.character & 0xF] = static_cast<u8>(entity.length - 1);
  }
  return growth;
}();

// All bits set for each special of a block. The shuffle gives 0 for bytes beyond ASCII.
QVX_SHUFFLES __m128i Specials(__m128i bytes) {
  return _mm_cmpeq_epi8(_mm_shuffle_epi8(Load(kSpecialOf.data()), bytes), bytes);
}

// At most this many blocks grow by less than 256 in each of their bytes.
constexpr ptrdiff_t kBlocksOfSum = 255 / 5;

// How much longer whole blocks become.
QVX_SHUFFLES u64 GrowthOfBlocks(const astring* text, const astring* end) {
  __m128i sums = _mm_setzero_si128();
  while (text != end) {
    __m128i growth = _mm_setzero_si128();
    const astring* const stop = text + std::min(end - text, kBlocksOfSum * kBlock);
    for (; text != stop; text += kBlock) {
      const __m128i bytes = Load(text);
      const __m128i each = _mm_shuffle_epi8(Load(kGrowthOf.data()), bytes);
      growth = _mm_add_epi8(growth, _mm_and_si128(Specials(bytes), each));
    }
    sums = _mm_add_epi64(sums, _mm_sad_epu8(growth, _mm_setzero_si128()));
  }
  u64 halves[2];
  Store(halves, sums);
  return halves[0] + halves[1];
}

struct Filled {
  astring* to;
  const astring* text;
};

// A store may go past its piece: each character that is left becomes one byte or more, so it stays
// within the result while another block is left, and what follows replaces it.
QVX_SHUFFLES Filled FillBlocks(astring* to, const astring* text, const astring* end) {
  while (end - text >= 2 * kBlock) {
    const __m128i bytes = Load(text);
    Store(to, bytes);
    const astring* piece = text;
    for (u32 specials = Mask(Specials(bytes)); specials != 0; specials &= specials - 1) {
      const astring* const special = text + __builtin_ctz(specials);
      Store(to, Load(piece));
      to += special - piece;
      const XmlEntity& entity = *FindXmlEntity(static_cast<u8>(*special));
      memcpy(to, entity.text, sizeof(entity.text));
      to += entity.length;
      piece = special + 1;
    }
    text += kBlock;
    if (piece != text - kBlock) Store(to, Load(piece));
    to += text - piece;
  }
  return {to, text};
}

#endif

}  // namespace

u64 XmlGrowth(const astring* text, size_t length) {
  const astring* const end = text + length;
#ifdef QVX_WIDE_SHUFFLE
  if (ProcessorHas(kByteShuffle)) {
    const astring* const blocks = text + length / kBytes * kBytes;
    return GrowthOfBlocks(text, blocks) + PlainGrowth(blocks, end);
  }
#endif
  return PlainGrowth(text, end);
}

void FillXml(astring* to, u64 growth, const astring* text, size_t length) {
  if (growth == 0) {
    memcpy(to, text, length);
    return;
  }
  const astring* const end = text + length;
#ifdef QVX_WIDE_SHUFFLE
  if (ProcessorHas(kByteShuffle)) {
    const Filled filled = FillBlocks(to, text, end);
    to = filled.to;
    text = filled.text;
  }
#endif
  PlainFill(to, text, end);
}

}  // namespace qvx
