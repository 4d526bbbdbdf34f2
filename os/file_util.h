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

// Sets the mode of `source`, flushes it to disk and moves it to `target`'s place. The target must
// exist; a process that opens it meanwhile finds the whole old file or the whole new one, never
// none. A failure leaves the target and its mode as they were.
// SM_STATUS_FILE_DELETE_FAILED: the target is missing, a directory or protected.
// SM_STATUS_FILE_CREATE_FAILED: the source could not be moved. SM_STATUS_WRITE_FAILED: the source's
// data could not be flushed to disk.
// Writers finish a copy through the descriptor that wrote it and call MoveInPlace.
// An internal service without a caller in the library, held by its tests.
u32 ReplaceFile(const astring* target, const astring* source);

// Only the move, of a finished copy. A target that has gone meanwhile is missing here, too.
u32 MoveInPlace(const astring* target, const astring* source);

// Whether the path has anything before its last "/".
bool HasDirectoryPart(const astring* path);

// The part of a path before its last "/"; "." when there is none or nothing comes before it.
// Empty without enough memory.
HeapArray<astring> DirectoryPart(const astring* path);

// "directory/name". Empty without enough memory.
HeapArray<astring> PathIn(const astring* directory, const astring* name);

}  // namespace qvx

#endif
