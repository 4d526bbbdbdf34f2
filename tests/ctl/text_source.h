// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_CTL_TEXT_SOURCE_H
#define QVX_TESTS_CTL_TEXT_SOURCE_H

#include <algorithm>
#include <cstring>
#include <string>

#include "ctl/log_reader.h"

namespace qvx::test {

// A log that is a text in memory.
class TextSource : public ctl::LogReader::Source {
 public:
  size_t Read(u64 offset, char* room, size_t size) override {
    if (offset >= text.size()) return 0;
    const size_t got = std::min(size, text.size() - static_cast<size_t>(offset));
    memcpy(room, text.data() + offset, got);
    return got;
  }
  std::string text;
};

}  // namespace qvx::test

#endif
