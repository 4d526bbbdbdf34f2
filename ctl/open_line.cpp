// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/open_line.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "os/stdio_file.h"
#include "os/uninterrupted.h"

namespace qvx::ctl {

// The library's call reports a file that cannot be read.
bool LacksLineEnd(const std::string& path) {
  struct stat status {};
  const Descriptor file = OpenRegular(path.c_str(), O_RDONLY, &status);
  if (!file || status.st_size == 0) return false;
  char last = '\n';
  const ssize_t got =
      Uninterrupted([&] { return pread(file.Number(), &last, 1, status.st_size - 1); });
  return got == 1 && last != '\n';
}

Failure OpenLineFailure(const std::string& what) {
  return {kNo, what + ": " + kOpenLineText + "; `echo >>FILE` ends it"};
}

}  // namespace qvx::ctl
