// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef ZSUPT_ZARN_EXCEPTION_H
#define ZSUPT_ZARN_EXCEPTION_H

#include <deque>
#include <string>

namespace ZarnSupport {

// What the suite's programs throw: a number for the program, a text for people, and the messages
// that the frames it travelled through have left. Thrown by value, caught by reference.
class ZarnException {
 public:
  ZarnException() = default;
  explicit ZarnException(int code) : code_(code) {}
  ZarnException(const ZarnException&) = default;
  ZarnException& operator=(const ZarnException&) = default;
  ZarnException(ZarnException&&) = default;
  ZarnException& operator=(ZarnException&&) = default;
  virtual ~ZarnException();

  int getCode() const { return code_; }
  void setCode(int code) { code_ = code; }

  const std::wstring& getUText() const { return text_; }
  void setText(const std::wstring& text) { text_ = text; }

  // Adds what a frame has to say; the innermost frame's message comes first.
  void pushMessage(const std::wstring& message) { callStack_.push_back(message); }
  const std::deque<std::wstring>& getCallStack() const { return callStack_; }

 private:
  int code_ = 0;
  std::wstring text_;
  std::deque<std::wstring> callStack_;
};

}  // namespace ZarnSupport

#endif
