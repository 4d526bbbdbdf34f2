// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/wide.h"

#ifdef QVX_WIDE_SHUFFLE
#include <cpuid.h>
#endif

namespace qvx {
namespace {

#ifdef QVX_WIDE_SHUFFLE

struct Registers {
  unsigned eax = 0;
  unsigned ebx = 0;
  unsigned ecx = 0;
  unsigned edx = 0;
};

Registers Leaf(unsigned leaf) {
  Registers found;
  if (__get_cpuid_count(leaf, 0, &found.eax, &found.ebx, &found.ecx, &found.edx) == 0) return {};
  return found;
}

bool HasAll(unsigned bits, unsigned wanted) { return (bits & wanted) == wanted; }

// Whether the system keeps the upper halves of the 32-byte registers.
__attribute__((target("xsave"))) bool KeepsWideRegisters() {
  constexpr unsigned kBothHalves = 6;
  return HasAll(static_cast<unsigned>(_xgetbv(0)), kBothHalves);
}

ProcessorLevel LevelOfProcessor() {
  const unsigned basic = Leaf(1).ecx;
  if (!HasAll(basic, bit_SSSE3 | bit_POPCNT)) return kBaseline;
  if (!HasAll(basic, bit_OSXSAVE | bit_AVX) || !KeepsWideRegisters()) return kByteShuffle;
  return HasAll(Leaf(7).ebx, bit_AVX2) ? kWideBlocks : kByteShuffle;
}

#else

ProcessorLevel LevelOfProcessor() { return kBaseline; }

#endif

}  // namespace

std::atomic<int> processorLevel{kNotAsked};

int AskProcessor() {
  const int level = LevelOfProcessor();
  processorLevel.store(level, std::memory_order_relaxed);
  return level;
}

}  // namespace qvx
