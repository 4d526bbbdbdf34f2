// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_LOG_BACKUP_H
#define QVX_XML_LOG_BACKUP_H

#include "qvxcs/types.h"

namespace qvx {

u32 GetBackupXMLLogPathFileName(const astring* path, astring* buffer, u32* size);

// Moves a log that an entry of this size would bring to the maximum over its backup. 0 when it was
// moved; otherwise log and old backup are as they were, unless the move itself failed.
u32 BackupLogFile(const astring* path, u32 maxSize, u32 entrySize);

// Whether an entry of this size brings a log of that size to the maximum.
inline bool ReachesMaximum(s64 size, u32 maxSize, u32 entrySize) {
  return size + s64{entrySize} >= s64{maxSize};
}

// Stores in `backedUp` whether the log had reached the maximum and was moved.
void CheckBackupLogFile(const astring* path, u32 maxSize, u32 entrySize, booln* backedUp);

}  // namespace qvx

#endif
