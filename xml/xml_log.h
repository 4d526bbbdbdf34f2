// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_XML_LOG_H
#define QVX_XML_XML_LOG_H

#include "qvxcs/command_log.h"

#include "xml/log_backup.h"  // GetBackupXMLLogPathFileName

namespace qvx {

// The size at which the logs that the library writes to by itself move to their backup.
inline constexpr u32 kDefaultMaxLogSize = QVX_CMDLOG_MAX_SIZE;

u32 ForceXMLLogExists(const astring* path, const astring* user, const astring* source);
u32 ClearXMLLog(const astring* path, const astring* user, const astring* source);
u32 AppendToXMLLog(const astring* path, u16 type, u32 id, const astring* user,
                   const astring* source, const astring* description, const void* data,
                   u32 dataSize, u32 maxSize);

// Unlinks a log under the file lock; -1 when the unlink fails.
u32 DeleteLogFile(const astring* path);

// Makes the directory that the path names before its last "/", one level.
u32 CreateLogDir(const astring* path);

}  // namespace qvx

#endif
