/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_EXPORT_CONTEXT_H
#define QVXCS_EXPORT_CONTEXT_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

QVX_EXPORT void PXTGetExportContext(u32* slot);

QVX_EXPORT void PXTSetExportContext(u32* saveSlot, u32* context);

QVX_EXPORT void PXTResetExportContext(u32* saveSlot);

QVX_EXPORT void PXTSetProcessEnvironment(void);

QVX_EXPORT void SUPTBeforeForkForDaemon(void);

QVX_EXPORT s32 PXTEnableLongFileNames(void);

QVX_EXPORT s32 PXTDisableLongFileNames(void);

QVX_END_DECLS

#endif
