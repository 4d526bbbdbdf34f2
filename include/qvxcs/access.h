/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_ACCESS_H
#define QVXCS_ACCESS_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTOpenRolemapFile(void);

QVX_EXPORT u32 PXTGetRightsUsingRolemap(void);

QVX_EXPORT u32 PXTAuthenticateUser(const ustring* domain, const ustring* userName,
                                   ustring* password);

QVX_EXPORT u32 PXTAuthorizeUser(const ustring* domain, const ustring* userName);

QVX_EXPORT s32 PXTADAuthenticateUser(u32 a1, u32 a2, u32 a3, u32 a4, u32 a5, u32 a6, u32 a7, u8 a8,
                                     u32 a9);

QVX_EXPORT void* PXTGetOSDomainList(void);

QVX_EXPORT u32 PXTGetProcessRights(void);

QVX_EXPORT astring* PXTGetProcessUser(void);

QVX_EXPORT u32 PXTMaskProgramRights(u32 rights, const astring* prefix, const astring* iniFile,
                                    u32* reason);

QVX_EXPORT extern astring* pam_servicename;

QVX_END_DECLS

#endif
