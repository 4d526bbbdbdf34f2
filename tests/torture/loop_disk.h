// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TORTURE_LOOP_DISK_H
#define QVX_TESTS_TORTURE_LOOP_DISK_H

#include <string>

namespace qvx::torture {

// An ext4 file system in an image, mounted over a folder while this lives.
class LoopDisk {
 public:
  LoopDisk(const std::string& image, std::string folder, const char* options);
  ~LoopDisk();
  LoopDisk(const LoopDisk&) = delete;
  LoopDisk& operator=(const LoopDisk&) = delete;
  // Whether the machine has such disks.
  explicit operator bool() const { return mounted_; }

 private:
  std::string folder_;
  bool mounted_ = false;
};

// An empty file system; false where there is no mkfs.ext4.
bool MakeImage(const std::string& image);
// The image as the disk has it at one moment; what the system has not written yet is not in it.
void CopyImage(const std::string& image, const std::string& copy);

}  // namespace qvx::torture

#endif
