// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_IP_INTERFACES_H
#define QVX_OS_IP_INTERFACES_H

#include "qvxcs/types.h"

namespace qvx {

// An address list is an array of slots of this many bytes, one NUL-terminated text in each.
inline constexpr u32 kAddressSlotBytes = 65;

astring* SUPTIntfGetHostNameAStr();
u32 GetIPAddrStrList(const astring* ignored, u32* count, void* list);
astring* SUPTIntfHostGetHostIPAddrList(u32* count);

}  // namespace qvx

#endif
