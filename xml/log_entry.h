// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_LOG_ENTRY_H
#define QVX_XML_LOG_ENTRY_H

#include <cstddef>
#include <string_view>

#include "qvxcs/xml_log.h"

#include "base/heap.h"

namespace qvx {

// Longest texts of an event, in bytes without the NUL, and its largest data block.
inline constexpr u32 kMaxLogUser = QVX_LOG_MAX_USER;
inline constexpr u32 kMaxLogDescription = QVX_LOG_MAX_DESCRIPTION;
inline constexpr u32 kMaxLogData = QVX_LOG_MAX_DATA;

// Type and identifiers of the events that the library logs itself.
inline constexpr u16 kLogInformation = QVX_LOG_INFORMATION;
inline constexpr u32 kLogClearedId = QVX_LOG_CLEARED;
inline constexpr u32 kLogBackupId = QVX_LOG_BACKUP_CREATED;

// What each entry begins and ends with.
inline constexpr std::string_view kLogEntryBegin = "<LogEntry><TimeStamp>";
inline constexpr std::string_view kLogEntryEnd = "</Data></LogEntry>";

// What happened, as the caller reports it. Texts and data may be null.
struct LogEvent {
  u16 type;
  u32 id;
  const astring* user;
  const astring* source;
  const astring* description;
  const void* data;
  u32 dataSize;
};

// False when a text is empty or too long, or when the data is too large or missing.
bool IsLoggable(const LogEvent& event);

// One LogEntry element as text.
class LogEntry {
 public:
  // Builds the element with the current time and this machine's name; called once. The time's or
  // the host name's status, else -1 when the element could not be built whole.
  u32 Build(const LogEvent& event);

  const astring* Text() const { return text_.get(); }
  u32 Length() const { return length_; }

 private:
  // The pieces, the data's dump and the end.
  u32 Join(const std::string_view* pieces, size_t count, const LogEvent& event);

  HeapArray<astring> text_;
  u32 length_ = 0;
};

}  // namespace qvx

#endif
