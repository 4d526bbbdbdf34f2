// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_USER_RIGHTS_H
#define QVX_ACCESS_USER_RIGHTS_H

#include "qvxcs/types.h"

namespace qvx {

// Checks and opens the role map file; a fault is logged and the default records are used instead.
// Always 0.
u32 OSOpenRolemapFile();

// The level of the process's real user on this host, 0 when anything is thrown.
u32 OSGetRightsUsingRolemap();

// The rights of "user", "user@host" or "domain\user", 0 for none. The text is split in place. May
// throw; several threads may call.
u32 get_user_rights(astring* login);

}  // namespace qvx

#endif
