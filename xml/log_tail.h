// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_XML_LOG_TAIL_H
#define QVX_XML_LOG_TAIL_H

#include "qvxcs/types.h"

#include "os/torn_log_notes.h"
#include "xml/log_entry.h"
#include "xml/log_file.h"

namespace qvx {

// The offset of the log's last closing tag after the head; -1 without one or when a read fails.
s64 FindClosingTag(const LogFile& log);

// Puts the closing tag at that place and cuts off what follows it; false when one of both fails.
bool RestoreClosingTag(const LogFile& log, s64 offset);

// One write that adds an entry and a new closing tag to a log.
class LogAddition {
 public:
  // At offset 0 the entry begins the log: the head goes before it.
  LogAddition(const LogEntry& entry, s64 offset);

  s64 Offset() const { return offset_; }
  s64 End() const { return end_; }
  // Whether a kill can cut the write.
  bool MayBeTorn() const {
    return static_cast<u64>(end_) > FirstBorderAfter(static_cast<u64>(offset_));
  }
  TornLogNote NoteFor(const LogFile& log) const;
  bool Write(const LogFile& log) const;
  // Restores the log to what it was before the write: the closing tag again, or nothing at all.
  bool TakeBack(const LogFile& log) const;

 private:
  void Add(const astring* text, u32 length);

  iovec parts_[4];
  int count_ = 0;
  s64 offset_;
  s64 end_;
};

}  // namespace qvx

#endif
