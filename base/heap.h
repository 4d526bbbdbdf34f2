// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_HEAP_H
#define QVX_BASE_HEAP_H

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <type_traits>

#include "qvxcs/types.h"

namespace qvx {

// The process heap: whatever leaves the library is freed by FreeMem, which hosts call PXTFreeMem.
void* AllocMem(u32 size);
void* ReAllocMem(void* block, u32 size);
void FreeMem(void* block);

struct HeapDeleter {
  void operator()(void* block) const { free(block); }
};

// An owned block of malloc memory; release() hands it to the caller.
template <typename T>
using HeapArray = std::unique_ptr<T[], HeapDeleter>;

// Room for `count` elements, contents undefined; empty without enough memory or when the bytes
// do not fit the machine's sizes.
template <typename T>
HeapArray<T> AllocArray(u64 count) {
  static_assert(std::is_trivial_v<T>);
  const u64 bytes = count * sizeof(T);
  if (bytes / sizeof(T) != count || bytes > static_cast<u64>(PTRDIFF_MAX)) return nullptr;
  return HeapArray<T>(static_cast<T*>(malloc(static_cast<size_t>(bytes))));
}

// A heap copy of a text, its NUL included; empty without enough memory.
inline HeapArray<astring> CopyText(const astring* text) {
  const size_t room = strlen(text) + 1;
  HeapArray<astring> copy = AllocArray<astring>(room);
  if (copy) {
    memcpy(copy.get(), text, room);
  }
  return copy;
}

}  // namespace qvx

#endif
