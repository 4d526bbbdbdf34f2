// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "ctl/log_repair.h"

#include <fcntl.h>
#include <unistd.h>

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
constexpr u64 kSmallestLog = 65;
constexpr u32 kFileLockOffset = 30000;
constexpr size_t kMostFindings = 20;
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

void DescribeEnd(const LogReader& reader, LogPart part, LogDamage* damage) {
  if (part == LogPart::kClosed) return;
  const bool isUnclosed = reader.EndOfUnclosed() != 0;
  if (isUnclosed) damage->end = reader.EndOfUnclosed();
  const u64 closed = damage->end + kClosingLength;
  damage->mendable = damage->end >= kFirstEntry;
  if (!damage->mendable) {
    damage->findings.emplace_back("the head is damaged: only `qvxctl log clear` helps");
    return;
  }
  damage->findings.push_back(
      std::string(isUnclosed ? "the closing tag is missing or cut" : "the end is damaged") +
      ": `qvxctl log repair` puts the closing tag at offset " + std::to_string(damage->end) +
      (damage->size > closed ? " and cuts off what follows" : ""));
}

}  // namespace

LogDamage ExamineLog(const std::string& path) {
  LogFile file(path);
  LogReader reader(&file);
  LogDamage damage;
  LogPart part = LogPart::kEnd;
  while ((part = NextSettled(&reader)) == LogPart::kEntry || part == LogPart::kDamage) {
    if (part == LogPart::kEntry) {
      damage.end = reader.End();
    } else if (damage.findings.size() < kMostFindings) {
      damage.findings.push_back(Bytes(reader.Begin(), reader.End()) + " are no entry");
    }
  }
  damage.size = file.Size();
  if (damage.size < kSmallestLog) {
    return {{"holds no log: the next entry begins it anew"}, false, 0, damage.size};
  }
  if (damage.findings.empty() && damage.end == 0) damage.end = reader.End();
  DescribeEnd(reader, part, &damage);
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
