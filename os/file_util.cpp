// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/file_util.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

#include "qvxcs/status.h"

#include "base/results.h"
#include "os/stdio_file.h"

namespace qvx {
namespace {

constexpr u32 kCannotReturn = 9;

constexpr u32 kTmpNameRoom = 20;
constexpr u32 kWorkingDirectoryRoom = 256;
constexpr char kTmpDirectory[] = "/tmp";
constexpr char kTmpNamePattern[] = "/tmp/fileXXXXXX";
constexpr u32 kTmpNameDigits = 6;
constexpr u32 kTmpNameAttempts = 62 * 62 * 62;

bool IsDirectory(const astring* path) {
  struct stat status;
  return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

// A directory is never touched, not even its mode.
bool IsReplaceable(const astring* path) {
  struct stat status;
  return lstat(path, &status) == 0 && !S_ISDIR(status.st_mode);
}

bool IsMissing(const astring* path) {
  struct stat status;
  return lstat(path, &status) != 0 && errno == ENOENT;
}

// Random digits over the pattern's last six characters.
bool FillTmpName(astring* name) {
  constexpr char kDigits[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  u64 number = 0;
  if (getrandom(&number, sizeof(number), 0) != static_cast<ssize_t>(sizeof(number))) return false;
  astring* const digits = name + strlen(name) - kTmpNameDigits;
  for (u32 at = 0; at < kTmpNameDigits; ++at) {
    digits[at] = kDigits[number % (sizeof(kDigits) - 1)];
    number /= sizeof(kDigits) - 1;
  }
  return true;
}

// A name in tmpnam's form that no file has. Made here because linkers warn about tmpnam itself.
bool MakeTmpName(astring (&name)[kTmpNameRoom]) {
  if (!IsDirectory(kTmpDirectory)) return false;
  memcpy(name, kTmpNamePattern, sizeof(kTmpNamePattern));
  for (u32 attempt = 0; attempt < kTmpNameAttempts; ++attempt) {
    if (!FillTmpName(name)) return false;
    if (IsMissing(name)) return true;
  }
  return false;
}

bool IsTargetsFault(int error) {
  return error == EPERM || error == EACCES || error == EROFS || error == EBUSY || error == EISDIR;
}

}  // namespace

u32 DelFile(const astring* path) {
  if (path == nullptr || !IsReplaceable(path)) return kMinusOne;
  // A directory that a link points to keeps its mode: only the link is removed.
  if (!IsDirectory(path) && chmod(path, kFileMode) != 0) return kMinusOne;
  return unlink(path) == 0 ? SM_STATUS_SUCCESS : kMinusOne;
}

u32 GetSizeOfFile(const astring* path, u32* size) {
  if (size == nullptr) return kMinusOne;
  *size = 0;
  if (path == nullptr) return kMinusOne;
  const FilePtr file = OpenFile(path, "rb");
  if (!file) return kMinusOne;
  const s64 length = StreamSize(file.get());
  if (length < 0 || length >= 0xFFFFFFFF) return kMinusOne;
  *size = static_cast<u32>(length);
  return SM_STATUS_SUCCESS;
}

u32 GetTmpFile(const astring* directory, astring* name, u32* size) {
  if (directory == nullptr || name == nullptr || size == nullptr) return kMinusOne;
  if (*size < kTmpNameRoom) {
    *size = kTmpNameRoom;
    return SM_STATUS_BUFFER_TOO_SMALL;
  }
  astring saved[kWorkingDirectoryRoom];
  if (getcwd(saved, sizeof(saved)) == nullptr) return SM_STATUS_BUFFER_TOO_SMALL;
  if (chdir(directory) != 0) return SM_STATUS_FAILURE;
  // Deliberate: the name is in /tmp, whatever directory the caller names; that directory only has
  // to exist and allow entry. Held by FileUtil.TmpFileNameLiesInTmpWhateverTheDirectory.
  astring made[kTmpNameRoom];
  const bool found = MakeTmpName(made);
  if (found) {
    *size = static_cast<u32>(strlen(made)) + 1;
    memcpy(name, made, *size);
  }
  const bool returned = chdir(saved) == 0;
  if (!found) return SM_STATUS_FILE_CREATE_FAILED;
  return returned ? SM_STATUS_SUCCESS : kCannotReturn;
}

u32 CreateDir(const astring* path) {
  if (path == nullptr) return kMinusOne;
  // Most exist already; one that another process makes meanwhile is checked again.
  const bool there = IsDirectory(path) || mkdir(path, kDirectoryMode) == 0 || IsDirectory(path);
  return there ? SM_STATUS_SUCCESS : kMinusOne;
}

u32 DelDir(const astring* path) {
  if (path == nullptr) return kMinusOne;
  if (rmdir(path) == 0) return SM_STATUS_SUCCESS;
  if (errno == ENOTEMPTY || errno == EEXIST) return SM_STATUS_BAD_DATA;
  return errno == ENOENT ? SM_STATUS_FAILURE : kMinusOne;
}

u32 ReplaceFile(const astring* target, const astring* source) {
  if (target == nullptr || source == nullptr) return kMinusOne;
  if (!IsReplaceable(target)) return SM_STATUS_FILE_DELETE_FAILED;
  struct stat seen = {};
  Descriptor file = OpenRegular(source, O_RDONLY | O_NOFOLLOW, &seen);
  if (!file) return SM_STATUS_FILE_CREATE_FAILED;
  if (!FinishCopy(std::move(file))) return SM_STATUS_WRITE_FAILED;
  return MoveInPlace(target, source);
}

u32 MoveInPlace(const astring* target, const astring* source) {
  // Another program may have removed the target meanwhile: that stays so.
  if (!IsReplaceable(target)) return SM_STATUS_FILE_DELETE_FAILED;
  if (rename(source, target) == 0) return SM_STATUS_SUCCESS;
  return IsTargetsFault(errno) ? SM_STATUS_FILE_DELETE_FAILED : SM_STATUS_FILE_CREATE_FAILED;
}

bool HasDirectoryPart(const astring* path) {
  const astring* const slash = strrchr(path, '/');
  return slash != nullptr && slash != path;
}

HeapArray<astring> DirectoryPart(const astring* path) {
  if (!HasDirectoryPart(path)) return CopyText(".");
  const astring* const slash = strrchr(path, '/');
  const size_t length = static_cast<size_t>(slash - path);
  HeapArray<astring> directory = AllocArray<astring>(length + 1);
  if (directory) {
    memcpy(directory.get(), path, length);
    directory[length] = '\0';
  }
  return directory;
}

HeapArray<astring> PathIn(const astring* directory, const astring* name) {
  const u64 room = u64{strlen(directory)} + 1 + strlen(name) + 1;
  HeapArray<astring> path = AllocArray<astring>(room);
  if (path) (void)snprintf(path.get(), static_cast<size_t>(room), "%s/%s", directory, name);
  return path;
}

}  // namespace qvx
