// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The loops of unit_scan.cpp over blocks. That file includes this one once for each size of block,
// inside a namespace with Block and its operations, and with QVX_TARGET, the instructions to use.

constexpr size_t kBlock = sizeof(Block);
constexpr size_t kBlockUnits = kBlock / sizeof(ustring);
constexpr size_t kTurn = 4 * kBlock;
constexpr u32 kAllUnits = 0xFFFFFFFF >> (32 - kBlock);  // the mask of a block

// All bits set for each unit of the block that is 0 or `unit`.
template <bool kSeeksUnit>
QVX_TARGET Block Sought(const u8* at, Block unit) {
  const Block block = Load(at);
  const Block ends = Equal(block, Zero());
  if constexpr (kSeeksUnit) return Or(ends, Equal(block, unit));
  return ends;
}

// Two bits for each such unit.
template <bool kSeeksUnit>
QVX_TARGET u32 Hits(const u8* at, Block unit) {
  return Mask(Sought<kSeeksUnit>(at, unit));
}

// Whether one of four blocks has a hit.
template <bool kSeeksUnit>
QVX_TARGET bool TurnHasHit(const u8* at, Block unit) {
  const Block front = Or(Sought<kSeeksUnit>(at, unit), Sought<kSeeksUnit>(at + kBlock, unit));
  const Block back =
      Or(Sought<kSeeksUnit>(at + 2 * kBlock, unit), Sought<kSeeksUnit>(at + 3 * kBlock, unit));
  return Mask(Or(front, back)) != 0;
}

// The first terminator, or with kSeeksUnit the first `unit` before it; `stop`, or a place after it,
// where neither comes before. The text is at an even address: units are whole in aligned blocks.
template <bool kSeeksUnit>
QVX_TARGET const ustring* FindAligned(const ustring* text, ustring unit, const ustring* stop) {
  const Block wanted = Filled(unit);
  const auto address = reinterpret_cast<uintptr_t>(text);
  const u8* at = reinterpret_cast<const u8*>(address & ~(kBlock - 1));
  const u8* const last = reinterpret_cast<const u8*>(stop);
  u32 hits = Hits<kSeeksUnit>(at, wanted) >> (address % kBlock);
  if (hits != 0) return text + static_cast<u32>(__builtin_ctz(hits)) / 2;
  at += kBlock;
  while (reinterpret_cast<uintptr_t>(at) % kTurn != 0) {
    if (at >= last) return stop;
    hits = Hits<kSeeksUnit>(at, wanted);
    if (hits != 0) return reinterpret_cast<const ustring*>(at + __builtin_ctz(hits));
    at += kBlock;
  }
  for (; at < last && !TurnHasHit<kSeeksUnit>(at, wanted);) {
    at += kTurn;
  }
  for (; at < last; at += kBlock) {
    hits = Hits<kSeeksUnit>(at, wanted);
    if (hits != 0) return reinterpret_cast<const ustring*>(at + __builtin_ctz(hits));
  }
  return stop;
}

// Whole blocks before the end of the page.
inline size_t BlocksInPage(const ustring* text) {
  return (kPage - reinterpret_cast<uintptr_t>(text) % kPage) / kBlock;
}

// All bits set for each unit that both texts have and that is no terminator.
QVX_TARGET inline Block GoesOn(const ustring* first, const ustring* second) {
  const Block block = Load(first);
  return AndNot(Equal(block, Zero()), Equal(block, Load(second)));
}

QVX_TARGET inline bool TurnGoesOn(const ustring* first, const ustring* second) {
  const Block front = And(GoesOn(first, second), GoesOn(first + kBlockUnits, second + kBlockUnits));
  const Block back = And(GoesOn(first + 2 * kBlockUnits, second + 2 * kBlockUnits),
                         GoesOn(first + 3 * kBlockUnits, second + 3 * kBlockUnits));
  return Mask(And(front, back)) == kAllUnits;
}

// Where the texts differ or end, block by block; `end` when they go on until there.
QVX_TARGET inline size_t StopBefore(const ustring* first, const ustring* second, size_t at,
                                    size_t end) {
  for (; at < end; at += kBlockUnits) {
    const u32 stops = Mask(GoesOn(first + at, second + at)) ^ kAllUnits;
    if (stops != 0) return at + static_cast<u32>(__builtin_ctz(stops)) / 2;
  }
  return end;
}

// The end of the blocks from `at` on that are in both texts' pages.
inline size_t EndOfBlocks(const ustring* first, const ustring* second, size_t at) {
  return at + std::min(BlocksInPage(first + at), BlocksInPage(second + at)) * kBlockUnits;
}

// The units before `at` are equal.
[[gnu::noinline]] QVX_TARGET inline size_t EqualFrom(const ustring* first, const ustring* second,
                                                     size_t at) {
  // In aligned blocks of the first text; what is compared twice is equal.
  at -= std::min(at, reinterpret_cast<uintptr_t>(first + at) % kBlock / sizeof(ustring));
  for (;;) {
    const size_t end = EndOfBlocks(first, second, at);
    while (end - at >= 4 * kBlockUnits && TurnGoesOn(first + at, second + at)) {
      at += 4 * kBlockUnits;
    }
    at = StopBefore(first, second, at, end);
    if (at < end) return at;
    // One of the texts comes to the end of a page: unit by unit into the next.
    while (EndOfBlocks(first, second, at) == at) {
      if (first[at] != second[at] || first[at] == 0) return at;
      ++at;
    }
  }
}

// Most texts that are compared are short or differ early: turns begin after two blocks.
QVX_TARGET inline size_t EqualInBlocks(const ustring* first, const ustring* second) {
  const size_t head = std::min(EndOfBlocks(first, second, 0), 2 * kBlockUnits);
  const size_t at = StopBefore(first, second, 0, head);
  return at < head ? at : EqualFrom(first, second, at);
}
