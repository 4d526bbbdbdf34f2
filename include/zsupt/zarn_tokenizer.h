// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef ZSUPT_ZARN_TOKENIZER_H
#define ZSUPT_ZARN_TOKENIZER_H

#include <string>

namespace ZarnSupport {

// Splits a wide text at every separator character. Nothing is skipped: adjacent separators have an
// empty token between them, a leading or trailing one has an empty token beside it, and the empty
// text is one empty token.
// An internal service without a caller in the library, held by its tests.
class ZarnTokenizer {
 public:
  ZarnTokenizer(const std::wstring& text, const std::wstring& separators);

  bool hasMoreTokens() const { return !exhausted_; }

  // The empty text when there are no more.
  std::wstring nextToken();

 private:
  std::wstring text_;
  std::wstring separators_;
  std::wstring::size_type at_ = 0;
  bool exhausted_ = false;
};

}  // namespace ZarnSupport

#endif
