// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_SMALL_DISK_H
#define QVX_TESTS_SUPPORT_SMALL_DISK_H

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "support/files.h"

namespace qvx::test {

// A disk of so many pages of 4,096 bytes, mounted over /tmp/disk.
class SmallDisk {
 public:
  explicit SmallDisk(unsigned pages = 16) {
    RequireSandbox();
    (void)mkdir(kPlace, 0755);
    const std::string size = "mode=755,size=" + std::to_string(pages * 4096);
    if (mount("tmpfs", kPlace, "tmpfs", 0, size.c_str()) != 0) {
      abort();
    }
  }
  ~SmallDisk() { (void)umount2(kPlace, MNT_DETACH); }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  static std::string Path(const std::string& name) { return std::string(kPlace) + "/" + name; }

  static void Fill() {
    const int file = open(kFiller, O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    const std::string page(4096, 'x');
    while (write(file, page.data(), page.size()) > 0) {
    }
    close(file);
  }
  static void MakeRoom() { (void)unlink(kFiller); }
  static void MakeReadOnly() {
    if (mount(nullptr, kPlace, nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
      abort();
    }
  }

 private:
  static constexpr char kPlace[] = "/tmp/disk";
  static constexpr char kFiller[] = "/tmp/disk/filler";
};

}  // namespace qvx::test

#endif
