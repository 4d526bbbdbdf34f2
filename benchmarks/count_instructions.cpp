// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Run by callgrind, whose output has the instructions of each operation in a separate part.
#include <valgrind/callgrind.h>

#include <cstdio>

#include "benchmarks/operations.h"

int main() {
  for (const Operation& operation : Operations()) {
    if (operation.prepare != nullptr) operation.prepare();
    // What the operation before has freed is sorted by the heap meanwhile.
    for (int warmUp = 0; warmUp < 3; ++warmUp) {
      operation.run();
    }
    CALLGRIND_ZERO_STATS;
    operation.run();
    CALLGRIND_DUMP_STATS_AT(operation.name);
  }
  return 0;
}
