// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_ACCESS_ROLE_MAP_STREAM_H
#define QVX_ACCESS_ROLE_MAP_STREAM_H

#include <sys/types.h>

#include <string>

#include "os/kept_descriptor.h"

namespace qvx {

// The role map file as lines of 7-bit text. It behaves as a wide input stream of the classic locale
// does, but only a regular file opens, its descriptor is 3 or above and close-on-exec, and a file
// that the host has opened under the same number is never read: the role map then ends there. Once
// the stream has failed, it reads nothing until a file has been opened.
class RoleMapStream {
 public:
  // Fails while a file is open; that file then stays.
  void Open(const std::string& path);
  bool IsOpen() const { return static_cast<bool>(file_); }

  // Reads nothing more of the file that is open.
  void Fail() { failed_ = true; }

  // The next line without its newline. False, and failed, when the file ends first: a last line
  // without a newline is no line. A byte above 0x7F ends the file.
  bool GetLine(std::wstring& line);

 private:
  bool FillBlock();
  char TakeFromBlock(std::wstring& line);

  KeptDescriptor file_;
  bool failed_ = false;
  off_t position_ = 0;  // of what follows the block
  size_t next_ = 0;     // in the block
  size_t end_ = 0;
  char block_[4096];
};

}  // namespace qvx

#endif
