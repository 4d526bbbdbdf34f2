// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_CTL_LOG_READER_H
#define QVX_CTL_LOG_READER_H

#include <string>
#include <string_view>

#include "qvxcs/types.h"

#include "ctl/log_entry.h"

// Reads the entries of an XML log in constant memory, also while others append to it. No lock is
// taken: an entry is shown only once it is followed by another one or by the closing tag, which the
// library writes with it.
namespace qvx::ctl {

inline constexpr std::string_view kLogHead =
    "<?xml-stylesheet type=\"text/xsl\" version=\"1.0\" encoding=\"UTF-8\"?><EventLog>";

// Where the entries of a log begin.
inline constexpr u64 kFirstEntry = kLogHead.size();

// The next entry begins a smaller file anew, whatever it holds.
inline constexpr u64 kSmallestLog = 65;

enum class LogPart {
  kEntry,
  kDamage,  // bytes that are no entry, with something of the library's after them
  kClosed,  // the closing tag, for now
  kEnd,     // the file ends without it, within an entry or with bytes that are none
};

class LogReader {
 public:
  // Bytes of the log from an offset on; 0 at the end. Throws when it fails.
  class Source {
   public:
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;
    virtual size_t Read(u64 offset, char* room, size_t size) = 0;

   protected:
    Source() = default;
    ~Source() = default;
  };

  // From 0 on the head is checked too. In a log without it the first part begins at 0.
  explicit LogReader(Source* source, u64 offset = 0) : source_(source), offset_(offset) {}

  // After kClosed and kEnd the next call looks for what has come.
  LogPart Next();

  // Of the last entry or damage.
  [[nodiscard]] const LogRecord& Record() const { return record_; }
  [[nodiscard]] u64 Begin() const { return begin_; }
  [[nodiscard]] u64 End() const { return offset_; }
  [[nodiscard]] const std::string& Text() const { return text_; }

  // After kEnd, the end of an entry that is whole but has no closing tag after it; 0 without one.
  // Record() is then that entry, and End() its beginning.
  [[nodiscard]] u64 EndOfUnclosed() const { return unclosed_; }

 private:
  LogPart Look();
  LogPart ReadHead();
  LogPart ReadClosing();
  LogPart ReadEntry();
  LogPart ReadDamage();
  LogPart Forget(LogPart part);
  void Take(size_t length);
  bool Fill(size_t size);
  void FillOnce();
  size_t Find(std::string_view mark, size_t from);
  [[nodiscard]] std::string_view Rest() const { return std::string_view(buffer_).substr(used_); }

  Source* source_;
  u64 offset_;  // of what follows the taken part
  u64 begin_ = 0;
  std::string buffer_;  // from `used_` on, the bytes from `offset_` on
  size_t used_ = 0;
  u64 unclosed_ = 0;
  std::string text_;
  LogRecord record_;
};

}  // namespace qvx::ctl

#endif
