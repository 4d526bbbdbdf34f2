// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/wide.h"

#include <atomic>

#ifdef QVX_WIDE_SHUFFLE
#include <cpuid.h>
#endif

namespace qvx {

#ifdef QVX_WIDE_SHUFFLE

namespace {

enum Shuffle : int { kNotAsked, kWithout, kWith };

// The result, kept because a virtual machine needs microseconds to return it. Threads that ask at
// the same time store the same result.
std::atomic<int> byteShuffle{kNotAsked};

int AskProcessor() {
  unsigned eax = 0;
  unsigned ebx = 0;
  unsigned ecx = 0;
  unsigned edx = 0;
  if (__get_cpuid(1, &eax, &ebx, &ecx, &edx) == 0) return kWithout;
  constexpr unsigned kNeeded = bit_SSSE3 | bit_POPCNT;
  return (ecx & kNeeded) == kNeeded ? kWith : kWithout;
}

}  // namespace

bool HasByteShuffle() {
  int answer = byteShuffle.load(std::memory_order_relaxed);
  if (answer == kNotAsked) {
    answer = AskProcessor();
    byteShuffle.store(answer, std::memory_order_relaxed);
  }
  return answer == kWith;
}

#else

bool HasByteShuffle() { return false; }

#endif

}  // namespace qvx
