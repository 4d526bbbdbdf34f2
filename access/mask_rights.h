// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_MASK_RIGHTS_H
#define QVX_ACCESS_MASK_RIGHTS_H

#include "qvxcs/types.h"

namespace qvx {

// The rights as the OEM's configuration leaves them, 0 when it cannot be read. `reason` is stored
// only where a level is lowered to no access, and may be null.
u32 MaskProgramRights(u32 rights, const astring* prefix, const astring* iniFile, u32* reason);

}  // namespace qvx

#endif
