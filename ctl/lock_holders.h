// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOCK_HOLDERS_H
#define QVX_CTL_LOCK_HOLDERS_H

#include <sys/types.h>

#include <string>
#include <vector>

// Who holds the suite's lock, from the system's list of locks. The lock file is never opened.
namespace qvx::ctl {

struct LockHolder {
  pid_t process;
  bool writes;          // an exclusive lock; else a shared one
  bool waits;           // does not hold it yet
  std::string command;  // empty where the system does not report it
  std::string user;
  std::string start;  // local time, "YYYY-MM-DD HH:MM:SS"
};

// The path of the product's lock file as people write it: its name in the layout has a doubled "/".
std::string LockFilePath();

// Of the product's lock file. Throws a Failure where the file or the list cannot be examined.
std::vector<LockHolder> FindLockHolders();

// "process 12 (name)" of a process that holds the lock, followed by ", which reads" when only
// readers do; empty when no process does or none is known.
std::string DescribeHolder();

// The same of one that keeps this process from loading the library. A process that may only read
// the lock file takes a shared lock, which readers do not block.
std::string DescribeBlockingHolder();

}  // namespace qvx::ctl

#endif
