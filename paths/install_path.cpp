// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "paths/install_path.h"

#include <pthread.h>

#include <cstring>

#include "qvxcs/status.h"

#include "base/heap.h"
#include "base/layout.h"

namespace qvx {
namespace {

constexpr u32 kCacheRoom = 256;

astring cachedPath[kCacheRoom];
// 0 while the path is not set.
u32 cachedSize = 0;

// A call that finds the cache empty or runs out of memory writes to it as well.
pthread_mutex_t cacheMutex = PTHREAD_MUTEX_INITIALIZER;

class CacheGuard {
 public:
  CacheGuard() { (void)pthread_mutex_lock(&cacheMutex); }
  ~CacheGuard() { (void)pthread_mutex_unlock(&cacheMutex); }
  CacheGuard(const CacheGuard&) = delete;
  CacheGuard& operator=(const CacheGuard&) = delete;
};

void ClearCache() {
  cachedSize = 0;
  cachedPath[0] = '\0';
}

u32 FillCache() {
  cachedSize = kCacheRoom;
  const u32 status = OSInitQVXInstallPath(cachedPath, &cachedSize);
  if (status != SM_STATUS_SUCCESS) ClearCache();
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

u32 SUPTIntfInitQVXInstallPath() {
  const CacheGuard guard;
  return FillCache();
}

astring* SUPTIntfGetQVXInstallPath() {
  const CacheGuard guard;
  if (cachedSize == 0 && FillCache() != SM_STATUS_SUCCESS) return nullptr;
  HeapArray<astring> path = CopyText(cachedPath);
  if (!path) ClearCache();
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
