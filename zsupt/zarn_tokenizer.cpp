// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "zsupt/zarn_tokenizer.h"

namespace ZarnSupport {

ZarnTokenizer::ZarnTokenizer(const std::wstring& text, const std::wstring& separators)
    : text_(text), separators_(separators) {}

std::wstring ZarnTokenizer::nextToken() {
  if (exhausted_) return std::wstring();
  const std::wstring::size_type end = text_.find_first_of(separators_, at_);
  std::wstring token = text_.substr(at_, end - at_);
  exhausted_ = end == std::wstring::npos;
  at_ = exhausted_ ? text_.size() : end + 1;
  return token;
}

}  // namespace ZarnSupport
