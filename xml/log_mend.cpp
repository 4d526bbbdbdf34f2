// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "xml/log_mend.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "xml/log_entry.h"
#include "xml/log_tail.h"

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

// The bytes from the noted place to the next border are those of the noted write, except for a part
// of the closing tag that was being put back over them.
bool BeginsWithTheNotedWrite(const LogFile& log, const TornLogNote& note) {
  astring block[kTearBorder];
  const auto length = static_cast<size_t>(FirstBorderAfter(note.offset) - note.offset);
  if (!ReadLog(log, block, length, static_cast<s64>(note.offset))) return false;
  const size_t most = std::min<size_t>(length, kLogClosingLength);
  for (size_t at = 0; at < most && block[at] == kLogClosingTag[at]; ++at) {
    block[at] = kLogEntryBegin[at];
  }
  return SumOf(block, length) == note.sum;
}

bool EndsWithItsClosingTag(const LogFile& log) {
  return Holds(log, log.size - kLogClosingLength, kLogClosingTag, kLogClosingLength);
}

// Counts which entries of a part of the log are open: a description may show another log's entries,
// each of which it also ends. Neither token fits a row of a dump.
class EntryDepth {
 public:
  explicit EntryDepth(s64 depth) : depth_(depth) {}

  // Goes over the log from `offset` to its end. False when a read fails.
  bool Count(const LogFile& log, s64 offset) {
    astring block[kSearchBlock];
    while (log.size - offset >= kShortest) {
      const s64 length = std::min(kSearchBlock, log.size - offset);
      if (!ReadLog(log, block, static_cast<size_t>(length), offset)) return false;
      CountIn(block, length, offset);
      // What may begin a token that goes on in the next block is read again.
      if (length < kSearchBlock) break;
      offset += length - kLongest + 1;
    }
    return true;
  }

  bool IsOver() const { return depth_ <= 0; }
  // Whether an entry began right where the outermost one had ended.
  bool HoldsTwo() const { return holdsTwo_; }

 private:
  static constexpr s64 kLongest = kLogEntryBegin.size();
  static constexpr s64 kShortest = kLogEntryEnd.size();

  void CountIn(const astring* block, s64 length, s64 offset) {
    const std::string_view text(block, static_cast<size_t>(length));
    for (size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
      const s64 place = offset + static_cast<s64>(at);
      if (place < next_) continue;
      if (text.substr(at).starts_with(kLogEntryBegin)) Begin(place);
      if (text.substr(at).starts_with(kLogEntryEnd)) End(place);
    }
  }

  void Begin(s64 place) {
    holdsTwo_ = holdsTwo_ || (IsOver() && place == ended_);
    ++depth_;
    next_ = place + 1;
  }

  void End(s64 place) {
    --depth_;
    next_ = place + 1;
    ended_ = place + kShortest;
  }

  s64 depth_;
  s64 ended_ = -1;
  s64 next_ = 0;  // what comes before it is counted
  bool holdsTwo_ = false;
};

// A process that may only read the lock file mends a log and leaves its note; what it appends may
// begin as the noted entry does. One write adds one entry, so two of them in a row are of several.
// Deliberate: a description that ends more entries than it begins, as no well-formed one does
// outside of comments and CDATA, can keep a torn log from being mended. The note's sum ends at the
// first page border, so such an entry cannot be told from two, of which the first must not be lost.
// Held by LogTorn.ATornEntryThatLooksLikeTwoIsNotTakenBack.
bool WasAppendedToSince(const LogFile& log, const TornLogNote& note) {
  // The entry itself begins at the noted place, or after the head of a log that was being begun.
  const s64 offset = static_cast<s64>(note.offset);
  EntryDepth depth(offset == 0 ? 0 : 1);
  if (!depth.Count(log, offset == 0 ? 0 : offset + 1)) return true;
  return depth.HoldsTwo() || (depth.IsOver() && EndsWithItsClosingTag(log));
}

// The closing tag is back over the beginning of an entry, and nothing else was appended.
bool WasBeingTakenBack(const LogFile& log, const TornLogNote& note) {
  const s64 rest = static_cast<s64>(note.offset) + kLogClosingLength;
  if (log.size <= rest || log.size > static_cast<s64>(note.end)) return false;
  EntryDepth depth(1);
  return depth.Count(log, rest) && !depth.HoldsTwo();
}

// Whether a kill during the write that the note describes has cut this log.
bool IsTorn(const LogFile& log, const TornLogNote& note) {
  const s64 offset = static_cast<s64>(note.offset);
  if (!IsPlaceOfAnEntry(log, offset)) return false;
  if (Holds(log, offset, kLogClosingTag, kLogClosingLength)) return WasBeingTakenBack(log, note);
  return log.size >= static_cast<s64>(FirstBorderAfter(note.offset)) &&
         log.size < static_cast<s64>(note.end) && BeginsWithTheNotedWrite(log, note) &&
         !WasAppendedToSince(log, note);
}

// Puts the closing tag back at the place that the note names; a log that was being begun is
// emptied. False when that fails.
bool MendLog(LogFile* log, const TornLogNote& note) {
  const s64 offset = static_cast<s64>(note.offset);
  const bool mended = offset == 0 ? CutLog(*log, 0) : RestoreClosingTag(*log, offset);
  if (mended) log->size = offset == 0 ? 0 : offset + kLogClosingLength;
  return mended;
}

}  // namespace

void MendNoted(LogFile* log, TornLogNotes* notes) {
  const TornLogNote* const note = notes->Find(log->id);
  if (note != nullptr && IsTorn(*log, *note) && MendLog(log, *note)) notes->Drop(log->id);
}

void MendLogAt(const astring* path) {
  TornLogNotes notes;
  const LogLook look = LookAtLog(path);
  if (!look.regular || notes.Find(look.id) == nullptr) return;
  LogFile log = OpenStandingLog(path);
  if (log) MendNoted(&log, &notes);
}

}  // namespace qvx
