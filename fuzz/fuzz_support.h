// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_FUZZ_FUZZ_SUPPORT_H
#define QVX_FUZZ_FUZZ_SUPPORT_H

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include "qvxcs/types.h"

// What the fuzzers share. Each defines LLVMFuzzerTestOneInput: it takes one input apart, calls the
// library and stops the program when a claim does not hold.
namespace qvx::fuzz {

inline void Require(bool holds, const char* claim) {
  if (!holds) {
    fprintf(stderr, "does not hold: %s\n", claim);
    abort();
  }
}

// An input: lines of arguments, then the rest, so that a corpus file can be read and written in an
// editor.
class Input {
 public:
  Input(const u8* data, size_t size) : text_(reinterpret_cast<const char*>(data), size) {}

  // The next line without its newline; the whole rest when there is none.
  std::string Line() {
    const size_t end = text_.find('\n', at_);
    const size_t stop = end == std::string::npos ? text_.size() : end;
    const std::string line = text_.substr(at_, stop - at_);
    at_ = end == std::string::npos ? stop : stop + 1;
    return line;
  }

  // The next line up to its first NUL, as a text argument. Byte 1 means a line end in it.
  std::string Word() {
    std::string word = Line().c_str();
    std::replace(word.begin(), word.end(), '\1', '\n');
    return word;
  }

  // The next line as a number.
  u64 Number() { return strtoull(Line().c_str(), nullptr, 10); }
  u32 Below(u32 limit) { return static_cast<u32>(Number() % limit); }

  [[nodiscard]] bool AtEnd() const { return at_ == text_.size(); }
  [[nodiscard]] std::string Rest() const { return text_.substr(at_); }

 private:
  std::string text_;
  size_t at_ = 0;
};

// A heap block of exactly this many elements, so that a sanitizer sees every access outside it.
template <typename T>
class Block {
 public:
  static constexpr u8 kFill = 0xA5;

  explicit Block(size_t count, u8 fill = kFill)
      : count_(count), fill_(fill), room_(std::make_unique<T[]>(count)) {
    if (count != 0) memset(room_.get(), fill, count * sizeof(T));
  }

  T* data() { return room_.get(); }
  T& operator[](size_t at) { return room_[at]; }
  [[nodiscard]] size_t size() const { return count_; }

  // Whether the elements from `first` on are as they were filled.
  [[nodiscard]] bool UntouchedFrom(size_t first) const {
    const auto* const bytes = reinterpret_cast<const u8*>(room_.get());
    for (size_t at = first * sizeof(T); at < count_ * sizeof(T); ++at) {
      if (bytes[at] != fill_) return false;
    }
    return true;
  }

 private:
  size_t count_;
  u8 fill_;
  std::unique_ptr<T[]> room_;
};

// A text argument in its own block; its terminator is the last element.
class Text {
 public:
  explicit Text(const std::string& text) : block_(text.size() + 1) {
    memcpy(block_.data(), text.c_str(), text.size() + 1);
  }
  astring* data() { return block_.data(); }

 private:
  Block<astring> block_;
};

}  // namespace qvx::fuzz

#endif
