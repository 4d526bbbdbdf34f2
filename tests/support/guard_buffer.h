// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_GUARD_BUFFER_H
#define QVX_TESTS_SUPPORT_GUARD_BUFFER_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "qvxcs/types.h"

namespace qvx::test {

// Room for `count` elements that ends at a page nobody may touch: one element too many faults. The
// room and what is before it are filled with kGuard, so that untouched bytes can be recognised.
template <typename T>
class GuardBuffer {
 public:
  static constexpr u8 kGuard = 0xA5;

  explicit GuardBuffer(size_t count) : count_(count) {
    const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t bytes = count * sizeof(T);
    open_ = (bytes / page + 1) * page;
    whole_ = open_ + page;
    void* const base =
        mmap(nullptr, whole_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED || mprotect(static_cast<u8*>(base) + open_, page, PROT_NONE) != 0) {
      abort();
    }
    base_ = static_cast<u8*>(base);
    memset(base_, kGuard, open_);
    data_ = reinterpret_cast<T*>(base_ + open_ - bytes);
  }
  ~GuardBuffer() { munmap(base_, whole_); }
  GuardBuffer(const GuardBuffer&) = delete;
  GuardBuffer& operator=(const GuardBuffer&) = delete;

  T* data() { return data_; }
  T& operator[](size_t at) { return data_[at]; }
  [[nodiscard]] size_t size() const { return count_; }

  // Whether everything before the room is as it was.
  [[nodiscard]] bool FrontUntouched() const {
    for (const u8* at = base_; at != reinterpret_cast<const u8*>(data_); ++at) {
      if (*at != kGuard) return false;
    }
    return true;
  }

  // Whether the elements from `first` on are as they were.
  [[nodiscard]] bool UntouchedFrom(size_t first) const {
    for (const u8* at = reinterpret_cast<const u8*>(data_ + first); at != base_ + open_; ++at) {
      if (*at != kGuard) return false;
    }
    return true;
  }

 private:
  size_t count_;
  size_t open_ = 0;
  size_t whole_ = 0;
  u8* base_ = nullptr;
  T* data_ = nullptr;
};

}  // namespace qvx::test

#endif
