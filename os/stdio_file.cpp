// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/stdio_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace qvx {
namespace {

constexpr int kAlways = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
constexpr mode_t kNewFileMode = 0666;

int OpenFlags(const astring* mode) {
  const bool both = strchr(mode, '+') != nullptr;
  switch (mode[0]) {
    case 'r':
      return both ? O_RDWR : O_RDONLY;
    case 'w':
      // Truncated only after the file has proved regular.
      return (both ? O_RDWR : O_WRONLY) | O_CREAT;
    default:
      return (both ? O_RDWR : O_WRONLY) | O_CREAT | O_APPEND;
  }
}

bool MakeReady(int file, const astring* mode) {
  struct stat status = {};
  if (fstat(file, &status) != 0) {
    return false;
  }
  if (!S_ISREG(status.st_mode)) {
    errno = EINVAL;
    return false;
  }
  return mode[0] != 'w' || status.st_size == 0 || ftruncate(file, 0) == 0;
}

FilePtr StreamOver(int file, const astring* mode) {
  if (file < 0) {
    return nullptr;
  }
  FILE* const stream = MakeReady(file, mode) ? fdopen(file, mode) : nullptr;
  if (stream == nullptr) {
    const int reason = errno;
    close(file);
    errno = reason;
  }
  return FilePtr(stream);
}

// Whether the path is the last name of the stream's file.
bool IsLastNameOf(FILE* stream, const astring* path) {
  struct stat opened = {};
  struct stat named = {};
  return fstat(fileno(stream), &opened) == 0 && lstat(path, &named) == 0 &&
         opened.st_dev == named.st_dev && opened.st_ino == named.st_ino && opened.st_nlink == 1;
}

}  // namespace

FilePtr OpenFile(const astring* path, const astring* mode) {
  return StreamOver(open(path, OpenFlags(mode) | kAlways, kNewFileMode), mode);
}

FilePtr OpenTemporary(const astring* path, FILE* source) {
  if (IsLastNameOf(source, path)) return nullptr;
  (void)unlink(path);
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
  return StreamOver(open(path, kFlags | kAlways, kNewFileMode), "w");
}

bool CloseWritten(FilePtr file) {
  const bool good = fflush(file.get()) == 0 && ferror(file.get()) == 0;
  return fclose(file.release()) == 0 && good;
}

s64 StreamSize(FILE* file) {
  const off_t position = ftello(file);
  if (position < 0 || fseeko(file, 0, SEEK_END) != 0) {
    return -1;
  }
  const off_t size = ftello(file);
  if (fseeko(file, position, SEEK_SET) != 0) {
    return -1;
  }
  return size;
}

}  // namespace qvx
