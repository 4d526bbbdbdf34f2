// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/torn_log_notes.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "os/ipc_file.h"
#include "os/uninterrupted.h"

namespace qvx {
namespace {

// The file fits within one page, so that a kill leaves the old notes or the new ones.
constexpr char kMagic[8] = {'q', 'v', 'x', 't', 'o', 'r', 'n', '\n'};
struct NoteFile {
  char magic[sizeof(kMagic)];
  TornLogNote notes[kMaxTornLogNotes];
};
constexpr u64 kHeadLength = sizeof(kMagic);
static_assert(sizeof(TornLogNote) == 40 && sizeof(NoteFile) <= kTearBorder);
static_assert(offsetof(NoteFile, notes) == kHeadLength);

}  // namespace

u64 SumOf(const void* bytes, u64 count, u64 sum) {
  constexpr u64 kPrime = 0x100000001B3;
  const u8* const at = static_cast<const u8*>(bytes);
  for (u64 i = 0; i < count; ++i) {
    sum = (sum ^ at[i]) * kPrime;
  }
  return sum;
}

bool MayHaveTornLogNotes() {
  struct stat status = {};
  return fstat(IPCFileDescriptor(), &status) == 0 && status.st_size != 0;
}

TornLogNotes::TornLogNotes() {
  NoteFile file;
  const ssize_t got =
      Uninterrupted([&file] { return pread(IPCFileDescriptor(), &file, sizeof(file), 0); });
  if (got <= 0) return;
  stored_ = static_cast<u64>(got);
  if (got == sizeof(file)) ++stored_;  // there may be more
  if (stored_ < kHeadLength || memcmp(file.magic, kMagic, sizeof(kMagic)) != 0) return;
  count_ = static_cast<u32>((stored_ - kHeadLength) / sizeof(TornLogNote));
  memcpy(notes_, file.notes, count_ * sizeof(TornLogNote));
}

const TornLogNote* TornLogNotes::Find(const FileId& file) const {
  const TornLogNote* const end = notes_ + count_;
  const TornLogNote* const found =
      std::find_if(notes_, end, [&file](const TornLogNote& note) { return note.file == file; });
  return found == end ? nullptr : found;
}

bool TornLogNotes::Add(const TornLogNote& note) {
  Remove(note.file);
  if (count_ == kMaxTornLogNotes) Remove(notes_[0].file);
  notes_[count_++] = note;
  changed_ = true;
  if (Store()) return true;
  --count_;
  return false;
}

void TornLogNotes::Drop(const FileId& file) {
  Remove(file);
  if (changed_) (void)Store();
}

// All of the file's notes: a kill may leave one twice.
void TornLogNotes::Remove(const FileId& file) {
  TornLogNote* const end = notes_ + count_;
  TornLogNote* const kept =
      std::remove_if(notes_, end, [&file](const TornLogNote& note) { return note.file == file; });
  if (kept == end) return;
  count_ = static_cast<u32>(kept - notes_);
  changed_ = true;
}

bool TornLogNotes::Store() {
  const u64 length = count_ == 0 ? 0 : kHeadLength + count_ * sizeof(TornLogNote);
  const int lockFile = IPCFileDescriptor();
  if (length != 0) {
    NoteFile file;
    memcpy(file.magic, kMagic, sizeof(kMagic));
    memcpy(file.notes, notes_, count_ * sizeof(TornLogNote));
    const ssize_t put =
        Uninterrupted([&] { return pwrite(lockFile, &file, static_cast<size_t>(length), 0); });
    if (put != static_cast<ssize_t>(length)) {
      stored_ = std::max(stored_, length);  // what was written is cut off again
      return false;
    }
  }
  if (length < stored_ && ftruncate(lockFile, static_cast<off_t>(length)) != 0) return false;
  stored_ = length;
  changed_ = false;
  return true;
}

}  // namespace qvx
