// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_MANUAL_SAMPLE_H
#define QVX_TESTS_SUPPORT_MANUAL_SAMPLE_H

#include <string>

// QVX_BUILT_IN(Name, "file"), outside of any function: makes Name() the bytes of a file of the
// project. They are built in, for the project's folder is not to be seen from every sandbox.
#define QVX_BUILT_IN(name, file)                                                          \
  __asm__(                                                                                \
      ".pushsection .rodata\n"                                                            \
      ".globl qvxManualSample" #name                                                      \
      "\n"                                                                                \
      ".globl qvxManualSampleEnd" #name                                                   \
      "\n"                                                                                \
      ".hidden qvxManualSample" #name                                                     \
      "\n"                                                                                \
      ".hidden qvxManualSampleEnd" #name                                                  \
      "\n"                                                                                \
      "qvxManualSample" #name ": .incbin \"" file                                         \
      "\"\n"                                                                              \
      "qvxManualSampleEnd" #name                                                          \
      ": .byte 0\n"                                                                       \
      ".popsection");                                                                     \
  extern "C" __attribute__((visibility("hidden"))) const char qvxManualSample##name[];    \
  extern "C" __attribute__((visibility("hidden"))) const char qvxManualSampleEnd##name[]; \
  static std::string name() { return {qvxManualSample##name, qvxManualSampleEnd##name}; }

// The same of the manual's sample docs/man/samples/file.
#define QVX_MANUAL_SAMPLE(name, file) QVX_BUILT_IN(name, "docs/man/samples/" file)

#endif
