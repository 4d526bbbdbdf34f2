// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_PATHS_INSTALL_PATH_H
#define QVX_PATHS_INSTALL_PATH_H

#include "qvxcs/types.h"

namespace qvx {

// The install path, which the first attach puts into a cache; new heap texts, null when it cannot
// be set or copied. The product's install path is this path without what follows its last "/".
astring* SUPTIntfGetQVXInstallPath();
astring* SUPTIntfGetProductInstallPath();

// Fills the cache, or clears it when that fails.
u32 SUPTIntfInitQVXInstallPath();

// `*size` is the room in bytes and then the size of the path, its NUL counted.
u32 OSInitQVXInstallPath(astring* buffer, u32* size);

// Ends the path at its last "/"; false when there is none or it is the first character.
bool CutAtLastSlash(astring* path);

}  // namespace qvx

#endif
