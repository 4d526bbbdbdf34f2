// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/install_path.h"

#include <atomic>
#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/layout.h"

namespace qvx {
namespace {

constexpr u32 kCacheRoom = 256;

// The product's path never changes, so only its size is kept: 0 while the path is not set. It is
// read without a lock, because a child of fork might find the lock taken forever.
constinit std::atomic<u32> cachedSize{0};

u32 FillCache() {
  astring path[kCacheRoom];
  u32 size = kCacheRoom;
  const u32 status = OSInitQVXInstallPath(path, &size);
  cachedSize = status == SM_STATUS_SUCCESS ? size : 0;
  return status;
}

}  // namespace

u32 OSInitQVXInstallPath(astring* buffer, u32* size) {
  if (buffer == nullptr || size == nullptr) return SM_STATUS_INVALID_PARAMETER;
  constexpr u32 kNeeded = sizeof(kInstallPath);
  const bool fits = *size >= kNeeded;
  *size = kNeeded;
  if (!fits) return SM_STATUS_BUFFER_TOO_SMALL;
  memcpy(buffer, kInstallPath, kNeeded);
  return SM_STATUS_SUCCESS;
}

u32 SUPTIntfInitQVXInstallPath() { return FillCache(); }

astring* SUPTIntfGetQVXInstallPath() {
  if (cachedSize == 0 && FillCache() != SM_STATUS_SUCCESS) return nullptr;
  HeapArray<astring> path = CopyText(kInstallPath);
  if (!path) cachedSize = 0;
  return path.release();
}

bool CutAtLastSlash(astring* path) {
  astring* const slash = strrchr(path, '/');
  if (slash == nullptr || slash == path) return false;
  *slash = '\0';
  return true;
}

astring* SUPTIntfGetProductInstallPath() {
  HeapArray<astring> path(SUPTIntfGetQVXInstallPath());
  if (!path || !CutAtLastSlash(path.get())) return nullptr;
  return path.release();
}

}  // namespace qvx
