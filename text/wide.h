// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_WIDE_H
#define QVX_TEXT_WIDE_H

// Which loops take many characters at a time. Each has a plain loop beside it that defines what it
// does; QVXCS_WIDE=OFF, and machines without SSE2 in the compiler's baseline, use the plain ones.
//
// QVX_WIDE_LOADS    16 bytes at a time, within the text
// QVX_WIDE_PAGES    aligned loads that may pass a terminator, never its page; not in builds with a
//                   sanitizer, which would report them and thus check the plain loops, nor under
//                   valgrind's memcheck
// QVX_WIDE_SHUFFLE  instructions beyond the baseline, where the processor has them

#include <atomic>

#if defined(QVX_WIDE) && defined(__SSE2__)
#define QVX_WIDE_LOADS 1
#define QVX_WIDE_SHUFFLE 1
#include <immintrin.h>
#endif

#if defined(__has_feature)
#define QVX_HAS_FEATURE(name) __has_feature(name)
#else
#define QVX_HAS_FEATURE(name) 0
#endif

#if defined(QVX_WIDE_LOADS) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && \
    !QVX_HAS_FEATURE(address_sanitizer) && !QVX_HAS_FEATURE(thread_sanitizer) &&                  \
    !QVX_HAS_FEATURE(memory_sanitizer)
#define QVX_WIDE_PAGES 1
#endif

namespace qvx {

// What the processor has beyond the baseline; each level has those before it.
enum ProcessorLevel : int {
  kNotAsked,
  kWithinText,  // valgrind's memcheck, which reports loads that pass a terminator
  kBaseline,
  kByteShuffle,  // SSSE3 and POPCNT
  kWideBlocks,   // AVX2, whose registers the system keeps
};

// Kept because a virtual machine needs microseconds to answer; asked for when the library is
// loaded, or else by the first use. Threads that ask at the same time store the same level. Tests
// store a lower one.
extern std::atomic<int> processorLevel;

// Stores the level and returns it.
int AskProcessor();

inline bool ProcessorHas(ProcessorLevel wanted) {
  int level = processorLevel.load(std::memory_order_relaxed);
  if (level == kNotAsked) [[unlikely]] {
    level = AskProcessor();
  }
  return level >= wanted;
}

}  // namespace qvx

#endif
