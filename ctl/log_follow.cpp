// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_follow.h"

#include <algorithm>

#include "ctl/log_repair.h"
#include "ctl/output.h"

namespace qvx::ctl {
namespace {

// This many bytes of a log are shown between two saves of the place.
constexpr u64 kStride = u64{1} << 20;

// An append that is being made, or cut back on a full disk, has been completed long before.
constexpr std::chrono::seconds kPatience{3};

std::string KeyOfFile(const std::string& path) {
  const std::unique_ptr<LogFile> file = LogFile::OpenIfThere(path);
  return file == nullptr ? "" : file->Key();
}

}  // namespace

LogFollower::LogFollower(std::string path, LogView view, std::string statePath)
    : path_(std::move(path)), view_(std::move(view)), statePath_(std::move(statePath)) {
  place_.log = path_;
  const auto saved = statePath_.empty() ? std::nullopt : LoadPlace(statePath_, path_);
  if (saved) {
    Resume(*saved);
  } else {
    place_.backup = KeyOfFile(BackupPath(path_));
    OpenNext();
  }
}

// The log of the saved place may still be the log, or be the backup, or no longer exist.
void LogFollower::Resume(const LogPlace& place) {
  place_.backup = place.backup;
  if (Continue(path_, place) || Continue(BackupPath(path_), place)) return;
  if (KeyOfFile(BackupPath(path_)) != place.backup) {
    Warn(path_ +
         ": the log was moved more than once since the place was kept: entries may be lost");
    if (auto backup = LogFile::OpenIfThere(BackupPath(path_))) return Begin(std::move(backup));
  }
  OpenNext();
}

// Whether the file holds the place; if so, reading continues in it.
bool LogFollower::Continue(const std::string& path, const LogPlace& place) {
  std::unique_ptr<LogFile> file = LogFile::OpenIfThere(path);
  if (file == nullptr || file->Mark() != place.first) return false;
  if (place.last != 0 && file->MarkAt(place.last) != place.lastMark) return false;
  file_ = std::move(file);
  reader_ = std::make_unique<LogReader>(file_.get(), place.next);
  place_ = place;
  saved_ = place;
  return true;
}

void LogFollower::Begin(std::unique_ptr<LogFile> file) {
  file_ = std::move(file);
  reader_ = file_ == nullptr ? nullptr : std::make_unique<LogReader>(file_.get());
  place_ = {path_, "", 0, "", 0, place_.backup};
  toldDamage_ = 0;
  torn_.reset();
}

// After the end of a file that has lost its name: the next one is the log, unless another one came
// and went to the backup meanwhile.
void LogFollower::OpenNext() {
  for (;;) {
    std::unique_ptr<LogFile> log = LogFile::OpenIfThere(path_);
    std::unique_ptr<LogFile> backup = LogFile::OpenIfThere(BackupPath(path_));
    const bool isStill = log == nullptr || log->IsAt(path_);
    if (!isStill) continue;  // moved between the two looks
    const std::string key = backup == nullptr ? "" : backup->Key();
    const bool wasShown = backup == nullptr || key == place_.backup ||
                          (file_ != nullptr && backup->IsSameFile(*file_));
    place_.backup = key;
    if (log == nullptr && wasShown) return file_ == nullptr ? Begin(nullptr) : void();
    return Begin(wasShown ? std::move(log) : std::move(backup));
  }
}

void LogFollower::Advance() {
  for (;;) {
    if (file_ == nullptr) OpenNext();
    if (file_ == nullptr) return;
    // Nothing is added to a file after it has lost the name, so draining it then shows everything.
    const bool isCurrent = file_->IsAt(path_);
    NoteShrunk();
    const LogPart end = Drain();
    if (end != LogPart::kEnd) torn_.reset();
    if (end == LogPart::kEnd) NoteTornEnd(isCurrent);
    if (isCurrent) return;
    const LogFile* const before = file_.get();
    OpenNext();
    if (file_.get() == before) return;
  }
}

void LogFollower::NoteShrunk() {
  if (file_->Size() >= place_.next) return;
  Warn(path_ + ": the log was cut; it is shown from its beginning");
  Begin(std::move(file_));
}

// An entry without its closing tag is not shown: the library may still cut it off again.
void LogFollower::NoteTornEnd(bool isCurrent) {
  const auto now = std::chrono::steady_clock::now();
  const u64 offset = reader_->End();
  if (!torn_ || torn_->offset != offset) torn_ = {offset, now, false};
  const u64 size = file_->Size();
  if (torn_->isTold || size <= offset) return;
  if (isCurrent && now - torn_->since < kPatience) return;
  torn_->isTold = true;
  if (!isCurrent) {
    return Warn(path_ + ": the log was moved with a damaged end: " + std::to_string(size - offset) +
                " bytes from offset " + std::to_string(offset) + " are not shown");
  }
  const u64 begin = file_->HasHead() ? kFirstEntry : 0;
  const u64 unclosed = reader_->EndOfUnclosed();
  const u64 end = unclosed != 0 ? unclosed : std::max(begin, place_.next);
  Warn(path_ + ": " + DescribeTornEnd(end, unclosed != 0, size));
}

LogPart LogFollower::Drain() {
  u64 saved = place_.next;
  LogPart part = LogPart::kEnd;
  for (;;) {
    part = reader_->Next();
    if (part == LogPart::kDamage) {
      if (toldDamage_ != reader_->Begin()) {
        Warn(path_ + ": " + std::to_string(reader_->End() - reader_->Begin()) +
             " bytes from offset " + std::to_string(reader_->Begin()) + " are no entry");
      }
      toldDamage_ = reader_->Begin();
      continue;
    }
    if (part != LogPart::kEntry) break;
    ShowEntry(view_, reader_->Record(), reader_->Begin());
    place_.last = reader_->Begin();
    place_.lastMark = MarkOf(reader_->Text());
    place_.next = reader_->End();
    if (place_.first.empty()) place_.first = file_->Mark();
    if (place_.next - saved < kStride) continue;
    Save();
    saved = place_.next;
  }
  Save();
  return part;
}

void LogFollower::Save() {
  FlushOutput();
  const bool isNew =
      place_.next != saved_.next || place_.first != saved_.first || place_.backup != saved_.backup;
  if (statePath_.empty() || !isNew || place_.first.empty()) return;
  SavePlace(statePath_, place_);
  saved_ = place_;
}

}  // namespace qvx::ctl
