// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "torture/loop_disk.h"

#include <fcntl.h>
#include <linux/loop.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cstdlib>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kControl[] = "/run/torture-loop-control";
constexpr unsigned kMisc = 10;
constexpr unsigned kControlMinor = 237;
constexpr unsigned kLoop = 7;
constexpr int kTries = 50;

// The sandbox has no such devices of its own. Another process may take the free one first.
std::string TakeDevice(int image) {
  (void)mknod(kControl, S_IFCHR | 0600, makedev(kMisc, kControlMinor));
  const int control = open(kControl, O_RDWR | O_CLOEXEC);
  std::string taken;
  for (int tries = 0; control >= 0 && tries < kTries && taken.empty(); ++tries) {
    const int number = ioctl(control, LOOP_CTL_GET_FREE);
    if (number < 0) break;
    const std::string path = "/run/torture-loop" + std::to_string(number);
    (void)mknod(path.c_str(), S_IFBLK | 0600, makedev(kLoop, static_cast<unsigned>(number)));
    const int device = open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (device >= 0 && ioctl(device, LOOP_SET_FD, image) == 0) taken = path;
    if (device >= 0) close(device);
  }
  if (control >= 0) close(control);
  return taken;
}

void Detach(const std::string& path) {
  const int device = open(path.c_str(), O_RDWR | O_CLOEXEC);
  if (device < 0) return;
  (void)ioctl(device, LOOP_CLR_FD);
  close(device);
}

}  // namespace

LoopDisk::LoopDisk(std::string image, const char* options) : image_(std::move(image)) {
  const int file = open(image_.c_str(), O_RDWR | O_CLOEXEC);
  if (file < 0) return;
  device_ = TakeDevice(file);
  close(file);
  mounted_ = !device_.empty() && mount(device_.c_str(), kPlace, "ext4", 0, options) == 0;
}

LoopDisk::~LoopDisk() {
  if (mounted_) (void)umount2(kPlace, MNT_DETACH);
  if (!device_.empty()) Detach(device_);
}

bool MakeImage(const std::string& image) {
  const std::string command = "truncate -s 8M " + image + " && mkfs.ext4 -q -F -J size=1 " +
                              "-O ^resize_inode -m 0 " + image + " 2>/dev/null";
  return system(command.c_str()) == 0;
}

void CopyImage(const std::string& image, const std::string& copy) {
  // Nothing was written while it was read, if it is the same when it is read again.
  std::string text = ReadText(image);
  for (std::string again = ReadText(image); again != text; again = ReadText(image)) {
    text.swap(again);
  }
  WriteText(copy, text);
}

}  // namespace qvx::torture
