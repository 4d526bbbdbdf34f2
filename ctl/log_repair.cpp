// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_repair.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "qvxcs/status.h"

#include "ctl/call_failure.h"
#include "ctl/log_file.h"
#include "ctl/output.h"
#include "os/file_lock.h"
#include "os/ipc_name.h"

namespace qvx::ctl {
namespace {

constexpr char kClosing[] = "</EventLog>";
constexpr size_t kClosingLength = sizeof(kClosing) - 1;
constexpr u32 kFileLockOffset = 30000;
constexpr size_t kMostPlaces = 20;
constexpr int kLooks = 5;
constexpr unsigned kPause = 20000;  // microseconds

std::string Bytes(u64 begin, u64 end) {
  return std::to_string(end - begin) + " bytes from offset " + std::to_string(begin);
}

// An append that is just being made looks like a damaged end for a moment.
LogPart NextSettled(LogReader* reader) {
  LogPart part = reader->Next();
  for (int look = 0; part == LogPart::kEnd && look < kLooks; ++look) {
    (void)usleep(kPause);
    part = reader->Next();
  }
  return part;
}

struct Place {
  u64 begin;
  u64 end;
};

// One pass over a log.
struct Survey {
  bool hasHead = true;
  u64 end = 0;                // of the last whole entry or of the head
  std::vector<Place> damage;  // the first kMostPlaces
  size_t places = 0;
  u64 endOfDamage = 0;
  bool isClosed = false;
};

// Damage without an end comes in pieces.
void NoteDamage(u64 begin, u64 end, Survey* survey) {
  const bool isNew = survey->places == 0 || begin != survey->endOfDamage;
  if (isNew) ++survey->places;
  if (isNew && survey->places <= kMostPlaces) survey->damage.push_back({begin, end});
  if (survey->places <= kMostPlaces) survey->damage.back().end = end;
  survey->endOfDamage = end;
}

Survey ReadThrough(LogReader* reader) {
  Survey survey;
  LogPart part = LogPart::kEnd;
  while ((part = NextSettled(reader)) == LogPart::kEntry || part == LogPart::kDamage) {
    if (reader->Begin() == 0) survey.hasHead = false;
    if (part == LogPart::kEntry) survey.end = reader->End();
    if (part == LogPart::kDamage) NoteDamage(reader->Begin(), reader->End(), &survey);
  }
  if (reader->End() == 0) survey.hasHead = false;
  if (survey.hasHead) survey.end = std::max(survey.end, kFirstEntry);
  if (reader->EndOfUnclosed() != 0) survey.end = reader->EndOfUnclosed();
  survey.isClosed = part == LogPart::kClosed;
  return survey;
}

void DescribePlaces(const Survey& survey, LogDamage* damage) {
  const bool startsWithDamage = !survey.damage.empty() && survey.damage.front().begin == 0;
  if (!survey.hasHead && !startsWithDamage && survey.end != 0) {
    damage->isLeft = true;
    damage->findings.emplace_back("the head is missing; `qvxctl log repair` leaves it so");
  }
  for (const Place& place : survey.damage) {
    const bool isCutOff = damage->mendable && place.begin >= damage->end;
    if (!isCutOff) damage->isLeft = true;
    damage->findings.push_back(Bytes(place.begin, place.end) + " are no entry" +
                               (isCutOff ? "" : "; `qvxctl log repair` leaves them"));
  }
  if (survey.places <= kMostPlaces) return;
  damage->findings.push_back(std::to_string(survey.places - kMostPlaces) +
                             " more places are damaged");
}

std::string MendOf(const LogDamage& damage, bool hasHead) {
  if (damage.findings.empty()) return "";
  if (damage.mendable) return "qvxctl log repair";
  return hasHead || damage.size < kSmallestLog ? "qvxctl log clear" : "qvxctl log clear --yes";
}

}  // namespace

std::string DescribeTornEnd(u64 end, bool isUnclosed, u64 size) {
  if (size < kSmallestLog) return "holds no log: the next entry begins it anew";
  if (end < kFirstEntry) {
    return "this is no log: it has no head and no entry; `qvxctl log clear --yes` deletes it and "
           "begins a log";
  }
  return std::string(isUnclosed ? "the closing tag is missing or cut" : "the end is damaged") +
         ": `qvxctl log repair` puts the closing tag at offset " + std::to_string(end) +
         (size > end + kClosingLength ? " and cuts off what follows" : "");
}

LogDamage ExamineLog(const std::string& path) {
  LogFile file(path);
  LogReader reader(&file);
  const Survey survey = ReadThrough(&reader);
  LogDamage damage;
  damage.end = survey.end;
  damage.size = file.Size();
  if (damage.size == 0) return damage;
  damage.mendable = damage.size >= kSmallestLog && !survey.isClosed && survey.end >= kFirstEntry;
  if (damage.size >= kSmallestLog) DescribePlaces(survey, &damage);
  if (damage.size < kSmallestLog || !survey.isClosed) {
    const bool isUnclosed = reader.EndOfUnclosed() != 0;
    damage.findings.push_back(DescribeTornEnd(survey.end, isUnclosed, damage.size));
  }
  damage.mend = MendOf(damage, survey.hasHead);
  return damage;
}

void RepairLog(const std::string& path, const LogDamage& seen) {
  hGFileLock = CreateGlobalMutex(static_cast<u32>(CreateIPCName(kFileLockOffset)));
  const FileLockGuard lock(QVX_LOCK_WAIT);
  if (!lock) throw CallFailure("log repair", path, SM_STATUS_LOCK_FAILED, 0);
  if (ExamineLog(path) != seen) throw Failure(kNo, path + ": has changed meanwhile; look again");
  Descriptor file = OpenDescriptor(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOFOLLOW);
  if (!file) throw SystemFailure(path, errno);
  const ssize_t written =
      pwrite(file.Number(), kClosing, kClosingLength, static_cast<off_t>(seen.end));
  if (written != static_cast<ssize_t>(kClosingLength) ||
      ftruncate(file.Number(), static_cast<off_t>(seen.end + kClosingLength)) != 0 ||
      fsync(file.Number()) != 0 || !file.Close()) {
    throw SystemFailure(path, errno);
  }
}

}  // namespace qvx::ctl
