/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_LIBRARY_H
#define QVXCS_LIBRARY_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

typedef struct PXTLibrary {
  astring* path;
  void* handle;
} PXTLibrary;

QVX_EXPORT u32 PXTLibLoad(PXTLibrary* library, const astring* path);

QVX_EXPORT void* PXTLibLinkToExportFN(PXTLibrary* library, const astring* symbolName);

QVX_EXPORT u32 PXTLibUnLinkFromExportFN(PXTLibrary* library, const void* symbol);

QVX_EXPORT u32 PXTLibUnLoad(PXTLibrary* library);

QVX_END_DECLS

#endif
