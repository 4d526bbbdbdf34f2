// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// The updating scenes on a small disk of their own: with 0, 1, 2, ... pages left; without
// an inode left; read-only; with a file that may not be changed, or only be extended; under a
// file-size limit, with and without its signal; without a descriptor left.
#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr unsigned kPages = 48;

// Over the folder of a scene's file while this lives.
class SmallDisk {
 public:
  SmallDisk(const Scene& scene, const std::string& options) : folder_(FolderOf(scene)) {
    const char* const folder = folder_.c_str();
    if (mount("tmpfs", folder, "tmpfs", 0, ("mode=755," + options).c_str()) != 0) abort();
  }
  ~SmallDisk() { (void)umount2(folder_.c_str(), MNT_DETACH); }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

 private:
  std::string folder_;
};

std::string FillerOf(const Scene& scene) { return FolderOf(scene) + "/filler"; }

// Fills the disk except for so many pages.
void Fill(const Scene& scene, unsigned pages) {
  const int file = open(FillerOf(scene).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  static const char kPage[4096] = {};
  off_t size = 0;
  while (write(file, kPage, sizeof(kPage)) > 0)
    size += 4096;
  const off_t room = static_cast<off_t>(pages) * 4096;
  (void)ftruncate(file, size > room ? size - room : 0);
  close(file);
}

void Remount(const Scene& scene, unsigned long flags) {
  if (mount(nullptr, FolderOf(scene).c_str(), nullptr, MS_REMOUNT | flags, nullptr) != 0) abort();
}

void Limit(__rlimit_resource what, rlim_t value) {
  rlimit limit = {};
  (void)getrlimit(what, &limit);
  limit.rlim_cur = value;
  (void)setrlimit(what, &limit);
}

// `spoil` runs before the call and `mend` after it; `done` says whether it succeeded.
template <typename Spoil, typename Mend>
std::string TryHere(const Scene& scene, Spoil spoil, Mend mend, bool* done) {
  std::string wrong = InChild([&]() -> std::string {
    const Judge judge(scene, Start::kWarm);
    spoil();
    const qvx_u32 status = scene.act();
    mend();
    std::string first = judge.File(status, Torn::kNo);
    if (first.empty()) first = judge.Process(status);
    if (first.empty()) first = judge.Next();
    return (status == SM_STATUS_SUCCESS ? "+" : "-") + first;
  });
  *done = wrong.rfind('+', 0) == 0;
  if (*done || wrong.rfind('-', 0) == 0) wrong.erase(0, 1);
  return wrong;
}

template <typename Spoil, typename Mend>
std::string Try(const Scene& scene, const std::string& options, Spoil spoil, Mend mend,
                bool* done) {
  const SmallDisk disk(scene, options);
  return TryHere(scene, spoil, mend, done);
}

const std::string kSmall = "size=" + std::to_string(kPages * 4096);

// Page by page, until the call succeeds.
void FullDisk(const Scene& scene, Tally* tally) {
  bool done = false;
  for (unsigned room = 0; !done && room <= kPages; ++room) {
    const std::string wrong = Try(
        scene, kSmall, [&] { Fill(scene, room); },
        [&scene] { (void)unlink(FillerOf(scene).c_str()); }, &done);
    tally->Add(wrong, scene.name + ", pages left: " + std::to_string(room));
  }
}

void NoInode(const Scene& scene, Tally* tally) {
  bool done = false;
  tally->Add(Try(
                 scene, "nr_inodes=4",
                 [&scene] {
                   for (const char* name : {"1", "2", "3"}) {
                     close(open((FillerOf(scene) + name).c_str(), O_CREAT | O_CLOEXEC, 0600));
                   }
                 },
                 [&scene] {
                   for (const char* name : {"1", "2", "3"}) {
                     (void)unlink((FillerOf(scene) + name).c_str());
                   }
                 },
                 &done),
             scene.name + ", no inode left");
}

void ReadOnly(const Scene& scene, Tally* tally) {
  bool done = false;
  tally->Add(Try(
                 scene, kSmall, [&scene] { Remount(scene, MS_RDONLY); },
                 [&scene] { Remount(scene, 0); }, &done),
             scene.name + ", read-only");
}

void LimitedSize(const Scene& scene, Tally* tally) {
  bool done = false;
  for (const unsigned size : {0U, 1U, 100U, 1000U, 4096U, 10000U}) {
    tally->Add(Try(
                   scene, kSmall,
                   [size] {
                     (void)signal(SIGXFSZ, SIG_IGN);
                     Limit(RLIMIT_FSIZE, size);
                   },
                   [] { Limit(RLIMIT_FSIZE, RLIM_INFINITY); }, &done),
               scene.name + ", file-size limit " + std::to_string(size));
  }
}

// The limit's signal ends the process: what is left is judged by another one.
void DeadlySize(const Scene& scene, Tally* tally) {
  for (const unsigned size : {1U, 1000U}) {
    const SmallDisk disk(scene, kSmall);
    Judge judge(scene);
    (void)InChild([&scene, size] {
      Limit(RLIMIT_CORE, 0);
      Limit(RLIMIT_FSIZE, size);
      (void)scene.act();
      return std::string();
    });
    std::string wrong = judge.File(SM_STATUS_FAILURE, Torn::kYes);
    if (wrong.empty()) {
      wrong = InChild([&judge] {
        judge.BeginHere();
        return judge.Next();
      });
    }
    tally->Add(wrong, scene.name + ", deadly file-size limit " + std::to_string(size));
  }
}

// From the first descriptor on, until the call succeeds.
void NoDescriptor(const Scene& scene, Tally* tally) {
  bool done = false;
  for (rlim_t most = 3; !done && most < 24; ++most) {
    const std::string wrong = Try(
        scene, kSmall, [most] { Limit(RLIMIT_NOFILE, most); }, [] { Limit(RLIMIT_NOFILE, 1024); },
        &done);
    tally->Add(wrong, scene.name + ", descriptors " + std::to_string(most));
  }
}

void SetFlag(const char* path, int flag) {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  if (file < 0) return;  // nothing is there yet
  if (ioctl(file, FS_IOC_SETFLAGS, &flag) != 0) abort();
  close(file);
}

void Flagged(const Scene& scene, Tally* tally) {
  struct Flag {
    const char* name;
    int flag;
  };
  for (const Flag& each : {Flag{"immutable", FS_IMMUTABLE_FL}, Flag{"append-only", FS_APPEND_FL}}) {
    bool done = false;
    const SmallDisk disk(scene, kSmall);
    tally->Add(
        TryHere(
            scene, [&] { SetFlag(scene.path, each.flag); }, [&] { SetFlag(scene.path, 0); }, &done),
        scene.name + ", " + each.name);
  }
}

}  // namespace

Tally Disk(Depth depth) {
  Tally tally{"full and closed disks, limits"};
  unsigned turn = 0;
  for (const Scene& scene : UpdatingScenes()) {
    const bool all = depth != Depth::kSample;
    ++turn;
    if (all || turn % 3 == 0) FullDisk(scene, &tally);
    if (all || turn % 3 == 1) NoDescriptor(scene, &tally);
    if (all || turn % 3 == 2) LimitedSize(scene, &tally);
    NoInode(scene, &tally);
    ReadOnly(scene, &tally);
    DeadlySize(scene, &tally);
    Flagged(scene, &tally);
  }
  return tally;
}

}  // namespace qvx::torture
