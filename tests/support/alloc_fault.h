// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_ALLOC_FAULT_H
#define QVX_TESTS_SUPPORT_ALLOC_FAULT_H

#include <cstddef>

#include "qvxcs/types.h"

// Test programs wrap malloc, calloc, realloc and usleep and replace operator new, so that an
// allocation can be made to fail and sleeps can be counted instead of slept.
namespace qvx::test {

// While it lives, the n-th allocation from now on fails (0: none does).
class FailNthAllocation {
 public:
  explicit FailNthAllocation(u32 nth);
  ~FailNthAllocation();
  FailNthAllocation(const FailNthAllocation&) = delete;
  FailNthAllocation& operator=(const FailNthAllocation&) = delete;
  // Whether the n-th allocation was reached.
  [[nodiscard]] static bool Fired();
};

// Calls `call` with its first, second, ... allocation failing until none fails any more; `check`
// sees each result that came back with a failed allocation. Returns the number of allocations.
template <typename Call, typename Check>
u32 FailEachAllocation(Call call, Check check) {
  for (u32 nth = 1;; ++nth) {
    bool fired = false;
    {
      const FailNthAllocation fault(nth);
      auto result = call();
      fired = FailNthAllocation::Fired();
      if (fired) {
        const FailNthAllocation none(0);
        check(result);
      }
    }
    if (!fired) return nth - 1;
  }
}

// The bytes that the last call of malloc, calloc or realloc asked for.
size_t LastAllocationSize();

// While it lives, usleep returns at once and is counted.
class CountSleeps {
 public:
  CountSleeps();
  ~CountSleeps();
  CountSleeps(const CountSleeps&) = delete;
  CountSleeps& operator=(const CountSleeps&) = delete;
  [[nodiscard]] static u32 Count();
  // Microseconds asked for in all.
  [[nodiscard]] static u64 Microseconds();
};

}  // namespace qvx::test

#endif
