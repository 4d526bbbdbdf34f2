// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_LONG_TEXT_H
#define QVX_TESTS_SUPPORT_LONG_TEXT_H

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "qvxcs/types.h"

#include "support/sanitizers.h"

namespace qvx::test {

// Such texts need more than 32 bits of addresses; a sanitizer reads them byte by byte.
inline constexpr bool kHasLongTexts = sizeof(void*) > 4 && QVX_SANITIZED == 0;

// A text of `count` equal units in 32 MiB of memory at most: the same pages again and again.
template <typename Unit>
class LongText {
 public:
  LongText(u64 count, Unit unit) {
    const u64 pieces = count * sizeof(Unit) / kPiece;
    whole_ = static_cast<size_t>((pieces + 1) * kPiece);
    void* const base = mmap(nullptr, whole_, PROT_READ | PROT_WRITE,
                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (base == MAP_FAILED) abort();
    base_ = static_cast<u8*>(base);
    RepeatOnePiece(pieces);
    const u64 inPieces = pieces * kPiece / sizeof(Unit);
    auto* const units = reinterpret_cast<Unit*>(base_);
    std::fill_n(units, std::min<u64>(count, kPiece / sizeof(Unit)), unit);
    std::fill_n(units + inPieces, count - inPieces, unit);
  }
  ~LongText() { munmap(base_, whole_); }
  LongText(const LongText&) = delete;
  LongText& operator=(const LongText&) = delete;

  [[nodiscard]] const Unit* text() const { return reinterpret_cast<const Unit*>(base_); }

 private:
  static constexpr u64 kPiece = u64{16} << 20;

  void RepeatOnePiece(u64 times) {
    const int file = memfd_create("long_text", MFD_CLOEXEC);
    if (file < 0 || ftruncate(file, kPiece) != 0) abort();
    for (u64 piece = 0; piece < times; ++piece) {
      void* const at = base_ + piece * kPiece;
      if (mmap(at, kPiece, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0) != at) abort();
    }
    (void)close(file);
  }

  size_t whole_ = 0;
  u8* base_ = nullptr;
};

}  // namespace qvx::test

#endif
