// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_LOG_FILE_H
#define QVX_XML_LOG_FILE_H

#include <sys/uio.h>

#include "qvxcs/types.h"

#include "os/descriptor.h"
#include "os/file_id.h"

namespace qvx {

inline constexpr astring kLogHead[] =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?>";
inline constexpr astring kLogOpeningTag[] = "<EventLog>";
inline constexpr astring kLogClosingTag[] = "</EventLog>";
inline constexpr s64 kLogHeadLength = sizeof(kLogHead) - 1;
inline constexpr s64 kLogOpeningLength = sizeof(kLogOpeningTag) - 1;
inline constexpr s64 kLogClosingLength = sizeof(kLogClosingTag) - 1;
static_assert(kLogHeadLength == 65 && kLogOpeningLength == 10 && kLogClosingLength == 11);

// What a path refers to, examined once and passed on.
struct LogLook {
  bool found;    // whether there is anything
  bool regular;  // whether it is a file, which the rest is of
  mode_t mode;   // permission bits
  FileId id;
  s64 size;
};
LogLook LookAtLog(const astring* path);

// Sets a log's mode where the examination showed another one. Anything but a file keeps its mode,
// whether it is in the log's place or a link there points to it.
void SetLogMode(const astring* path, const LogLook& look);

// An open log, as it was when it was opened.
struct LogFile {
  Descriptor descriptor;
  FileId id;
  s64 size;

  explicit operator bool() const { return static_cast<bool>(descriptor); }
};

// Opens a log for reading and writing, with the mode that logs have. Empty with errno set when that
// fails (ENOENT for a missing log) and for anything that is no file.
LogFile OpenStandingLog(const astring* path);
// The same for a log below this size that opens without more. Any other is left as it is.
LogFile OpenLogBelow(const astring* path, s64 limit);
// Like the first, but a missing log is created. One that cannot be opened is left to the user who
// protected it.
LogFile OpenLog(const astring* path);

// Each is one call, repeated where a signal interrupted it. False when it did less than requested.
bool ReadLog(const LogFile& log, void* block, size_t length, s64 offset);
bool WriteLog(const LogFile& log, const iovec* parts, int count, s64 offset);
bool CutLog(const LogFile& log, s64 length);

}  // namespace qvx

#endif
