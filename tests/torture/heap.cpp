// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The program's own malloc replaces the C library's for everything in the process: the library, PAM
// and its modules, and the C library itself.
#include <link.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>

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

// The code of the library and of the C++ library, whose only other user is this program.
struct Range {
  uintptr_t begin;
  uintptr_t end;
};
Range ranges[8];
unsigned rangeCount = 0;

bool IsOwn(const void* caller) {
  const auto at = reinterpret_cast<uintptr_t>(caller);
  for (unsigned range = 0; range < rangeCount; ++range) {
    if (at >= ranges[range].begin && at < ranges[range].end) return true;
  }
  return false;
}

// The blocks that this code holds, each within a few places of its hash.
constexpr size_t kPlaces = 1 << 16;
constexpr size_t kNear = 64;
std::atomic<void*> places[kPlaces + kNear];
std::atomic<long> ownLive = 0;

std::atomic<void*>* PlaceOf(const void* block) {
  return places + (reinterpret_cast<uintptr_t>(block) >> 4) * 0x9E3779B1U % kPlaces;
}

void Note(void* block) {
  std::atomic<void*>* const first = PlaceOf(block);
  for (size_t at = 0; at < kNear; ++at) {
    void* expected = nullptr;
    if (!first[at].compare_exchange_strong(expected, block)) continue;
    ++ownLive;
    return;
  }
}

void Forget(void* block) {
  std::atomic<void*>* const first = PlaceOf(block);
  for (size_t at = 0; at < kNear; ++at) {
    void* expected = block;
    if (!first[at].compare_exchange_strong(expected, nullptr)) continue;
    --ownLive;
    return;
  }
}

void* Counted(void* block, const void* caller) {
  if (block == nullptr) return block;
  ++live;
  if (IsOwn(caller)) Note(block);
  return block;
}

int AddRanges(dl_phdr_info* image, size_t, void*) {
  const bool wanted = strstr(image->dlpi_name, "libqvxcs") != nullptr ||
                      strstr(image->dlpi_name, "libstdc++") != nullptr;
  for (unsigned part = 0; wanted && part < image->dlpi_phnum; ++part) {
    const auto& header = image->dlpi_phdr[part];
    if (header.p_type != PT_LOAD || (header.p_flags & PF_X) == 0) continue;
    const uintptr_t begin = image->dlpi_addr + header.p_vaddr;
    if (rangeCount < sizeof(ranges) / sizeof(ranges[0])) {
      ranges[rangeCount++] = {begin, begin + header.p_memsz};
    }
  }
  return 0;
}

}  // namespace

extern "C" {
__attribute__((visibility("default"))) void* malloc(size_t size) {
  return Fails() ? nullptr : Counted(__libc_malloc(size), __builtin_return_address(0));
}
__attribute__((visibility("default"))) void* calloc(size_t count, size_t size) {
  return Fails() ? nullptr : Counted(__libc_calloc(count, size), __builtin_return_address(0));
}
__attribute__((visibility("default"))) void* realloc(void* block, size_t size) {
  if (Fails()) return nullptr;
  if (block != nullptr) Forget(block);
  void* const moved = __libc_realloc(block, size);
  const void* const caller = __builtin_return_address(0);
  if (block == nullptr) return Counted(moved, caller);
  if (size == 0 && moved == nullptr) --live;
  if (moved != nullptr && IsOwn(caller)) Note(moved);
  return moved;
}
__attribute__((visibility("default"))) void* memalign(size_t alignment, size_t size) {
  return Fails() ? nullptr : Counted(__libc_memalign(alignment, size), __builtin_return_address(0));
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
  if (block != nullptr) {
    --live;
    Forget(block);
  }
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
void WatchOwnBlocks() { (void)dl_iterate_phdr(AddRanges, nullptr); }
long OwnBlocks() { return ownLive; }

}  // namespace qvx::torture
