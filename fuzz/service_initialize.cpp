// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ip_support.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

// A service's machine has no folders of the library to attach to. What the attach does for the
// fuzzers that write no file is the look at which kinds of addresses there are.
extern "C" int LLVMFuzzerInitialize([[maybe_unused]] int* argc, [[maybe_unused]] char*** argv) {
  qvx::LoadIPSupt();
  return 0;
}
