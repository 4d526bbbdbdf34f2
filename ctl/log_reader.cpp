// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_reader.h"

#include <algorithm>

namespace qvx::ctl {
namespace {

constexpr std::string_view kEntryBegin = "<LogEntry>";
constexpr std::string_view kEntryMark = "<LogEntry><TimeStamp>";
constexpr std::string_view kEntryEnd = "</Data></LogEntry>";
constexpr std::string_view kClosing = "</EventLog>";
constexpr size_t kPiece = size_t{1} << 16;
// The library's longest entry, its dump included, has under 200,000 bytes.
constexpr size_t kLongestEntry = size_t{1} << 20;

bool MayBecome(std::string_view rest, std::string_view mark) {
  return rest.size() < mark.size() && mark.starts_with(rest);
}

}  // namespace

// While an entry is written over the closing tag, reads may return a part of the tag with a part of
// the entry after it. The rest of an entry is seen only once its beginning is in place, so what is
// no entry in a second look either is damage.
LogPart LogReader::Next() {
  const LogPart part = Look();
  if (part != LogPart::kDamage) return part;
  offset_ = begin_;
  (void)Forget(part);
  return Look();
}

LogPart LogReader::Look() {
  if (offset_ == 0) return ReadHead();
  (void)Fill(kClosing.size());
  if (Rest().starts_with(kClosing)) return ReadClosing();
  if (Rest().starts_with(kEntryBegin)) return ReadEntry();
  if (MayBecome(Rest(), kEntryBegin) || MayBecome(Rest(), kClosing)) return Forget(LogPart::kEnd);
  return ReadDamage();
}

LogPart LogReader::ReadHead() {
  (void)Fill(kLogHead.size());
  if (Rest().starts_with(kLogHead)) {
    Take(kLogHead.size());
    return Look();
  }
  if (MayBecome(Rest(), kLogHead)) return Forget(LogPart::kEnd);
  if (Rest().starts_with(kEntryMark)) return ReadEntry();
  return ReadDamage();
}

// What follows the tag may have come since it was read.
LogPart LogReader::ReadClosing() {
  (void)Forget(LogPart::kClosed);
  FillOnce();
  if (Rest() == kClosing) return Forget(LogPart::kClosed);
  return Rest().starts_with(kClosing) ? ReadDamage() : Look();
}

LogPart LogReader::ReadEntry() {
  const size_t end = Find(kEntryEnd, 0);
  const size_t next = Rest().substr(0, std::min(end, Rest().size())).find(kEntryMark, 1);
  if (next != std::string_view::npos) return ReadDamage();
  if (end == std::string_view::npos) {
    return Rest().size() < kLongestEntry ? Forget(LogPart::kEnd) : ReadDamage();
  }
  const size_t length = end + kEntryEnd.size();
  (void)Fill(length + kClosing.size());
  std::optional<LogRecord> record = ParseLogRecord(Rest().substr(0, length));
  if (!record) return ReadDamage();
  record_ = std::move(*record);
  const std::string_view after = Rest().substr(length);
  if (MayBecome(after, kEntryBegin) || MayBecome(after, kClosing)) {
    (void)Forget(LogPart::kEnd);
    unclosed_ = offset_ + length;
    return LogPart::kEnd;
  }
  Take(length);
  return LogPart::kEntry;
}

// Up to the next mark of the library's. Without one the bytes may still become an entry, or are cut
// off by a repair: they are not skipped.
LogPart LogReader::ReadDamage() {
  size_t length = Find(kEntryMark, 1);
  const size_t closing = Rest().substr(0, std::min(length, Rest().size())).find(kClosing, 1);
  length = std::min(length, closing);
  if (length == std::string_view::npos && Rest().size() < kLongestEntry) {
    return Forget(LogPart::kEnd);
  }
  Take(std::min(length, kLongestEntry / 2));
  return LogPart::kDamage;
}

void LogReader::Take(size_t length) {
  text_ = Rest().substr(0, length);
  begin_ = offset_;
  offset_ += length;
  used_ += length;
  unclosed_ = 0;
  if (used_ < kPiece) return;
  buffer_.erase(0, used_);
  used_ = 0;
}

// What was read beyond the taken part may be written over before the next look.
LogPart LogReader::Forget(LogPart part) {
  buffer_.clear();
  used_ = 0;
  unclosed_ = 0;
  return part;
}

// Whether this many bytes are available; if so, they are in the buffer.
bool LogReader::Fill(size_t size) {
  while (Rest().size() < size) {
    const size_t before = buffer_.size();
    FillOnce();
    if (buffer_.size() == before) return false;
  }
  return true;
}

// One more read's worth: what one read returns is from one moment.
void LogReader::FillOnce() {
  const size_t before = buffer_.size();
  buffer_.resize(before + kPiece);
  const size_t got = source_->Read(offset_ + (before - used_), buffer_.data() + before, kPiece);
  buffer_.resize(before + got);
}

size_t LogReader::Find(std::string_view mark, size_t from) {
  for (;;) {
    const size_t found = Rest().find(mark, from);
    if (found != std::string_view::npos) return found;
    const size_t size = Rest().size();
    if (size >= kLongestEntry || !Fill(size + 1)) return std::string_view::npos;
    from = std::max(from, size - std::min(size, mark.size() - 1));
  }
}

}  // namespace qvx::ctl
