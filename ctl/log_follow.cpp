// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_follow.h"

#include <unistd.h>

#include <algorithm>

#include "ctl/log_repair.h"
#include "ctl/output.h"

namespace qvx::ctl {
namespace {

// This many bytes of a log are shown between two saves of the place.
constexpr u64 kStride = u64{1} << 20;

// Within these looks the writer of a new log has written to it.
constexpr int kLooksAtAnEmptyLog = 20;
constexpr unsigned kPause = 1000;  // microseconds

// An append that is being made, or cut back on a full disk, has been completed long before.
constexpr std::chrono::seconds kPatience{3};

std::string KeyOfFile(const std::string& path) {
  const std::unique_ptr<LogFile> file = LogFile::OpenIfThere(path);
  return file == nullptr ? "" : file->Key();
}

}  // namespace

LogFollower::LogFollower(std::string path, LogView view, std::string statePath, LogWatch* watch)
    : path_(std::move(path)),
      view_(std::move(view)),
      statePath_(std::move(statePath)),
      watch_(watch) {
  place_.log = path_;
  const auto saved = statePath_.empty() ? std::nullopt : LoadPlace(statePath_, path_);
  if (saved) {
    Resume(*saved);
  } else {
    place_.backup = KeyOfFile(BackupPath(path_));
    OpenNext();
  }
}

// Looks again when the log moves meanwhile. A new log can be seen a moment before its arrival is
// reported, but not once it has been written to.
LogFollower::Look LogFollower::LookAtBoth() const {
  for (int looks = 0;; ++looks) {
    const std::optional<u64> before = watch_->Arrivals();
    Look look{LogFile::OpenIfThere(path_), LogFile::OpenIfThere(BackupPath(path_)), "", before};
    const bool isStill = look.log == nullptr || look.log->IsAt(path_);
    const bool isEmpty = look.log != nullptr && look.log->Size() == 0;
    if (isEmpty && looks < kLooksAtAnEmptyLog) {
      (void)usleep(kPause);
      continue;
    }
    if (!isStill || watch_->Arrivals() != before) continue;
    if (look.backup != nullptr) look.backupKey = look.backup->Key();
    return look;
  }
}

// The log of the saved place may still be the log, or be the backup, or no longer exist.
void LogFollower::Resume(const LogPlace& place) {
  Look look = LookAtBoth();
  place_.backup = place.backup;
  arrivals_ = look.arrivals;
  if (Continue(&look.log, place)) return;
  if (arrivals_ && look.log != nullptr) --*arrivals_;
  if (Continue(&look.backup, place)) return;
  if (look.backupKey != place.backup) {
    Warn(path_ +
         ": the log was moved more than once since the place was kept: entries may be lost");
  }
  arrivals_.reset();
  OpenNext();
}

// Whether the file holds the place; if so, it is taken and reading continues in it.
bool LogFollower::Continue(std::unique_ptr<LogFile>* file, const LogPlace& place) {
  if (*file == nullptr || (*file)->Mark() != place.first) return false;
  if (place.last != 0 && (*file)->MarkAt(place.last) != place.lastMark) return false;
  file_ = std::move(*file);
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
  Look look = LookAtBoth();
  const bool isBackupNew = look.backup != nullptr && look.backupKey != place_.backup &&
                           (file_ == nullptr || !look.backup->IsSameFile(*file_));
  NoteMissed(look, isBackupNew);
  place_.backup = look.backupKey;
  if (look.log == nullptr && !isBackupNew && file_ != nullptr) return;
  arrivals_ = look.arrivals;
  // After the backup comes the log, which has arrived already.
  if (isBackupNew && arrivals_ && look.log != nullptr) --*arrivals_;
  Begin(isBackupNew ? std::move(look.backup) : std::move(look.log));
}

// Of the files that have come after this one, only the last two can still be opened: the log, and
// the backup if it is a new one. How many have come is not known where a new log is not reported.
void LogFollower::NoteMissed(const Look& look, bool isBackupNew) {
  const u64 openable = (look.log != nullptr ? 1 : 0) + (isBackupNew ? 1 : 0);
  const bool isKnown = look.arrivals && arrivals_ &&
                       (look.log == nullptr || file_ == nullptr || *look.arrivals != *arrivals_);
  const bool isMissed =
      isKnown ? *look.arrivals - *arrivals_ > openable : file_ != nullptr && isBackupNew;
  if (!isMissed) return;
  Warn(path_ + ": the log was moved more than once between two looks: entries may be lost");
  if (isKnown) arrivals_ = *look.arrivals - openable;
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
