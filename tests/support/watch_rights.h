// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_WATCH_RIGHTS_H
#define QVX_TESTS_SUPPORT_WATCH_RIGHTS_H

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/kill_at_stop.h"

namespace qvx::test {

// Watches the regular files that a call makes in one directory, from their creation on.
class RightsWatch {
 public:
  explicit RightsWatch(std::string directory) : directory_(std::move(directory)) {
    for (const struct stat& file : FilesNow())
      known_[file.st_ino] = true;
  }

  // Notes what everyone may do with each new file now.
  void Look() {
    for (const struct stat& file : FilesNow()) {
      if (known_.count(file.st_ino) == 0) seen_[file.st_ino].push_back(file);
    }
  }

  // How many files were made.
  [[nodiscard]] size_t Count() const { return seen_.size(); }

  // Each moment at which somebody had more rights than in the end, one a line; "" for none.
  [[nodiscard]] std::string Faults() const {
    std::string faults;
    for (const auto& [inode, moments] : seen_) {
      for (const struct stat& moment : moments) {
        if (!IsWithin(moment, moments.back())) {
          faults += std::to_string(inode) + " had mode " + Octal(moment.st_mode) + ", in the end " +
                    Octal(moments.back().st_mode) + "\n";
        }
      }
    }
    return faults;
  }

 private:
  std::vector<struct stat> FilesNow() const {
    std::vector<struct stat> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory_, error)) {
      struct stat status = {};
      if (lstat(entry.path().c_str(), &status) == 0 && S_ISREG(status.st_mode)) {
        files.push_back(status);
      }
    }
    return files;
  }

  static std::string Octal(mode_t mode) {
    char text[16];
    (void)snprintf(text, sizeof(text), "%o", mode & 07777);
    return text;
  }

  // The maker's own rights are no matter while the file is to have another owner.
  static bool IsWithin(const struct stat& moment, const struct stat& end) {
    const mode_t others = end.st_mode & 7;
    const mode_t group = moment.st_gid == end.st_gid ? end.st_mode >> 3 & 7 : others;
    const mode_t owner = moment.st_uid == end.st_uid ? end.st_mode >> 6 & 7 : mode_t{7};
    return ((moment.st_mode & 7) & ~others) == 0 && ((moment.st_mode >> 3 & 7) & ~group) == 0 &&
           ((moment.st_mode >> 6 & 7) & ~owner) == 0;
  }

  std::string directory_;
  std::map<ino_t, bool> known_;
  std::map<ino_t, std::vector<struct stat>> seen_;
};

// Runs `work` in another process under umask 0, which is watched before and after each of its
// system calls; `work` returns whether it succeeded.
template <typename Work>
RightsWatch WatchRights(const std::string& directory, Work work) {
  RightsWatch watch(directory);
  const int status = RunStepwise(
      [&work] {
        (void)umask(0);
        return work() ? 0 : 8;
      },
      [&watch] {
        watch.Look();
        return true;
      });
  if (status != 0) abort();
  watch.Look();
  return watch;
}

}  // namespace qvx::test

#endif
