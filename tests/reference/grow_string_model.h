// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_REFERENCE_GROW_STRING_MODEL_H
#define QVX_TESTS_REFERENCE_GROW_STRING_MODEL_H

#include <optional>
#include <string>
#include <vector>

#include "qvxcs/types.h"

// Slow, obvious models of the growable strings, the hex dump and the small edits of 8-bit text:
// a record is a vector that remembers the size of its block. A null text is nothing.
namespace qvx::test {

using ModelUnits = std::vector<u32>;

// One line for every 16 bytes, each with its CR LF.
std::string ModelHexDump(const std::string& bytes, u32 firstAddress);

// A record whose units have one byte or two.
class ModelRecord {
 public:
  explicit ModelRecord(u64 unitBytes) : unitBytes_(unitBytes) {}

  // Whether the call returns a text.
  bool Alloc(u32 capacity);
  void Free();
  bool Append(const std::optional<ModelUnits>& text);
  // Text of the other width: 16-bit units for an 8-bit record, UTF-8 bytes for a 16-bit one.
  bool AppendOther(const std::optional<ModelUnits>& text);
  // For a 16-bit record only.
  s32 Dump(const std::optional<std::string>& bytes, u32 firstAddress);

  [[nodiscard]] bool live() const { return live_; }
  [[nodiscard]] u32 capacity() const { return static_cast<u32>(capacity_); }
  [[nodiscard]] const ModelUnits& units() const { return units_; }

 private:
  u64 unitBytes_;
  bool live_ = false;
  u64 capacity_ = 0;
  ModelUnits units_;
};

std::string ModelWithoutQuotes(const std::string& text);
s32 ModelCompareFolded(const std::string& first, const std::string& second, u32 count);

struct ModelReplaced {
  u32 status;
  u32 size;          // what the size becomes
  std::string room;  // what the whole room holds afterwards; empty without one
};
// `room` is all that the output holds before the call; it has at least `size` bytes.
ModelReplaced ModelReplace(const std::string& text, const std::string& find,
                           const std::string& replace, u32 size,
                           const std::optional<std::string>& room);

}  // namespace qvx::test

#endif
