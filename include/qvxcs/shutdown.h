/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_SHUTDOWN_H
#define QVXCS_SHUTDOWN_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT u32 PXTOSShutdown(u16 ignored, u16 mode);

QVX_EXPORT u32 PXTOSGetType(void);

QVX_END_DECLS

#endif
