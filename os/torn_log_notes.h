// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_TORN_LOG_NOTES_H
#define QVX_OS_TORN_LOG_NOTES_H

#include "qvxcs/types.h"

#include "os/file_id.h"

namespace qvx {

// What a log looked like before a write that a kill could cut: the write begins at `offset`, where
// the closing tag is, and ends at `end`. `sum` is SumOf the bytes that it writes before the first
// page border; even a write that is cut leaves them whole.
struct TornLogNote {
  FileId file;
  u64 offset;
  u64 end;
  u64 sum;
};

inline constexpr u32 kMaxTornLogNotes = 64;

// A kill cuts a write only where a page of memory ends.
inline constexpr u64 kTearBorder = 4096;
inline constexpr u64 FirstBorderAfter(u64 offset) {
  return (offset / kTearBorder + 1) * kTearBorder;
}

// A 64-bit FNV-1a sum, to be continued with further bytes.
inline constexpr u64 kEmptySum = 0xCBF29CE484222325;
u64 SumOf(const void* bytes, u64 count, u64 sum = kEmptySum);

// Whether the lock file holds anything. May be called without the lock; the result is then a hint.
bool MayHaveTornLogNotes();

// The notes of all processes. They are in the lock file, which is empty without notes; any other
// content is ignored and is replaced by the first note. An object is made and used within one hold
// of the file lock.
class TornLogNotes {
 public:
  TornLogNotes();
  ~TornLogNotes() = default;
  TornLogNotes(const TornLogNotes&) = delete;
  TornLogNotes& operator=(const TornLogNotes&) = delete;

  // Null when there is no note of this file.
  const TornLogNote* Find(const FileId& file) const;
  // Replaces the file's note; the 65th note replaces the oldest. False when it cannot be written.
  bool Add(const TornLogNote& note);
  void Drop(const FileId& file);

 private:
  void Remove(const FileId& file);
  bool Store();

  u32 count_ = 0;
  u64 stored_ = 0;        // bytes of the lock file
  bool changed_ = false;  // the lock file holds other notes than these
  TornLogNote notes_[kMaxTornLogNotes];
};

}  // namespace qvx

#endif
