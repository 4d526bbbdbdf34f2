// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <cstdio>
#include <cstdlib>

#include "frame/module.h"
#include "support/files.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

// Runs once, before the first input. Inputs are written to files in the sandbox's own memory.
extern "C" int LLVMFuzzerInitialize([[maybe_unused]] int* argc, [[maybe_unused]] char*** argv) {
  qvx::test::RequireSandbox();
  if (mkdir("/run/fuzz", 0755) != 0 || qvx::ModuleAttach() != 1) {
    fputs("fuzz: the library cannot be attached\n", stderr);
    exit(1);
  }
  return 0;
}
