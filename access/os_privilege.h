// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_OS_PRIVILEGE_H
#define QVX_ACCESS_OS_PRIVILEGE_H

#include "qvxcs/types.h"

#include "access/account.h"

namespace qvx {

// The calling process's rights, by its user and group identities.
u32 OSGetProcessRights();

// A heap copy of the real user's name, or null.
astring* OSGetProcessUser();

// The level that a user has from the operating system alone: its superuser is an administrator, the
// members of group 0 are power users, any other known user is a user. Without enough memory the
// level may be lower, never higher.
u32 GetOSPrivilege(SystemUser& user);
// The same by the name.
// An internal service without a caller in the library, held by its tests.
u32 GetOSPrivilege(const astring* userName);

// The groups that list the user as a member; the primary group counts only where it does. At most
// `max` identifiers are stored; `max` 0 only counts. Walks the process's one cursor over the group
// database: not for two threads at once.
// An internal service without a caller in the library, held by its tests.
u32 getugroups(u32 max, u32* groups, const astring* name);

// 0 when the user exists and is the superuser, else -1.
// An internal service without a caller in the library, held by its tests.
s32 isuserroot(const astring* name);

}  // namespace qvx

#endif
