// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_LOG_MEND_H
#define QVX_XML_LOG_MEND_H

#include "qvxcs/types.h"

#include "os/torn_log_notes.h"
#include "xml/log_file.h"

namespace qvx {

// Both are called within a hold of the file lock.

// Mends the log where a kill within a noted write has cut it, and drops the note.
void MendNoted(LogFile* log, TornLogNotes* notes);

// The same for the log of this path, if there is one with a note.
void MendLogAt(const astring* path);

}  // namespace qvx

#endif
