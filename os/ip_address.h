// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_IP_ADDRESS_H
#define QVX_OS_IP_ADDRESS_H

#include "qvxcs/types.h"

namespace qvx {

u32 IsIPv4(const astring* text);
u32 IsIPv6(const astring* text);
u32 IsLinkLocal(const astring* text);
u32 IPAddrASCIIToNetwork(const astring* address, void* network, u32* size);
u32 IPAddrNetworkToASCII(const void* network, u32 length, astring* address, s32* size);
u32 CheckIPEqual(const astring* a, const astring* b);

}  // namespace qvx

#endif
