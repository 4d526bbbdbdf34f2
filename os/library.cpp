// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/library.h"

#include <dlfcn.h>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/results.h"

namespace qvx {
u32 OSLibLoad(PXTLibrary* library, const astring* path) {
  if (library == nullptr) return kMinusOne;
  library->path = nullptr;
  if (path == nullptr) return SM_STATUS_FAILURE;
  HeapArray<astring> copy = CopyText(path);
  if (!copy) return kMinusOne;
  void* const handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) return SM_STATUS_FAILURE;
  library->path = copy.release();
  library->handle = handle;
  return SM_STATUS_SUCCESS;
}

void* OSLibLinkToExportFN(PXTLibrary* library, const astring* symbolName) {
  if (library == nullptr || library->handle == nullptr || symbolName == nullptr) return nullptr;
  // An error that an earlier call left does not belong to this look-up.
  (void)dlerror();
  void* const address = dlsym(library->handle, symbolName);
  return dlerror() == nullptr ? address : nullptr;
}

u32 OSLibUnLinkFromExportFN(PXTLibrary* /*library*/, const void* /*symbol*/) { return 0; }

u32 OSLibUnLoad(PXTLibrary* library) {
  if (library == nullptr) return kMinusOne;
  FreeMem(library->path);
  library->path = nullptr;
  if (library->handle == nullptr || dlclose(library->handle) != 0) return kMinusOne;
  // A handle is closed once: a second unload finds none.
  library->handle = nullptr;
  return SM_STATUS_SUCCESS;
}

}  // namespace qvx
