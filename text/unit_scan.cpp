// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/unit_scan.h"

#include <algorithm>
#include <cstdint>

#include "text/wide.h"

namespace qvx {

#ifdef QVX_WIDE_PAGES

namespace {

constexpr size_t kBlock = 16;  // bytes of a load
constexpr size_t kBlockUnits = kBlock / sizeof(ustring);
constexpr size_t kTurn = 4 * kBlock;
constexpr size_t kPage = 4096;  // no machine has smaller ones

__m128i LoadAligned(const u8* from) {
  return _mm_load_si128(reinterpret_cast<const __m128i*>(from));
}
__m128i LoadAny(const ustring* from) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
}

// Two bits for each unit of the block that is 0 or `unit`.
template <bool kSeeksUnit>
u32 Hits(__m128i block, __m128i unit) {
  __m128i hits = _mm_cmpeq_epi16(block, _mm_setzero_si128());
  if constexpr (kSeeksUnit) hits = _mm_or_si128(hits, _mm_cmpeq_epi16(block, unit));
  return static_cast<u32>(_mm_movemask_epi8(hits));
}

// Whether one of four blocks has a hit.
template <bool kSeeksUnit>
bool TurnHasHit(const u8* at, __m128i unit) {
  __m128i any = _mm_setzero_si128();
  for (size_t block = 0; block < 4; ++block) {
    const __m128i loaded = LoadAligned(at + block * kBlock);
    any = _mm_or_si128(any, _mm_cmpeq_epi16(loaded, _mm_setzero_si128()));
    if constexpr (kSeeksUnit) any = _mm_or_si128(any, _mm_cmpeq_epi16(loaded, unit));
  }
  return _mm_movemask_epi8(any) != 0;
}

// The first terminator, or with kSeeksUnit the first `unit` before it; `stop`, or a place after it,
// where neither comes before. The text is at an even address: units are whole in aligned blocks.
template <bool kSeeksUnit>
const ustring* FindAligned(const ustring* text, ustring unit, const ustring* stop) {
  const __m128i wanted = _mm_set1_epi16(static_cast<short>(unit));
  const auto address = reinterpret_cast<uintptr_t>(text);
  const u8* at = reinterpret_cast<const u8*>(address & ~(kBlock - 1));
  const u8* const last = reinterpret_cast<const u8*>(stop);
  u32 hits = Hits<kSeeksUnit>(LoadAligned(at), wanted) >> (address % kBlock);
  if (hits != 0) return text + static_cast<u32>(__builtin_ctz(hits)) / 2;
  at += kBlock;
  while (reinterpret_cast<uintptr_t>(at) % kTurn != 0) {
    if (at >= last) return stop;
    hits = Hits<kSeeksUnit>(LoadAligned(at), wanted);
    if (hits != 0) return reinterpret_cast<const ustring*>(at + __builtin_ctz(hits));
    at += kBlock;
  }
  for (; at < last && !TurnHasHit<kSeeksUnit>(at, wanted);) {
    at += kTurn;
  }
  for (; at < last; at += kBlock) {
    hits = Hits<kSeeksUnit>(LoadAligned(at), wanted);
    if (hits != 0) return reinterpret_cast<const ustring*>(at + __builtin_ctz(hits));
  }
  return stop;
}

// A place that no text reaches.
const ustring* Never() { return reinterpret_cast<const ustring*>(UINTPTR_MAX); }

bool IsEven(const ustring* text) { return reinterpret_cast<uintptr_t>(text) % 2 == 0; }

// Whole blocks before the end of the page.
size_t BlocksInPage(const ustring* text) {
  return (kPage - reinterpret_cast<uintptr_t>(text) % kPage) / kBlock;
}

// All bits set for each unit that both texts have and that is no terminator.
__m128i GoesOn(const ustring* first, const ustring* second) {
  const __m128i block = LoadAny(first);
  const __m128i end = _mm_cmpeq_epi16(block, _mm_setzero_si128());
  return _mm_andnot_si128(end, _mm_cmpeq_epi16(block, LoadAny(second)));
}

}  // namespace

u64 UnitCount(const ustring* text) {
  if (IsEven(text)) return static_cast<u64>(FindAligned<false>(text, 0, Never()) - text);
  const ustring* end = text;
  while (*end != 0) {
    ++end;
  }
  return static_cast<u64>(end - text);
}

size_t UnitCountWithin(const ustring* text, size_t limit) {
  if (IsEven(text) && limit != 0) {
    const ustring* const end = FindAligned<false>(text, 0, text + limit);
    return std::min(static_cast<size_t>(end - text), limit);
  }
  size_t count = 0;
  while (count < limit && text[count] != 0) {
    ++count;
  }
  return count;
}

const ustring* FindUnitOrEnd(const ustring* text, ustring unit) {
  if (IsEven(text)) return FindAligned<true>(text, unit, Never());
  while (*text != unit && *text != 0) {
    ++text;
  }
  return text;
}

size_t EqualUnits(const ustring* first, const ustring* second) {
  for (size_t at = 0;;) {
    size_t blocks = std::min(BlocksInPage(first + at), BlocksInPage(second + at));
    for (; blocks >= 4; blocks -= 4, at += 4 * kBlockUnits) {
      const __m128i goesOn = _mm_and_si128(
          _mm_and_si128(GoesOn(first + at, second + at),
                        GoesOn(first + at + kBlockUnits, second + at + kBlockUnits)),
          _mm_and_si128(GoesOn(first + at + 2 * kBlockUnits, second + at + 2 * kBlockUnits),
                        GoesOn(first + at + 3 * kBlockUnits, second + at + 3 * kBlockUnits)));
      if (_mm_movemask_epi8(goesOn) != 0xFFFF) break;
    }
    for (; blocks != 0; --blocks, at += kBlockUnits) {
      const auto goesOn = static_cast<u32>(_mm_movemask_epi8(GoesOn(first + at, second + at)));
      if (goesOn != 0xFFFF) return at + static_cast<u32>(__builtin_ctz(~goesOn)) / 2;
    }
    // One of the texts comes to the end of a page: unit by unit into the next.
    while (std::min(BlocksInPage(first + at), BlocksInPage(second + at)) == 0) {
      if (first[at] != second[at] || first[at] == 0) return at;
      ++at;
    }
  }
}

#else  // the plain loops, which define the others

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
