// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_PASSWORD_H
#define QVX_CTL_PASSWORD_H

#include <string>

namespace qvx::ctl {

// A line that was typed without echo, or read from stdin where that is no terminal. Wiped when it
// is destroyed.
class Password {
 public:
  // Throws a Failure when there is no line, or one longer than 255 bytes. A signal that ends the
  // process does so at once, after the bytes are wiped and the echo is back.
  explicit Password(const std::string& prompt);
  ~Password();
  Password(const Password&) = delete;
  Password& operator=(const Password&) = delete;

  [[nodiscard]] const char* Text() const { return text_; }

 private:
  Password() = default;
  // False when a signal came before the line.
  bool Ask(const std::string& prompt);
  void Wipe();

  char text_[256] = {};
};

}  // namespace qvx::ctl

#endif
