// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_CONFIG_INI_CASE_H
#define QVX_TESTS_CONFIG_INI_CASE_H

#include <fcntl.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "paths/layout.h"
#include "support/files.h"
#include "support/processes.h"

namespace qvx::test {

inline bool TakeRecordLock() {
  const int file = open(kIPCFilePath, O_RDWR | O_CLOEXEC);
  struct flock lock = {};
  lock.l_type = F_WRLCK;
  lock.l_whence = SEEK_SET;
  return file >= 0 && fcntl(file, F_SETLK, &lock) == 0;
}

// Whether another process could take the suite's lock now.
inline bool LockIsFree() {
  return InChild([] { return TakeRecordLock() ? 7 : 8; }) == 7;
}

// Another process that holds the suite's lock, until it is killed or for as long as it is told.
class TimedLockHolder {
 public:
  explicit TimedLockHolder(unsigned microseconds = 0) {
    int ready[2];
    if (pipe2(ready, O_CLOEXEC) != 0) {
      abort();
    }
    child_ = fork();
    if (child_ == 0) {
      (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
      const char taken = TakeRecordLock() ? 'y' : 'n';
      const bool told = write(ready[1], &taken, 1) == 1;
      Hold(microseconds);
      _exit(told ? 0 : 1);
    }
    char taken = 'n';
    if (read(ready[0], &taken, 1) != 1 || taken != 'y') {
      abort();
    }
    (void)close(ready[0]);
    (void)close(ready[1]);
  }
  ~TimedLockHolder() { Kill(); }
  TimedLockHolder(const TimedLockHolder&) = delete;
  TimedLockHolder& operator=(const TimedLockHolder&) = delete;

  void Kill() {
    if (child_ > 0) {
      (void)kill(child_, SIGKILL);
      (void)waitpid(child_, nullptr, 0);
      child_ = 0;
    }
  }

 private:
  static void Hold(unsigned microseconds) {
    if (microseconds == 0) {
      for (;;) {
        (void)pause();
      }
    }
    const timespec pause = {0, static_cast<long>(microseconds) * 1000};
    (void)nanosleep(&pause, nullptr);
  }

  pid_t child_ = 0;
};

// A disk of so many pages of 4,096 bytes, mounted over /tmp/disk.
class SmallDisk {
 public:
  explicit SmallDisk(unsigned pages) {
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

  static void MakeReadOnly() {
    if (mount(nullptr, kPlace, nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0) {
      abort();
    }
  }

  static std::string Path(const std::string& name) { return std::string(kPlace) + "/" + name; }

 private:
  static constexpr char kPlace[] = "/tmp/disk";
};

}  // namespace qvx::test

#endif
