// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The counts of lines run are written by exit handlers, which _exit skips: test programs of a
// coverage build are linked so that each of their calls of _exit comes here. Processes that are
// stopped at each of their system calls end by _Exit, which stays as it is.
extern "C" {
#include <gcov.h>  // declares nothing as extern "C"

[[noreturn]] void __real__exit(int status);

[[noreturn]] void __wrap__exit(int status) {
  __gcov_dump();
  __real__exit(status);
}
}
