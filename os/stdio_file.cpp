// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/stdio_file.h"

#include <fcntl.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <utility>

#include "os/file_id.h"

namespace qvx {
namespace {

// The streams that are open, in any order. A child of fork that ends by `exit` would flush what
// another thread of the parent was writing, or move the shared descriptor back to that thread's
// reading position.
constexpr size_t kStreams = 256;
constinit std::array<std::atomic<FILE*>, kStreams> streams = {};

void Exchange(FILE* from, FILE* to) {
  for (std::atomic<FILE*>& stream : streams) {
    FILE* expected = from;
    if (stream.load(std::memory_order_relaxed) == from &&
        stream.compare_exchange_strong(expected, to)) {
      return;
    }
  }
}

void Note(FILE* stream) { Exchange(nullptr, stream); }

constexpr int kAlways = O_NONBLOCK | O_NOCTTY;
constexpr mode_t kNewFileMode = 0664;
constexpr mode_t kCopyMode = 0600;
constexpr uid_t kAnyOwner = static_cast<uid_t>(-1);

// What is written to is truncated only after it has proved regular.
int OpenFlags(const astring* mode) { return mode[0] == 'w' ? O_WRONLY | O_CREAT : O_RDONLY; }

bool IsRegular(int file, struct stat* seen) {
  if (fstat(file, seen) != 0) return false;
  if (S_ISREG(seen->st_mode)) return true;
  errno = EINVAL;
  return false;
}

// Empty with errno set, and the descriptor closed, when there is no stream.
FilePtr StreamOver(Descriptor file, const astring* mode) {
  if (!file) return nullptr;
  FilePtr stream(fdopen(file.Number(), mode));
  if (stream) Note(stream.get());
  if (stream) (void)file.Release();
  return stream;
}

// False when the name belongs to `replaced` itself, whatever other names it has.
bool ClearName(const astring* path, const struct stat* replaced) {
  struct stat old = {};
  if (lstat(path, &old) != 0) return true;
  if (replaced != nullptr && FileIdOf(old) == FileIdOf(*replaced)) return false;
  (void)unlink(path);
  return true;
}

// A user who may not give the file away may still give it one of the user's own groups.
void GiveOwner(int file, const struct stat& replaced) {
  if (fchown(file, replaced.st_uid, replaced.st_gid) == 0) return;
  [[maybe_unused]] const int refused = fchown(file, kAnyOwner, replaced.st_gid);
}

}  // namespace

Descriptor OpenRegular(const astring* path, int flags, struct stat* seen) {
  Descriptor file = OpenDescriptor(path, flags | kAlways, kNewFileMode);
  if (!file || !IsRegular(file.Number(), seen)) return {};
  if ((flags & O_CREAT) != 0) (void)fchmod(file.Number(), kFileMode);
  return file;
}

Descriptor OpenCopy(const astring* path, const struct stat* replaced) {
  constexpr int kFlags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | kAlways;
  Descriptor copy = OpenDescriptor(path, kFlags, kCopyMode);
  // Only a writer that was killed has left the name.
  if (!copy && errno == EEXIST && ClearName(path, replaced)) {
    copy = OpenDescriptor(path, kFlags, kCopyMode);
  }
  if (copy && replaced != nullptr) GiveOwner(copy.Number(), *replaced);
  return copy;
}

bool FinishCopy(Descriptor copy) {
  (void)fchmod(copy.Number(), kFileMode);
  return fsync(copy.Number()) == 0 && copy.Close();
}

int CloseNoted(FILE* file) {
  Exchange(file, nullptr);
  return fclose(file);
}

void DropStreamsInChild() {
  for (std::atomic<FILE*>& stream : streams) {
    if (FILE* const file = stream.exchange(nullptr)) __fpurge(file);
  }
}

FilePtr OpenFile(const astring* path, const astring* mode) {
  struct stat seen = {};
  Descriptor file = OpenRegular(path, OpenFlags(mode), &seen);
  if (file && mode[0] == 'w' && seen.st_size != 0 && ftruncate(file.Number(), 0) != 0) return {};
  return StreamOver(std::move(file), mode);
}

bool CloseWritten(FilePtr file) {
  const bool good = fflush(file.get()) == 0 && ferror(file.get()) == 0;
  return CloseNoted(file.release()) == 0 && good;
}

s64 StreamSize(FILE* file) {
  const off_t position = ftello(file);
  if (position < 0 || fseeko(file, 0, SEEK_END) != 0) return -1;
  const off_t size = ftello(file);
  if (fseeko(file, position, SEEK_SET) != 0) return -1;
  return size;
}

}  // namespace qvx
