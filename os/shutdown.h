// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_SHUTDOWN_H
#define QVX_OS_SHUTDOWN_H

#include "qvxcs/types.h"

namespace qvx {

u32 OSShutdown(u16 ignored, u16 mode);
u32 OSGetType();

}  // namespace qvx

#endif
