// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_HEAP_USE_H
#define QVX_TESTS_SUPPORT_HEAP_USE_H

#include <malloc.h>

#include <cstddef>

#include "support/sanitizers.h"

#if QVX_SANITIZED
// g++ ships no header for it.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace qvx::test {

// Bytes of the heap in use. The C library keeps freed blocks of up to some 1,000 bytes as if they
// were used: compare with blocks larger than that.
inline size_t HeapInUse() {
#if QVX_SANITIZED
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
#endif
}

}  // namespace qvx::test

#endif
