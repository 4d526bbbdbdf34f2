// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_STDIO_FILE_H
#define QVX_OS_STDIO_FILE_H

#include <sys/stat.h>

#include <cstdio>
#include <memory>

#include "qvxcs/types.h"

#include "os/descriptor.h"

namespace qvx {

// The mode of the library's files: owner and group write, others read.
inline constexpr mode_t kFileMode = 01664;

// Opens a regular file without waiting for a FIFO's other end, and stores what fstat saw of it in
// `seen`. With O_CREAT a missing file is made 0664 less the umask, and the file's mode is set to
// kFileMode through the descriptor as soon as it is open, so that nobody has more rights meanwhile;
// a mode that cannot be set is ignored. O_TRUNC must not be passed. Empty with errno set when the
// file cannot be opened or is no regular file (EINVAL).
Descriptor OpenRegular(const astring* path, int flags, struct stat* seen);

// Makes the file that will take the place of `replaced` (null when there is none yet), for writing:
// 0600 less the umask, with the owner and group of `replaced` where the process may set them. An
// old file or link of this name is unlinked first. Empty when the name is a name of `replaced`
// itself, which then stays, and when the copy cannot be made.
Descriptor OpenCopy(const astring* path, const struct stat* replaced);

// Sets a copy's mode, flushes it to disk and closes it; false with errno set when the flush or the
// close failed. A mode that cannot be set is ignored.
bool FinishCopy(Descriptor copy);

// Closes a stream of this file; the result of fclose.
int CloseNoted(FILE* file);

// Called in the child of a fork, which leaves alone what the parent's other threads were reading or
// writing.
void DropStreamsInChild();

struct FileCloser {
  void operator()(FILE* file) const { (void)CloseNoted(file); }
};

using FilePtr = std::unique_ptr<FILE, FileCloser>;

// OpenRegular as a stream. `mode` is "r" or "w" (a "b" is accepted).
FilePtr OpenFile(const astring* path, const astring* mode);

// Flushes and closes; false when any write, the flush or the close failed.
bool CloseWritten(FilePtr file);

// The stream's length, its position restored; -1 when it cannot be determined.
s64 StreamSize(FILE* file);

}  // namespace qvx

#endif
