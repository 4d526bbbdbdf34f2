// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_CALL_FAILURE_H
#define QVX_CTL_CALL_FAILURE_H

#include <string>

#include "qvxcs/types.h"

#include "ctl/output.h"

namespace qvx::ctl {

// A failed call of the library on a file, with what the system reports about the file or who holds
// the lock. Call it right after the library's call: `reason` is the errno that it left.
Failure CallFailure(const std::string& what, const std::string& path, u32 status, int reason);

// Why a regular file cannot be opened for reading: an errno or kNoRegularFile; 0 where it can.
int ReasonNotReadable(const std::string& path);

// Ends the command when another process holds the suite's lock: loading the library waits for it.
void RequireFreeLock(const std::string& what);

}  // namespace qvx::ctl

#endif
