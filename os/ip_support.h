// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_IP_SUPPORT_H
#define QVX_OS_IP_SUPPORT_H

#include "qvxcs/types.h"

namespace qvx {

u32 GetSockType();
const astring* GetLoopBack();

u32 LoadIPSupt();
u32 UnLoadIPSupt();
bool IPSuptLoaded();

}  // namespace qvx

#endif
