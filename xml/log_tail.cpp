// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_tail.h"

#include <algorithm>
#include <cstring>

namespace qvx {
namespace {

constexpr s64 kSearchBlock = 4096;

// The last place in the block at which the tag is, or -1.
s64 LastTagIn(const astring* block, s64 length) {
  for (s64 at = length - kLogClosingLength; at >= 0; --at) {
    if (memcmp(block + at, kLogClosingTag, kLogClosingLength) == 0) return at;
  }
  return -1;
}

s64 SearchBackwards(const LogFile& log) {
  astring block[kSearchBlock];
  s64 end = log.size;
  while (end - kLogClosingLength >= kLogHeadLength) {
    const s64 start = std::max(end - kSearchBlock, kLogHeadLength);
    if (!ReadLog(log, block, static_cast<size_t>(end - start), start)) return -1;
    const s64 found = LastTagIn(block, end - start);
    if (found >= 0) return start + found;
    end = start + kLogClosingLength - 1;
  }
  return -1;
}

}  // namespace

s64 FindClosingTag(const LogFile& log) {
  const s64 last = log.size - kLogClosingLength;
  if (last < kLogHeadLength) return -1;
  // The closing tag is nearly always the last thing in the log.
  astring tail[kLogClosingLength];
  if (!ReadLog(log, tail, sizeof(tail), last)) return -1;
  return memcmp(tail, kLogClosingTag, sizeof(tail)) == 0 ? last : SearchBackwards(log);
}

bool RestoreClosingTag(const LogFile& log, s64 offset) {
  // The tag first: its bytes are still allocated, also on a disk that is full.
  const iovec tag = {const_cast<astring*>(kLogClosingTag), kLogClosingLength};
  return WriteLog(log, &tag, 1, offset) && CutLog(log, offset + kLogClosingLength);
}

LogAddition::LogAddition(const LogEntry& entry, s64 offset) : offset_(offset), end_(offset) {
  if (offset == 0) {
    Add(kLogHead, kLogHeadLength);
    Add(kLogOpeningTag, kLogOpeningLength);
  }
  Add(entry.Text(), entry.Length());
  Add(kLogClosingTag, kLogClosingLength);
}

void LogAddition::Add(const astring* text, u32 length) {
  parts_[count_++] = {const_cast<astring*>(text), length};
  end_ += length;
}

TornLogNote LogAddition::NoteFor(const LogFile& log) const {
  const u64 offset = static_cast<u64>(offset_);
  u64 left = FirstBorderAfter(offset) - offset;
  u64 sum = kEmptySum;
  for (int i = 0; i < count_; ++i) {
    const u64 length = std::min<u64>(left, parts_[i].iov_len);
    sum = SumOf(parts_[i].iov_base, length, sum);
    left -= length;
  }
  return {log.id, offset, static_cast<u64>(end_), sum};
}

bool LogAddition::Write(const LogFile& log) const { return WriteLog(log, parts_, count_, offset_); }

bool LogAddition::TakeBack(const LogFile& log) const {
  return offset_ == 0 ? CutLog(log, 0) : RestoreClosingTag(log, offset_);
}

}  // namespace qvx
