// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BENCHMARKS_OPERATIONS_H
#define QVX_BENCHMARKS_OPERATIONS_H

#include <vector>

// What is counted instead of timed: the same on a busy machine.
struct Operation {
  const char* name;
  void (*prepare)();  // once, uncounted; may be null
  void (*run)();      // one operation, repeated
  bool counted;       // its system calls are counted too
};

const std::vector<Operation>& Operations();

#endif
