// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_IMMUTABLE_H
#define QVX_TESTS_SUPPORT_IMMUTABLE_H

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "support/files.h"

namespace qvx::test {

// A file that not even root can change, rename over or remove while this lives; with FS_APPEND_FL
// one that can only be appended to.
class Immutable {
 public:
  explicit Immutable(std::string path, int flag = FS_IMMUTABLE_FL) : path_(std::move(path)) {
    RequireSandbox();
    SetFlag(flag);
  }
  ~Immutable() { SetFlag(0); }
  Immutable(const Immutable&) = delete;
  Immutable& operator=(const Immutable&) = delete;

 private:
  void SetFlag(int flag) const {
    const int file = open(path_.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0 || ioctl(file, FS_IOC_SETFLAGS, &flag) != 0) {
      abort();
    }
    close(file);
  }

  std::string path_;
};

}  // namespace qvx::test

#endif
