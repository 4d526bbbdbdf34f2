// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/wide.h"

#ifdef QVX_WIDE_SHUFFLE
#include <cpuid.h>
#endif

#include <cstdint>

#include "qvxcs/types.h"

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

// Whether valgrind's memcheck looks on. Valgrind's processor answers a request for which bits of a
// byte are known; the row of instructions that asks it changes nothing on any other (memcheck.h,
// VALGRIND_GET_VBITS).
bool IsMemoryChecked() {
  constexpr uintptr_t kGetKnownBits = 0x4D430008;
  const astring byte = 0;
  astring bits = 0;
  const uintptr_t request[6] = {kGetKnownBits, reinterpret_cast<uintptr_t>(&byte),
                                reinterpret_cast<uintptr_t>(&bits), sizeof(byte)};
  uintptr_t answer = 0;
#ifdef __x86_64__
  asm volatile(
      "rolq $3, %%rdi\n rolq $13, %%rdi\n rolq $61, %%rdi\n rolq $51, %%rdi\n"
      "xchgq %%rbx, %%rbx"
      : "+d"(answer)
      : "a"(request)
      : "cc", "memory");
#else
  asm volatile(
      "roll $3, %%edi\n roll $13, %%edi\n roll $29, %%edi\n roll $19, %%edi\n"
      "xchgl %%ebx, %%ebx"
      : "+d"(answer)
      : "a"(request)
      : "cc", "memory");
#endif
  return answer != 0;
}

ProcessorLevel LevelOfProcessor() {
  if (IsMemoryChecked()) return kWithinText;
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
