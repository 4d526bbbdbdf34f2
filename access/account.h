// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_ACCOUNT_H
#define QVX_ACCESS_ACCOUNT_H

#include <sys/types.h>

#include "qvxcs/types.h"

#include "base/heap.h"

namespace qvx {

struct Account {
  uid_t user;
  gid_t group;  // the primary one
};

// False when the user database knows no such name, or cannot be asked.
bool FindAccount(const astring* name, Account* account);

// A heap copy of the name; empty when the database knows none, or without memory.
HeapArray<astring> NameOfUser(uid_t user);
HeapArray<astring> NameOfGroup(gid_t group);

// Room for one entry of either database to begin with, and the most that is tried.
inline constexpr size_t kEntryRoom = 1024;
inline constexpr size_t kMaxEntryRoom = size_t{1} << 26;

}  // namespace qvx

#endif
