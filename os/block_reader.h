// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_BLOCK_READER_H
#define QVX_OS_BLOCK_READER_H

#include <string_view>

#include "base/heap.h"

namespace qvx {

// Reads an open file once, from its position on, in blocks. The caller keeps the descriptor.
class BlockReader {
 public:
  static constexpr size_t kBlock = 65536;

  explicit BlockReader(int file) : file_(file), block_(AllocArray<astring>(kBlock)) {}
  ~BlockReader() = default;
  BlockReader(const BlockReader&) = delete;
  BlockReader& operator=(const BlockReader&) = delete;

  // False without enough memory; nothing else may be called then.
  explicit operator bool() const { return block_ != nullptr; }

  // What has been read and not skipped; valid until the next ReadOn.
  [[nodiscard]] std::string_view Unread() const { return {block_.get() + begin_, end_ - begin_}; }
  void Skip(size_t count) { begin_ += count; }

  // Reads more after what is unread, which must be less than a block. False at the end of the file
  // and when reading fails.
  bool ReadOn();
  // Whether reading has failed.
  [[nodiscard]] bool Failed() const { return failed_; }

 private:
  int file_;
  HeapArray<astring> block_;
  size_t begin_ = 0;
  size_t end_ = 0;
  bool ended_ = false;
  bool failed_ = false;
};

}  // namespace qvx

#endif
