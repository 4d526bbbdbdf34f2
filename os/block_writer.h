// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_BLOCK_WRITER_H
#define QVX_OS_BLOCK_WRITER_H

#include <string_view>

#include "base/heap.h"
#include "os/block_reader.h"

namespace qvx {

// Writes all of the text, in one call where the system accepts it whole; false with errno set.
bool WriteAll(int file, std::string_view text);

// Writes to an open file in blocks. The caller keeps the descriptor. What is not flushed when the
// writer is destroyed is lost.
class BlockWriter {
 public:
  static constexpr size_t kBlock = 65536;

  explicit BlockWriter(int file) : file_(file), block_(AllocArray<astring>(kBlock)) {}
  ~BlockWriter() = default;
  BlockWriter(const BlockWriter&) = delete;
  BlockWriter& operator=(const BlockWriter&) = delete;

  // False without enough memory; nothing else may be called then.
  explicit operator bool() const { return block_ != nullptr; }

  // Both are false with errno set when a write failed.
  bool Write(std::string_view text);
  bool Flush();

 private:
  int file_;
  HeapArray<astring> block_;
  size_t used_ = 0;
};

// Copies what is left of a file; false when a write failed, in->Failed() when a read did.
bool CopyRest(BlockReader* in, BlockWriter* out);

}  // namespace qvx

#endif
