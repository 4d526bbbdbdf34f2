// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_LONG_TEXT_H
#define QVX_TESTS_SUPPORT_LONG_TEXT_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>

#include "qvxcs/types.h"

namespace qvx::test {

// A text of 2^32 + `more` units, each 'a', in 16 MiB of memory: the same pages again and again.
class LongText {
 public:
  explicit LongText(size_t more) {
    const int file = memfd_create("long_text", MFD_CLOEXEC);
    if (file < 0 || ftruncate(file, kPiece) != 0) abort();
    whole_ = kPieces * kPiece + kPiece;
    void* const base = mmap(nullptr, whole_, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (base == MAP_FAILED) abort();
    base_ = static_cast<u8*>(base);
    for (size_t piece = 0; piece < kPieces; ++piece) {
      void* const at = base_ + piece * kPiece;
      if (mmap(at, kPiece, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) != at) abort();
    }
    (void)close(file);
    auto* const units = reinterpret_cast<ustring*>(base_);
    for (size_t at = 0; at < kPiece / 2; ++at) {
      units[at] = 'a';
    }
    for (size_t at = 0; at < more; ++at) {
      units[kPieces * kPiece / 2 + at] = 'a';
    }
  }
  ~LongText() { munmap(base_, whole_); }
  LongText(const LongText&) = delete;
  LongText& operator=(const LongText&) = delete;

  [[nodiscard]] const ustring* text() const { return reinterpret_cast<const ustring*>(base_); }

 private:
  static constexpr size_t kPiece = size_t{16} << 20;
  static constexpr size_t kPieces = sizeof(void*) > 4 ? 512 : 0;  // 8 GiB: 2^32 units
  size_t whole_ = 0;
  u8* base_ = nullptr;
};

}  // namespace qvx::test

#endif
