// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/product_paths.h"

#include <cstdio>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/layout.h"
#include "os/file_util.h"
#include "paths/install_path.h"
#include "paths/locale.h"

namespace qvx {
namespace {

constexpr size_t kPathRoom = 256;

bool HasInstallPath() {
  const HeapArray<astring> path(SUPTIntfGetProductInstallPath());
  return path != nullptr;
}

bool HasVarPath() {
  const HeapArray<astring> path(SUPTIntfGetProductVarPath());
  return path != nullptr;
}

astring* DocsPath(const astring* directory) {
  if (!HasInstallPath()) return nullptr;
  const HeapArray<astring> locale(SUPTIntfGetOSLocaleName());
  if (!locale) return nullptr;
  astring path[kPathRoom];
  (void)snprintf(path, sizeof(path), "%s%s", directory, locale.get());
  return CopyText(path).release();
}

}  // namespace

astring* SUPTIntfGetProductIniPath() { return CopyText(kProductIniPath).release(); }

astring* SUPTIntfGetProductVarPath() { return CopyText(kProductVarPath).release(); }

astring* SUPTIntfGetQVXWWWRootPath() {
  return HasInstallPath() ? CopyText(kWwwRootPath).release() : nullptr;
}

astring* SUPTIntfGetQVXXSLRootPath() {
  return HasInstallPath() ? CopyText(kXslRootPath).release() : nullptr;
}

astring* SUPTIntfGetQVXDownloadPath() {
  return HasVarPath() ? CopyText(kDownloadPath).release() : nullptr;
}

astring* SUPTIntfGetQVXUploadPath() {
  return HasVarPath() ? CopyText(kUploadPath).release() : nullptr;
}

astring* SUPTIntfGetQVXCLIDocsPath() { return DocsPath(kCliDocsDirectory); }

astring* SUPTIntfGetQVXWEBDocsPath() { return DocsPath(kWebDocsDirectory); }

astring* SUPTIntfGetIWSTempDirPath() {
  if (!HasInstallPath()) return nullptr;
  if (CreateDir(kTempDirPath) != SM_STATUS_SUCCESS) return nullptr;
  return CopyText(kTempDirPath).release();
}

}  // namespace qvx
