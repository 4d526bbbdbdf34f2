// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_tail.h"

#include <algorithm>
#include <cstring>

namespace qvx {
namespace {

constexpr s64 kFirstEntryOffset = kLogHeadLength + kLogOpeningLength;
constexpr astring kEntryEnd[] = "</LogEntry>";
constexpr s64 kEntryEndLength = sizeof(kEntryEnd) - 1;
constexpr s64 kSearchBlock = 4096;

bool Holds(const LogFile& log, s64 offset, const astring* text, s64 length) {
  astring found[kLogHeadLength + kLogOpeningLength];
  const auto count = static_cast<size_t>(length);
  return offset >= 0 && ReadLog(log, found, count, offset) && memcmp(found, text, count) == 0;
}

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

bool RestoreClosingTag(const LogFile& log, s64 offset) {
  // The tag first: its bytes are still allocated, also on a disk that is full.
  const iovec tag = {const_cast<astring*>(kLogClosingTag), kLogClosingLength};
  return WriteLog(log, &tag, 1, offset) && CutLog(log, offset + kLogClosingLength);
}

// An entry begins there: at the file's start, or after the opening tag or another entry.
bool IsPlaceOfAnEntry(const LogFile& log, s64 offset) {
  if (offset == 0) return true;
  if (!Holds(log, 0, kLogHead, kLogHeadLength)) return false;
  if (offset == kFirstEntryOffset) {
    return Holds(log, kLogHeadLength, kLogOpeningTag, kLogOpeningLength);
  }
  return offset > kFirstEntryOffset &&
         Holds(log, offset - kEntryEndLength, kEntryEnd, kEntryEndLength);
}

// The bytes from the noted place to the next border are those of the noted write.
bool BeginsWithTheNotedWrite(const LogFile& log, const TornLogNote& note) {
  astring block[kTearBorder];
  const u64 length = FirstBorderAfter(note.offset) - note.offset;
  return ReadLog(log, block, static_cast<size_t>(length), static_cast<s64>(note.offset)) &&
         SumOf(block, length) == note.sum;
}

bool EndsWithItsClosingTag(const LogFile& log) {
  return Holds(log, log.size - kLogClosingLength, kLogClosingTag, kLogClosingLength);
}

// One write adds one entry, so two of them in a row are from several writes.
// Deliberate: a description that holds this border itself, as no well-formed one does outside of
// comments and CDATA, keeps a torn log from being mended. The note's sum ends at the first page
// border, so such an entry cannot be told from two, of which the first must not be lost. Held by
// LogTorn.ATornEntryThatLooksLikeTwoIsNotTakenBack.
bool HoldsTwoEntriesInARow(const LogFile& log, s64 offset) {
  constexpr astring kBorder[] = "</Data></LogEntry><LogEntry><TimeStamp>";
  constexpr s64 kBorderLength = sizeof(kBorder) - 1;
  astring block[kSearchBlock];
  while (log.size - offset >= kBorderLength) {
    const auto length = static_cast<size_t>(std::min(kSearchBlock, log.size - offset));
    if (!ReadLog(log, block, length, offset)) return true;
    if (memmem(block, length, kBorder, kBorderLength) != nullptr) return true;
    offset += static_cast<s64>(length) - kBorderLength + 1;
  }
  return false;
}

// A process that may only read the lock file mends a log and leaves its note; what it appends may
// begin as the noted entry does.
bool WasAppendedToSince(const LogFile& log, const TornLogNote& note) {
  return EndsWithItsClosingTag(log) || HoldsTwoEntriesInARow(log, static_cast<s64>(note.offset));
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

bool IsTorn(const LogFile& log, const TornLogNote& note) {
  const s64 offset = static_cast<s64>(note.offset);
  if (!IsPlaceOfAnEntry(log, offset)) return false;
  // A write that failed was being taken back.
  if (Holds(log, offset, kLogClosingTag, kLogClosingLength)) {
    return log.size > offset + kLogClosingLength;
  }
  return log.size >= static_cast<s64>(FirstBorderAfter(note.offset)) &&
         log.size < static_cast<s64>(note.end) && BeginsWithTheNotedWrite(log, note) &&
         !WasAppendedToSince(log, note);
}

bool MendLog(LogFile* log, const TornLogNote& note) {
  const s64 offset = static_cast<s64>(note.offset);
  const bool mended = offset == 0 ? CutLog(*log, 0) : RestoreClosingTag(*log, offset);
  if (mended) log->size = offset == 0 ? 0 : offset + kLogClosingLength;
  return mended;
}

}  // namespace qvx
