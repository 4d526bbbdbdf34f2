// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_FILE_UTIL_H
#define QVX_OS_FILE_UTIL_H

#include <sys/types.h>

#include "qvxcs/types.h"

#include "base/heap.h"
#include "os/stdio_file.h"

namespace qvx {

inline constexpr mode_t kDirectoryMode = 0755;

u32 DelFile(const astring* path);
u32 GetSizeOfFile(const astring* path, u32* size);
u32 GetTmpFile(const astring* directory, astring* name, u32* size);
u32 CreateDir(const astring* path);
u32 DelDir(const astring* path);

// Gives `source` its mode, flushes it to disk and puts it in `target`'s place. The target must
// exist; whoever opens it meanwhile finds the old file or the new one, whole, never none. A failure
// leaves the target as it was, its mode too.
// SM_STATUS_FILE_DELETE_FAILED: the target is missing, a directory or protected.
// SM_STATUS_FILE_CREATE_FAILED: the source could not be moved. SM_STATUS_WRITE_FAILED: the source's
// data could not be brought to the disk.
// An internal service without a caller in the library, held by its tests: writers finish a copy
// through the descriptor that wrote it and call MoveInPlace.
u32 ReplaceFile(const astring* target, const astring* source);

// The move alone, of a finished copy over a target that the caller has opened before.
u32 MoveInPlace(const astring* target, const astring* source);

// Whether something stands before the path's last "/".
bool HasDirectoryPart(const astring* path);

// The part of a path before its last "/"; "." when there is none or nothing stands before it.
// Empty without memory.
HeapArray<astring> DirectoryPart(const astring* path);

// "directory/name". Empty without memory.
HeapArray<astring> PathIn(const astring* directory, const astring* name);

}  // namespace qvx

#endif
