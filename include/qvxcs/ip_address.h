/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_IP_ADDRESS_H
#define QVXCS_IP_ADDRESS_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT astring* PXTGetComputerDomainName(void);

QVX_EXPORT u32 PXTGetIPHostName(astring* name, u32* size);

QVX_EXPORT u32 PXTUniGetIPHostName(ustring* name, u32* size);

QVX_EXPORT u32 PXTGetDNSSuffixNameName(void* name, u32 size);

QVX_EXPORT u32 PXTValidateHostName(const astring* name);

QVX_EXPORT u32 PXTGetSockType(void);

QVX_EXPORT const astring* PXTGetLoopBack(void);

QVX_EXPORT u32 PXTIsIPv4(const astring* text);

QVX_EXPORT u32 PXTIsIPv6(const astring* text);

QVX_EXPORT u32 PXTIsLinkLocal(const astring* text);

QVX_EXPORT u32 PXTIPAddrASCIIToNetwork(const astring* address, void* network, u32* size);

QVX_EXPORT u32 PXTIPAddrNetworkToASCII(const void* network, u32 length, astring* address,
                                       s32* size);

QVX_EXPORT u32 PXTCheckIPEqual(const astring* a, const astring* b);

QVX_EXPORT u32 PXTGetIPAddrStrList(const astring* ignored, u32* count, void* list);

QVX_EXPORT astring* PXTHostGetHostIPAddrList(u32* count);

QVX_EXPORT s32 PXTMD5Hash(const astring* text, u8* digest);

QVX_END_DECLS

#endif
