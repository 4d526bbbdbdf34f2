// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/xml_fill.h"

#include <cstring>

#include "text/code_point.h"
#include "text/wide.h"

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

#ifdef QVX_WIDE_LOADS

constexpr ptrdiff_t kBlock = 16;
constexpr ptrdiff_t kTurn = 4 * kBlock;

// Three compares find the five characters: & and ' differ in their lowest bit, < and > in the next.
struct Specials {
  __m128i ampersandOrApostrophe;
  __m128i angle;
  __m128i quote;

  explicit Specials(__m128i bytes)
      : ampersandOrApostrophe(
            _mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8(1)), _mm_set1_epi8('\''))),
        angle(_mm_cmpeq_epi8(_mm_or_si128(bytes, _mm_set1_epi8(2)), _mm_set1_epi8('>'))),
        quote(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('"'))) {}

  [[nodiscard]] __m128i Any() const {
    return _mm_or_si128(_mm_or_si128(ampersandOrApostrophe, angle), quote);
  }
  [[nodiscard]] u32 Mask() const { return static_cast<u32>(_mm_movemask_epi8(Any())); }
};

__m128i Load(const astring* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

#endif

}  // namespace

#ifdef QVX_WIDE_LOADS

static_assert(sizeof "&amp;" - 2 == 4 && sizeof "&apos;" - 2 == 5 && sizeof "&quot;" - 2 == 5 &&
              sizeof "&lt;" - 2 == 3);

namespace {

bool IsClean(const astring* turn) {
  const __m128i any =
      _mm_or_si128(_mm_or_si128(Specials(Load(turn)).Any(), Specials(Load(turn + kBlock)).Any()),
                   _mm_or_si128(Specials(Load(turn + 2 * kBlock)).Any(),
                                Specials(Load(turn + 3 * kBlock)).Any()));
  return _mm_movemask_epi8(any) == 0;
}

// How much longer a block becomes, as two sums of 64 bits.
__m128i GrowthOfBlock(const astring* block) {
  const __m128i bytes = Load(block);
  const Specials found(bytes);
  const __m128i four = _mm_add_epi8(_mm_set1_epi8(4), _mm_and_si128(bytes, _mm_set1_epi8(1)));
  const __m128i growth = _mm_or_si128(_mm_or_si128(_mm_and_si128(found.ampersandOrApostrophe, four),
                                                   _mm_and_si128(found.angle, _mm_set1_epi8(3))),
                                      _mm_and_si128(found.quote, _mm_set1_epi8(5)));
  return _mm_sad_epu8(growth, _mm_setzero_si128());
}

}  // namespace

u64 XmlGrowth(const astring* text, size_t length) {
  const astring* const end = text + length;
  __m128i sums = _mm_setzero_si128();
  // Most texts have hardly a special, and to look for one is faster than to measure.
  for (; end - text >= kTurn; text += kTurn) {
    if (IsClean(text)) continue;
    for (ptrdiff_t block = 0; block < kTurn; block += kBlock) {
      sums = _mm_add_epi64(sums, GrowthOfBlock(text + block));
    }
  }
  for (; end - text >= kBlock; text += kBlock) {
    sums = _mm_add_epi64(sums, GrowthOfBlock(text));
  }
  u64 halves[2];
  _mm_storeu_si128(reinterpret_cast<__m128i*>(halves), sums);
  return halves[0] + halves[1] + PlainGrowth(text, end);
}

// The result's end is known, so a block may be stored past a clean run: what follows replaces it.
void FillXml(astring* to, u64 growth, const astring* text, size_t length) {
  if (growth == 0) {
    memcpy(to, text, length);
    return;
  }
  const astring* const end = text + length;
  const astring* const toEnd = to + length + growth;
  while (end - text >= kBlock && toEnd - to >= kBlock) {
    const __m128i bytes = Load(text);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes);
    const u32 specials = Specials(bytes).Mask();
    if (specials == 0) {
      text += kBlock;
      to += kBlock;
      continue;
    }
    const int clean = __builtin_ctz(specials);
    text += clean;
    to += clean;
    const XmlEntity& entity = *FindXmlEntity(static_cast<u8>(*text++));
    if (toEnd - to < static_cast<ptrdiff_t>(sizeof(entity.text))) {
      memcpy(to, entity.text, entity.length);
    } else {
      memcpy(to, entity.text, sizeof(entity.text));
    }
    to += entity.length;
  }
  PlainFill(to, text, end);
}

#else

u64 XmlGrowth(const astring* text, size_t length) { return PlainGrowth(text, text + length); }

void FillXml(astring* to, u64, const astring* text, size_t length) {
  PlainFill(to, text, text + length);
}

#endif

}  // namespace qvx
