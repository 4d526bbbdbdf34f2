// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_STATUS_TABLE_H
#define QVX_CTL_STATUS_TABLE_H

#include "qvxcs/types.h"

#include "ctl/exit_code.h"

namespace qvx::ctl {

// The library has no text for its statuses; here it is.
// In the order of the catalogue's columns. NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct StatusEntry {
  u32 value;
  const char* name;
  const char* meaning;
  const char* advice;
  ExitCode exitCode;  // of a command that ends with it
};

// For a value that is not in the catalogue, an entry without a name.
const StatusEntry& EntryOfStatus(u32 value);

// Whether the value is one of the catalogue's, -1 included.
bool IsStatus(u32 value);

}  // namespace qvx::ctl

#endif
