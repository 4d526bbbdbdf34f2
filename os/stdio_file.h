// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_STDIO_FILE_H
#define QVX_OS_STDIO_FILE_H

#include <cstdio>
#include <memory>

#include "qvxcs/types.h"

namespace qvx {

struct FileCloser {
  void operator()(FILE* file) const { (void)fclose(file); }
};

using FilePtr = std::unique_ptr<FILE, FileCloser>;

// Opens a regular file, close-on-exec, never waiting for a FIFO's other end. `mode` is one of
// "r", "r+", "w", "w+", "a" (a "b" is accepted). Null with errno set when the file cannot be opened
// or is no regular file (EINVAL); a file that does not exist and is not created gives ENOENT.
FilePtr OpenFile(const astring* path, const astring* mode);

// A new file of this name for writing, to which `source` is to be copied: an old one is unlinked
// first, a link is not followed. Null when the old one is the source itself, without another name:
// it stays.
FilePtr OpenTemporary(const astring* path, FILE* source);

// Flushes and closes; false when any write, the flush or the close failed.
bool CloseWritten(FilePtr file);

// The stream's length, its position restored; -1 when it cannot be told.
s64 StreamSize(FILE* file);

}  // namespace qvx

#endif
