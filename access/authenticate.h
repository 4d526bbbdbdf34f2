// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_AUTHENTICATE_H
#define QVX_ACCESS_AUTHENTICATE_H

#include "qvxcs/types.h"

namespace qvx {

// Rights of a user whose password PAM accepts, else 0. The caller's password is wiped in any case.
u32 OSAuthenticateUser(const ustring* domain, const ustring* userName, ustring* password);

// Rights of a local user, without a password; 0 for a user of a domain.
u32 OSAuthorizeUser(const ustring* domain, const ustring* userName);

// There is no directory service here: -1 and null.
s32 OSADAuthenticateUser(u32 a1, u32 a2, u32 a3, u32 a4, u32 a5, u32 a6, u32 a7, u8 a8, u32 a9);
void* OSDomainList();

// The same for the 8-bit texts that PAM uses; the login is split in place. May throw.
u32 LXAuthenticateUser(astring* login, const astring* password);

}  // namespace qvx

#endif
