// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The program's own malloc replaces the C library's for everything in the process: the library, PAM
// and its modules, and the C library itself.
#include <atomic>
#include <cerrno>
#include <cstddef>

#include "torture/torture.h"

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}

namespace {

std::atomic<long> live = 0;
std::atomic<long> until = -1;  // the allocation to fail, counted from the next one; below 1: none
std::atomic<bool> on = false;  // later ones fail, too
std::atomic<bool> failed = false;

bool Fails() {
  if (until.load(std::memory_order_relaxed) < 1) return false;
  const long left = until.fetch_sub(1) - 1;
  if (left > 0) return false;
  if (on) until = 1;
  failed = true;
  errno = ENOMEM;
  return true;
}

void* Counted(void* block) {
  if (block != nullptr) ++live;
  return block;
}

}  // namespace

extern "C" {
__attribute__((visibility("default"))) void* malloc(size_t size) {
  return Fails() ? nullptr : Counted(__libc_malloc(size));
}
__attribute__((visibility("default"))) void* calloc(size_t count, size_t size) {
  return Fails() ? nullptr : Counted(__libc_calloc(count, size));
}
__attribute__((visibility("default"))) void* realloc(void* block, size_t size) {
  if (Fails()) return nullptr;
  void* const moved = __libc_realloc(block, size);
  if (block == nullptr) return Counted(moved);
  if (size == 0 && moved == nullptr) --live;
  return moved;
}
__attribute__((visibility("default"))) void* memalign(size_t alignment, size_t size) {
  return Fails() ? nullptr : Counted(__libc_memalign(alignment, size));
}
__attribute__((visibility("default"))) void* aligned_alloc(size_t alignment, size_t size) {
  return memalign(alignment, size);
}
__attribute__((visibility("default"))) int posix_memalign(void** block, size_t alignment,
                                                          size_t size) {
  void* const made = memalign(alignment, size);
  if (made == nullptr) return ENOMEM;
  *block = made;
  return 0;
}
__attribute__((visibility("default"))) void free(void* block) {
  if (block != nullptr) --live;
  __libc_free(block);
}
}

namespace qvx::torture {

void FailAllocation(long nth, Failure failure) {
  failed = false;
  on = failure == Failure::kFromThenOn;
  until = nth;
}

void FailNoAllocation() { until = -1; }
bool AllocationFailed() { return failed; }
long LiveBlocks() { return live; }

}  // namespace qvx::torture
