// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/wide_transcode.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "text/wide.h"
#include "text/wide_block.h"

namespace qvx {

#ifdef QVX_WIDE_LOADS

namespace {

// --- ASCII: every block of the result is full, so it is stored where it belongs. ---

size_t WidenAscii(ustring* to, const astring* from, size_t count) {
  size_t done = 0;
  for (; done + 4 * kBytes <= count; done += 4 * kBytes) {
    const __m128i block[] = {Load(from + done), Load(from + done + kBytes),
                             Load(from + done + 2 * kBytes), Load(from + done + 3 * kBytes)};
    const __m128i any =
        _mm_or_si128(_mm_or_si128(block[0], block[1]), _mm_or_si128(block[2], block[3]));
    if (Mask(any) != 0) break;
    for (size_t at = 0; to != nullptr && at < 4; ++at) {
      WidenAsciiBlock(to + done + at * kBytes, block[at]);
    }
  }
  for (; done + kBytes <= count; done += kBytes) {
    const __m128i bytes = Load(from + done);
    if (Mask(bytes) != 0) break;
    if (to != nullptr) WidenAsciiBlock(to + done, bytes);
  }
  // The rest with the last block's end once more: the same units are stored again.
  if (done != 0 && done < count && count - done < kBytes) {
    const __m128i bytes = Load(from + count - kBytes);
    if (Mask(bytes) != 0) return done;
    if (to != nullptr) WidenAsciiBlock(to + count - kBytes, bytes);
    done = count;
  }
  return done;
}

bool IsAscii(__m128i units) {
  const __m128i high = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
  return Mask(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF;
}

size_t NarrowAscii(astring* to, const ustring* from, size_t count) {
  size_t done = 0;
  for (; done + 4 * kUnits <= count; done += 4 * kUnits) {
    const __m128i block[] = {Load(from + done), Load(from + done + kUnits),
                             Load(from + done + 2 * kUnits), Load(from + done + 3 * kUnits)};
    if (!IsAscii(
            _mm_or_si128(_mm_or_si128(block[0], block[1]), _mm_or_si128(block[2], block[3])))) {
      break;
    }
    if (to == nullptr) continue;
    Store(to + done, _mm_packus_epi16(block[0], block[1]));
    Store(to + done + kBytes, _mm_packus_epi16(block[2], block[3]));
  }
  for (; done + kUnits <= count; done += kUnits) {
    const __m128i units = Load(from + done);
    if (!IsAscii(units)) break;
    if (to != nullptr) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(to + done), _mm_packus_epi16(units, units));
    }
  }
  if (done != 0 && done < count && count - done < kUnits) {
    const __m128i units = Load(from + count - kUnits);
    if (!IsAscii(units)) return done;
    if (to != nullptr) {
      _mm_storel_epi64(reinterpret_cast<__m128i*>(to + count - kUnits),
                       _mm_packus_epi16(units, units));
    }
    done = count;
  }
  return done;
}

#ifdef QVX_WIDE_SHUFFLE

#define QVX_SHUFFLES __attribute__((target("ssse3,popcnt")))

// --- One and two bytes: results are shorter than their blocks. They are collected in a separate
// piece, so that nothing is stored past the run. ---

constexpr size_t kPiece = 256;  // elements

using Indices = std::array<u8, 8>;

// For each mask of a block's half: the places of its set bits, first to last, plus 1.
constexpr auto kPlaces = [] {
  std::array<Indices, 256> places{};
  for (u32 mask = 0; mask < 256; ++mask) {
    size_t count = 0;
    for (u8 bit = 0; bit < 8; ++bit) {
      if ((mask >> bit & 1) != 0) places[mask][count++] = static_cast<u8>(bit + 1);
    }
  }
  return places;
}();

// The units of the characters that end at a mask's places, 1 to 8, of `bytes`.
QVX_SHUFFLES __m128i LatinUnits(__m128i bytes, u32 ends) {
  const __m128i last = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(kPlaces[ends].data()));
  const __m128i before = _mm_sub_epi8(last, _mm_set1_epi8(1));
  // Each lane: a character's last byte below the byte before it.
  const __m128i lanes = _mm_shuffle_epi8(bytes, _mm_unpacklo_epi8(last, before));
  const __m128i isSecond = _mm_srai_epi16(_mm_slli_epi16(lanes, 8), 15);
  const __m128i high = _mm_and_si128(_mm_srli_epi16(lanes, 2), _mm_set1_epi16(0x7C0));
  return _mm_or_si128(_mm_and_si128(lanes, _mm_set1_epi16(0x7F)), _mm_and_si128(high, isSecond));
}

struct LatinBlock {
  u32 ends;    // a bit for each byte that ends a character
  u32 length;  // bytes of whole characters; 0 for other text, and for ASCII alone
};

QVX_SHUFFLES LatinBlock LookForLatin(__m128i bytes) {
  const __m128i leads = _mm_cmpeq_epi8(_mm_and_si128(bytes, _mm_set1_epi8(static_cast<char>(0xE0))),
                                       _mm_set1_epi8(static_cast<char>(0xC0)));
  const __m128i seconds =
      _mm_cmpeq_epi8(_mm_and_si128(bytes, _mm_set1_epi8(static_cast<char>(0xC0))),
                     _mm_set1_epi8(static_cast<char>(0x80)));
  const u32 leadMask = Mask(leads);
  const u32 secondMask = Mask(seconds);
  if (leadMask == 0 || secondMask != (leadMask << 1 & 0xFFFF)) return {0, 0};
  if (Mask(bytes) != (leadMask | secondMask)) return {0, 0};
  const u32 length = kBytes - (leadMask >> 15);
  return {~leadMask & 0xFFFF, length};
}

QVX_SHUFFLES Run WidenLatin(ustring* to, size_t room, const astring* from, size_t count) {
  ustring piece[kPiece + kUnits];
  size_t gathered = 0;
  Run run;
  while (run.read + kBytes <= count) {
    const __m128i bytes = Load(from + run.read);
    const LatinBlock block = LookForLatin(bytes);
    if (block.length == 0) break;
    const u32 ends = block.ends;
    if (run.written + gathered + static_cast<u32>(__builtin_popcount(ends)) > room) break;
    if (to != nullptr) {
      Store(piece + gathered, LatinUnits(_mm_slli_si128(bytes, 1), ends & 0xFF));
      gathered += static_cast<u32>(__builtin_popcount(ends & 0xFF));
      Store(piece + gathered, LatinUnits(_mm_srli_si128(bytes, 7), ends >> 8));
      gathered += static_cast<u32>(__builtin_popcount(ends >> 8));
      if (gathered > kPiece - kBytes) {
        memcpy(to + run.written, piece, gathered * sizeof(ustring));
        run.written += gathered;
        gathered = 0;
      }
    } else {
      run.written += static_cast<u32>(__builtin_popcount(ends));
    }
    run.read += block.length;
  }
  if (gathered != 0) memcpy(to + run.written, piece, gathered * sizeof(ustring));
  run.written += gathered;
  return run;
}

// For each mask of the one-byte characters among eight: their bytes, and both of the others.
constexpr auto kPacks = [] {
  std::array<std::array<u8, kBytes>, 256> packs{};
  for (u32 mask = 0; mask < 256; ++mask) {
    size_t count = 0;
    for (u32 unit = 0; unit < kUnits; ++unit) {
      packs[mask][count++] = static_cast<u8>(2 * unit);
      if ((mask >> unit & 1) == 0) packs[mask][count++] = static_cast<u8>(2 * unit + 1);
    }
    while (count < kBytes) {
      packs[mask][count++] = 0x80;
    }
  }
  return packs;
}();

QVX_SHUFFLES Run NarrowLatin(astring* to, size_t room, const ustring* from, size_t count) {
  astring piece[kPiece + kBytes];
  size_t gathered = 0;
  Run run;
  for (; run.read + kUnits <= count; run.read += kUnits) {
    const __m128i units = Load(from + run.read);
    const __m128i beyond = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xF800)));
    if (Mask(_mm_cmpeq_epi16(beyond, _mm_setzero_si128())) != 0xFFFF) break;
    const __m128i isOne = _mm_cmplt_epi16(units, _mm_set1_epi16(0x80));
    const u32 ones = Mask(_mm_packs_epi16(isOne, _mm_setzero_si128()));
    if (ones == 0xFF) break;  // ASCII has a faster loop
    const u32 length = kBytes - static_cast<u32>(__builtin_popcount(ones));
    if (run.written + gathered + length > room) break;
    if (to == nullptr) {
      run.written += length;
      continue;
    }
    const __m128i lead = _mm_or_si128(_mm_srli_epi16(units, 6), _mm_set1_epi16(0xC0));
    const __m128i second =
        _mm_or_si128(_mm_slli_epi16(_mm_and_si128(units, _mm_set1_epi16(0x3F)), 8),
                     _mm_set1_epi16(static_cast<short>(0x8000)));
    const __m128i two = _mm_or_si128(lead, second);
    const __m128i lanes = _mm_or_si128(_mm_and_si128(isOne, units), _mm_andnot_si128(isOne, two));
    Store(piece + gathered, _mm_shuffle_epi8(lanes, Load(kPacks[ones].data())));
    gathered += length;
    if (gathered > kPiece - kBytes) {
      memcpy(to + run.written, piece, gathered);
      run.written += gathered;
      gathered = 0;
    }
  }
  if (gathered != 0) memcpy(to + run.written, piece, gathered);
  run.written += gathered;
  return run;
}

// --- Three bytes: 24 bytes are eight units, and full blocks again. ---

// For a byte's place modulo 3: the bits that are the same in all such characters. Three times the
// pattern: a block of 16 bytes begins at any of its places.
constexpr auto Repeated(u8 lead, u8 rest) {
  std::array<u8, kBytes + 2> bytes{};
  for (size_t at = 0; at < bytes.size(); ++at) {
    bytes[at] = at % 3 == 0 ? lead : rest;
  }
  return bytes;
}
constexpr auto kFixedBits = Repeated(0xF0, 0xC0);
constexpr auto kFixedValues = Repeated(0xE0, 0x80);

// 0 in each byte that is in its place in a run of such characters, `at` bytes after the run's
// start.
__m128i Misplaced(const astring* from, size_t at) {
  const __m128i fixed = _mm_and_si128(Load(from + at), Load(kFixedBits.data() + at % 3));
  return _mm_xor_si128(fixed, Load(kFixedValues.data() + at % 3));
}

bool IsZero(__m128i block) { return Mask(_mm_cmpeq_epi8(block, _mm_setzero_si128())) == 0xFFFF; }

// How many such characters `from` begins with; may miss some before another one.
size_t CountThreeBytes(const astring* from, size_t count) {
  const size_t bytes = count - count % 3;
  if (bytes < kBytes) return 0;
  size_t done = 0;
  for (; done + 3 * kBytes <= bytes; done += 3 * kBytes) {
    const __m128i first = Misplaced(from + done, 0);
    const __m128i both = _mm_or_si128(first, Misplaced(from + done, kBytes));
    if (!IsZero(_mm_or_si128(both, Misplaced(from + done, 2 * kBytes)))) break;
  }
  while (done < bytes) {
    const size_t at = std::min(done, bytes - kBytes);
    if (!IsZero(Misplaced(from, at))) break;
    done = at + kBytes;
  }
  return done / 3;
}

// The last block's beginning may be characters that are there already.
QVX_SHUFFLES size_t WidenThreeBytes(ustring* to, const astring* from, size_t characters) {
  constexpr char kNone = static_cast<char>(0x80);
  // Of each character the last two bytes, last first, and the lead in the upper byte. The first
  // four come from the first 16 bytes, the others from those that begin at byte 8.
  const __m128i restLow = _mm_setr_epi8(2, 1, 5, 4, 8, 7, 11, 10, kNone, kNone, kNone, kNone, kNone,
                                        kNone, kNone, kNone);
  const __m128i restHigh = _mm_setr_epi8(kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone, 6,
                                         5, 9, 8, 12, 11, 15, 14);
  const __m128i leadLow = _mm_setr_epi8(kNone, 0, kNone, 3, kNone, 6, kNone, 9, kNone, kNone, kNone,
                                        kNone, kNone, kNone, kNone, kNone);
  const __m128i leadHigh = _mm_setr_epi8(kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone,
                                         kNone, 4, kNone, 7, kNone, 10, kNone, 13);
  if (characters < kUnits) return 0;
  size_t done = 0;
  while (done < characters) {
    const size_t at = std::min(done, characters - kUnits);
    const __m128i low = Load(from + at * 3);
    const __m128i high = Load(from + at * 3 + 8);
    const __m128i rest =
        _mm_or_si128(_mm_shuffle_epi8(low, restLow), _mm_shuffle_epi8(high, restHigh));
    const __m128i lead =
        _mm_or_si128(_mm_shuffle_epi8(low, leadLow), _mm_shuffle_epi8(high, leadHigh));
    const __m128i restMarks = _mm_and_si128(rest, _mm_set1_epi8(static_cast<char>(0xC0)));
    const __m128i leadMarks = _mm_and_si128(lead, _mm_set1_epi16(static_cast<short>(0xF000)));
    const __m128i wellFormed =
        _mm_and_si128(_mm_cmpeq_epi8(restMarks, _mm_set1_epi8(kNone)),
                      _mm_cmpeq_epi16(leadMarks, _mm_set1_epi16(static_cast<short>(0xE000))));
    if (Mask(wellFormed) != 0xFFFF) break;
    const __m128i payload = _mm_and_si128(rest, _mm_set1_epi8(0x3F));
    const __m128i lower = _mm_maddubs_epi16(payload, _mm_set1_epi16(0x4001));  // last + 64 * middle
    Store(to + at, _mm_or_si128(lower, _mm_slli_epi16(lead, 4)));
    done = at + kUnits;
  }
  return done;
}

QVX_SHUFFLES size_t NarrowThreeBytes(astring* to, const ustring* from, size_t count) {
  if (count < kUnits) return 0;
  constexpr char kNone = static_cast<char>(0x80);
  // The first two bytes of a character are in one block, the third ones in another.
  const __m128i firstsLow =
      _mm_setr_epi8(0, 1, kNone, 2, 3, kNone, 4, 5, kNone, 6, 7, kNone, 8, 9, kNone, 10);
  const __m128i thirdsLow = _mm_setr_epi8(kNone, kNone, 0, kNone, kNone, 2, kNone, kNone, 4, kNone,
                                          kNone, 6, kNone, kNone, 8, kNone);
  const __m128i firstsHigh = _mm_setr_epi8(11, kNone, 12, 13, kNone, 14, 15, kNone, kNone, kNone,
                                           kNone, kNone, kNone, kNone, kNone, kNone);
  const __m128i thirdsHigh = _mm_setr_epi8(kNone, 10, kNone, kNone, 12, kNone, kNone, 14, kNone,
                                           kNone, kNone, kNone, kNone, kNone, kNone, kNone);
  const __m128i high5 = _mm_set1_epi16(static_cast<short>(0xF800));
  const __m128i surrogate = _mm_set1_epi16(static_cast<short>(0xD800));
  size_t done = 0;
  while (done < count) {
    const size_t at = std::min(done, count - kUnits);
    const __m128i units = Load(from + at);
    const __m128i upper = _mm_and_si128(units, high5);
    const __m128i other = _mm_or_si128(_mm_cmpeq_epi16(upper, _mm_setzero_si128()),
                                       _mm_cmpeq_epi16(upper, surrogate));
    if (Mask(other) != 0) break;
    done = at + kUnits;
    if (to == nullptr) continue;
    const __m128i middle = _mm_and_si128(_mm_slli_epi16(units, 2), _mm_set1_epi16(0x3F00));
    const __m128i firsts = _mm_or_si128(_mm_or_si128(_mm_srli_epi16(units, 12), middle),
                                        _mm_set1_epi16(static_cast<short>(0x80E0)));
    const __m128i thirds =
        _mm_or_si128(_mm_and_si128(units, _mm_set1_epi16(0x3F)), _mm_set1_epi16(0x80));
    Store(to + at * 3,
          _mm_or_si128(_mm_shuffle_epi8(firsts, firstsLow), _mm_shuffle_epi8(thirds, thirdsLow)));
    _mm_storel_epi64(
        reinterpret_cast<__m128i*>(to + at * 3 + kBytes),
        _mm_or_si128(_mm_shuffle_epi8(firsts, firstsHigh), _mm_shuffle_epi8(thirds, thirdsHigh)));
  }
  return done;
}

#endif  // QVX_WIDE_SHUFFLE

}  // namespace

// What the first character is decides which loop is tried.

Run WidenRun(ustring* to, size_t room, const astring* from, size_t count) {
  if (count < kBytes || room < kUnits) return {};
  const auto first = static_cast<u8>(*from);
  if (first < 0x80) {
    if (const size_t ascii = WidenAscii(to, from, std::min(count, room))) return {ascii, ascii};
  }
  if (first >= 0xE0 && to == nullptr) {
    const size_t units = CountThreeBytes(from, count);
    return {units * 3, units};
  }
  if (!ProcessorHas(kByteShuffle)) return {};
  if (first < 0xE0) return WidenLatin(to, room, from, count);
  const size_t units = WidenThreeBytes(to, from, std::min(count / 3, room));
  return {units * 3, units};
}

Run NarrowRun(astring* to, size_t room, const ustring* from, size_t count) {
  if (count < kUnits || room < kUnits) return {};
  if (*from < 0x80) {
    if (const size_t ascii = NarrowAscii(to, from, std::min(count, room))) return {ascii, ascii};
  }
  if (!ProcessorHas(kByteShuffle)) return {};
  if (*from < 0x800) return NarrowLatin(to, room, from, count);
  const size_t units = NarrowThreeBytes(to, from, std::min(count, room / 3));
  return {units, units * 3};
}

#else

// The plain loops are those of transcode.cpp.
Run WidenRun(ustring*, size_t, const astring*, size_t) { return {}; }
Run NarrowRun(astring*, size_t, const ustring*, size_t) { return {}; }

#endif

}  // namespace qvx
