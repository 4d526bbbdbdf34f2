// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_FILE_ID_H
#define QVX_OS_FILE_ID_H

#include <sys/stat.h>

#include "qvxcs/types.h"

namespace qvx {

// Identifies a file, whatever its names.
struct FileId {
  u64 device;
  u64 inode;
};

inline bool operator==(const FileId& one, const FileId& other) {
  return one.device == other.device && one.inode == other.inode;
}

inline FileId FileIdOf(const struct stat& status) { return {status.st_dev, status.st_ino}; }

}  // namespace qvx

#endif
