// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_LIBRARY_H
#define QVX_OS_LIBRARY_H

#include "qvxcs/library.h"
#include "qvxcs/types.h"

namespace qvx {

u32 OSLibLoad(PXTLibrary* library, const astring* path);
void* OSLibLinkToExportFN(PXTLibrary* library, const astring* symbolName);
u32 OSLibUnLinkFromExportFN(PXTLibrary* library, const void* symbol);
u32 OSLibUnLoad(PXTLibrary* library);

}  // namespace qvx

#endif
