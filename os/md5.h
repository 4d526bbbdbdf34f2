// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_MD5_H
#define QVX_OS_MD5_H

#include "qvxcs/types.h"

namespace qvx {

s32 MD5Hash(const astring* text, u8* digest);

}  // namespace qvx

#endif
