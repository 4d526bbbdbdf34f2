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
#include <utility>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kControl[] = "/run/torture-loop-control";
constexpr unsigned kMisc = 10;
constexpr unsigned kControlMinor = 237;
constexpr unsigned kLoop = 7;
constexpr int kTries = 50;

struct Device {
  std::string path;
  int file = -1;
};

// The image's device goes with its last user, however that ends.
bool Attach(int device, int image) {
  loop_config config = {};
  config.fd = static_cast<uint32_t>(image);
  config.info.lo_flags = LO_FLAGS_AUTOCLEAR;
  return ioctl(device, LOOP_CONFIGURE, &config) == 0;
}

// The sandbox has no such devices of its own. Another process may take the free one first.
Device TakeDevice(int image) {
  (void)mknod(kControl, S_IFCHR | 0600, makedev(kMisc, kControlMinor));
  const int control = open(kControl, O_RDWR | O_CLOEXEC);
  Device taken;
  for (int tries = 0; control >= 0 && tries < kTries && taken.file < 0; ++tries) {
    const int number = ioctl(control, LOOP_CTL_GET_FREE);
    if (number < 0) break;
    const std::string path = "/run/torture-loop" + std::to_string(number);
    (void)mknod(path.c_str(), S_IFBLK | 0600, makedev(kLoop, static_cast<unsigned>(number)));
    const int device = open(path.c_str(), O_RDWR | O_CLOEXEC);
    if (device >= 0 && Attach(device, image)) {
      taken = {path, device};
    } else if (device >= 0) {
      close(device);
    }
  }
  if (control >= 0) close(control);
  return taken;
}

}  // namespace

LoopDisk::LoopDisk(const std::string& image, std::string folder, const char* options)
    : folder_(std::move(folder)) {
  const int file = open(image.c_str(), O_RDWR | O_CLOEXEC);
  if (file < 0) return;
  const Device device = TakeDevice(file);
  close(file);
  if (device.file < 0) return;
  mounted_ = mount(device.path.c_str(), folder_.c_str(), "ext4", 0, options) == 0;
  close(device.file);
}

LoopDisk::~LoopDisk() {
  if (mounted_) (void)umount2(folder_.c_str(), MNT_DETACH);
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
