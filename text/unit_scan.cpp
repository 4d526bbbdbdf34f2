// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/unit_scan.h"

#include <algorithm>
#include <cstdint>

#include "text/wide.h"

namespace qvx {

// The loops that define the others.
namespace plain {
namespace {

u64 UnitCount(const ustring* text) {
  const ustring* end = text;
  while (*end != 0) {
    ++end;
  }
  return static_cast<u64>(end - text);
}

size_t UnitCountWithin(const ustring* text, size_t limit) {
  size_t count = 0;
  while (count < limit && text[count] != 0) {
    ++count;
  }
  return count;
}

const ustring* FindUnitOrEnd(const ustring* text, ustring unit) {
  while (*text != unit && *text != 0) {
    ++text;
  }
  return text;
}

size_t EqualUnits(const ustring* first, const ustring* second) {
  size_t at = 0;
  while (first[at] == second[at] && first[at] != 0) {
    ++at;
  }
  return at;
}

}  // namespace
}  // namespace plain

#ifdef QVX_WIDE_PAGES

namespace {

constexpr size_t kPage = 4096;  // no machine has smaller ones

// A place that no text reaches.
const ustring* Never() { return reinterpret_cast<const ustring*>(UINTPTR_MAX); }

// Aligned blocks hold whole units of texts at even addresses alone.
bool MayPassEnd(const ustring* text) {
  return reinterpret_cast<uintptr_t>(text) % sizeof(ustring) == 0 && ProcessorHas(kBaseline);
}

namespace narrow {

#define QVX_TARGET
using Block = __m128i;
template <typename Element>
Block Load(const Element* from) {
  return _mm_loadu_si128(reinterpret_cast<const Block*>(from));
}
Block Zero() { return _mm_setzero_si128(); }
Block Filled(ustring unit) { return _mm_set1_epi16(static_cast<short>(unit)); }
Block Equal(Block one, Block other) { return _mm_cmpeq_epi16(one, other); }
Block Or(Block one, Block other) { return _mm_or_si128(one, other); }
Block And(Block one, Block other) { return _mm_and_si128(one, other); }
Block AndNot(Block one, Block other) { return _mm_andnot_si128(one, other); }
u32 Mask(Block block) { return static_cast<u32>(_mm_movemask_epi8(block)); }
#include "text/unit_scan_loops.h"
#undef QVX_TARGET

}  // namespace narrow

namespace wide {

#define QVX_TARGET __attribute__((target("avx2")))
using Block = __m256i;
template <typename Element>
QVX_TARGET Block Load(const Element* from) {
  return _mm256_loadu_si256(reinterpret_cast<const Block*>(from));
}
QVX_TARGET Block Zero() { return _mm256_setzero_si256(); }
QVX_TARGET Block Filled(ustring unit) { return _mm256_set1_epi16(static_cast<short>(unit)); }
QVX_TARGET Block Equal(Block one, Block other) { return _mm256_cmpeq_epi16(one, other); }
QVX_TARGET Block Or(Block one, Block other) { return _mm256_or_si256(one, other); }
QVX_TARGET Block And(Block one, Block other) { return _mm256_and_si256(one, other); }
QVX_TARGET Block AndNot(Block one, Block other) { return _mm256_andnot_si256(one, other); }
QVX_TARGET u32 Mask(Block block) { return static_cast<u32>(_mm256_movemask_epi8(block)); }
#include "text/unit_scan_loops.h"
#undef QVX_TARGET

}  // namespace wide

template <bool kSeeksUnit>
const ustring* Find(const ustring* text, ustring unit, const ustring* stop) {
  return ProcessorHas(kWideBlocks) ? wide::FindAligned<kSeeksUnit>(text, unit, stop)
                                   : narrow::FindAligned<kSeeksUnit>(text, unit, stop);
}

}  // namespace

u64 UnitCount(const ustring* text) {
  if (!MayPassEnd(text)) return plain::UnitCount(text);
  return static_cast<u64>(Find<false>(text, 0, Never()) - text);
}

size_t UnitCountWithin(const ustring* text, size_t limit) {
  if (!MayPassEnd(text) || limit == 0) return plain::UnitCountWithin(text, limit);
  const ustring* const end = Find<false>(text, 0, text + limit);
  return std::min(static_cast<size_t>(end - text), limit);
}

const ustring* FindUnitOrEnd(const ustring* text, ustring unit) {
  return MayPassEnd(text) ? Find<true>(text, unit, Never()) : plain::FindUnitOrEnd(text, unit);
}

size_t EqualUnits(const ustring* first, const ustring* second) {
  if (ProcessorHas(kWideBlocks)) return wide::EqualInBlocks(first, second);
  return ProcessorHas(kBaseline) ? narrow::EqualInBlocks(first, second)
                                 : plain::EqualUnits(first, second);
}

#else

u64 UnitCount(const ustring* text) { return plain::UnitCount(text); }

size_t UnitCountWithin(const ustring* text, size_t limit) {
  return plain::UnitCountWithin(text, limit);
}

const ustring* FindUnitOrEnd(const ustring* text, ustring unit) {
  return plain::FindUnitOrEnd(text, unit);
}

size_t EqualUnits(const ustring* first, const ustring* second) {
  return plain::EqualUnits(first, second);
}

#endif

namespace {

// The pattern's greatest suffix in the order of units, or in the reverse order, and its period.
struct Suffix {
  size_t at;
  size_t period;
};

Suffix GreatestSuffix(const ustring* pattern, size_t length, bool reverse) {
  size_t start = 0;  // of the greatest suffix so far
  size_t candidate = 1;
  size_t matched = 0;
  size_t period = 1;
  while (candidate + matched < length) {
    const ustring one = pattern[candidate + matched];
    const ustring other = pattern[start + matched];
    if (one == other) {
      if (++matched == period) {
        candidate += period;
        matched = 0;
      }
    } else if ((one < other) != reverse) {
      candidate += matched + 1;
      matched = 0;
      period = candidate - start;
    } else {
      start = candidate++;
      matched = 0;
      period = 1;
    }
  }
  return {start, period};
}

// Where the pattern is cut in two: the later of both suffixes.
Suffix CriticalCut(const ustring* pattern, size_t length) {
  const Suffix forward = GreatestSuffix(pattern, length, false);
  const Suffix backward = GreatestSuffix(pattern, length, true);
  return forward.at > backward.at ? forward : backward;
}

bool SameUnits(const ustring* first, const ustring* second, size_t count) {
  for (size_t at = 0; at < count; ++at) {
    if (first[at] != second[at]) return false;
  }
  return true;
}

}  // namespace

// The two-way search of Crochemore and Perrin: the pattern's right part is compared forwards, then
// its left part backwards; a difference moves the pattern far enough that no unit is compared more
// than a few times.
const ustring* FindUnits(const ustring* text, size_t textLength, const ustring* pattern,
                         size_t patternLength) {
  if (patternLength == 0) return text;
  if (patternLength > textLength) return nullptr;
  const Suffix cut = CriticalCut(pattern, patternLength);
  const bool repeats =
      cut.at + cut.period <= patternLength && SameUnits(pattern, pattern + cut.period, cut.at);
  const size_t rest = patternLength - cut.at;
  const size_t shift = repeats ? cut.period : (cut.at > rest ? cut.at : rest) + 1;
  size_t known = 0;  // leading units that agree already, in a pattern that repeats
  for (size_t at = 0; at <= textLength - patternLength;) {
    size_t right = cut.at > known ? cut.at : known;
    while (right < patternLength && pattern[right] == text[at + right]) {
      ++right;
    }
    if (right < patternLength) {
      at += right - cut.at + 1;
      known = 0;
      continue;
    }
    size_t left = cut.at;
    while (left > known && pattern[left - 1] == text[at + left - 1]) {
      --left;
    }
    if (left <= known) return text + at;
    at += shift;
    known = repeats ? patternLength - cut.period : 0;
  }
  return nullptr;
}

}  // namespace qvx
