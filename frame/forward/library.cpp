// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/library.h"

#include "base/cancel_hold.h"
#include "os/library.h"

u32 PXTLibLoad(PXTLibrary* library, const astring* path) {
  const qvx::CancelHold hold;
  return qvx::OSLibLoad(library, path);
}
void* PXTLibLinkToExportFN(PXTLibrary* library, const astring* symbolName) {
  return qvx::OSLibLinkToExportFN(library, symbolName);
}
u32 PXTLibUnLinkFromExportFN(PXTLibrary* library, const void* symbol) {
  return qvx::OSLibUnLinkFromExportFN(library, symbol);
}
u32 PXTLibUnLoad(PXTLibrary* library) {
  const qvx::CancelHold hold;
  return qvx::OSLibUnLoad(library);
}
