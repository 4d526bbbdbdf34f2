// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The updating scenes on a small disk of their own: full to the last page but 0, 1, 2, ...; without
// an inode left; read-only; under a file-size limit; without a descriptor left.
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr unsigned kPages = 24;
constexpr char kFiller[] = "/tmp/torture/filler";

class SmallDisk {
 public:
  explicit SmallDisk(const std::string& options) {
    if (mount("tmpfs", kPlace, "tmpfs", 0, ("mode=755," + options).c_str()) != 0) abort();
  }
  ~SmallDisk() { (void)umount2(kPlace, MNT_DETACH); }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;
};

// Fills the disk except for so many pages.
void Fill(unsigned pages) {
  const int file = open(kFiller, O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  static const std::string kPage(4096, 'x');
  off_t size = 0;
  while (write(file, kPage.data(), kPage.size()) > 0)
    size += 4096;
  const off_t room = static_cast<off_t>(pages) * 4096;
  (void)ftruncate(file, size > room ? size - room : 0);
  close(file);
}

void Remount(unsigned long flags) {
  if (mount(nullptr, kPlace, nullptr, MS_REMOUNT | flags, nullptr) != 0) abort();
}

void Limit(__rlimit_resource what, rlim_t value) {
  rlimit limit = {};
  (void)getrlimit(what, &limit);
  limit.rlim_cur = value;
  (void)setrlimit(what, &limit);
}

// `spoil` runs before the call and `mend` after it; `done` says whether it succeeded.
template <typename Spoil, typename Mend>
std::string Try(const Scene& scene, const std::string& options, Spoil spoil, Mend mend,
                bool* done) {
  const SmallDisk disk(options);
  std::string wrong = InChild([&]() -> std::string {
    const Judge judge(scene);
    spoil();
    const bool told = scene.act();
    mend();
    std::string first = judge.File(told, false);
    if (first.empty()) first = judge.Process(told);
    if (first.empty()) first = judge.Next();
    return (told ? "+" : "-") + first;
  });
  *done = wrong.rfind('+', 0) == 0;
  if (*done || wrong.rfind('-', 0) == 0) wrong.erase(0, 1);
  return wrong;
}

}  // namespace

Tally Disk(bool /*goal*/) {
  Tally tally{"disks that are full, limits"};
  const std::string pages = "size=" + std::to_string(kPages * 4096);
  for (const Scene& scene : UpdatingScenes()) {
    if (strncmp(scene.path, kPlace, strlen(kPlace)) != 0) continue;
    bool done = false;
    for (unsigned room = 0; !done && room <= kPages; ++room) {
      const std::string wrong = Try(
          scene, pages, [room] { Fill(room); }, [] { (void)unlink(kFiller); }, &done);
      tally.Add(wrong, std::string(scene.name) + ", pages left: " + std::to_string(room));
    }
    tally.Add(Try(
                  scene, "nr_inodes=3", [] { WriteText(kFiller, ""); },
                  [] { (void)unlink(kFiller); }, &done),
              std::string(scene.name) + ", no inode left");
    tally.Add(Try(
                  scene, pages, [] { Remount(MS_RDONLY); }, [] { Remount(0); }, &done),
              std::string(scene.name) + ", read-only");
    for (const rlim_t size : {0, 1, 100, 1000, 4096}) {
      tally.Add(Try(
                    scene, pages,
                    [size] {
                      (void)signal(SIGXFSZ, SIG_IGN);
                      Limit(RLIMIT_FSIZE, size);
                    },
                    [] { Limit(RLIMIT_FSIZE, RLIM_INFINITY); }, &done),
                std::string(scene.name) + ", file-size limit " + std::to_string(size));
    }
    for (const rlim_t most : {3, 4, 5, 6}) {
      tally.Add(Try(
                    scene, pages, [most] { Limit(RLIMIT_NOFILE, most); },
                    [] { Limit(RLIMIT_NOFILE, 1024); }, &done),
                std::string(scene.name) + ", descriptors " + std::to_string(most));
    }
  }
  return tally;
}

}  // namespace qvx::torture
