// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// What a log may be after a call: byte for byte, except for the times in what the call added.
#include "torture/log_judge.h"

#include <algorithm>

#include "torture/log_text.h"

namespace qvx::torture {
namespace {

std::string Shown(const std::string& text) {
  constexpr size_t kEnd = 300;
  return text.size() <= 2 * kEnd ? text
                                 : text.substr(0, kEnd) + " ... " + text.substr(text.size() - kEnd);
}

bool IsEmpty(const std::string& log) { return log == kNone || log.empty(); }
std::string TextOf(const std::string& log) { return log == kNone ? "" : log; }
std::string Closed(const std::string& entries) { return entries + kLogEnd; }
// Without what may follow the closing tag.
std::string Trimmed(const std::string& log) { return IsEmpty(log) ? "" : Closed(EntriesOf(log)); }

// A new log: with the library's own entry alone, with the scene's alone, with both.
std::string OwnAlone(const Scene& scene) {
  return scene.begins.empty() ? "" : Closed(LogBegin() + scene.begins);
}
std::string SceneAlone(const Scene& scene) { return Closed(LogBegin() + scene.expected); }
std::string Begun(const Scene& scene) { return Closed(LogBegin() + scene.begins + scene.expected); }
std::string Grown(const Scene& scene, const std::string& log) {
  return IsEmpty(log) ? Begun(scene) : Closed(EntriesOf(log) + scene.expected);
}

// Every byte is that of the old or of the new text at its place.
bool IsMadeOf(const std::string& now, const std::string& old, const std::string& next) {
  if (now.size() > std::max(old.size(), next.size())) return false;
  if (!old.empty() && now.size() < EntriesOf(old).size()) return false;
  const auto is = [&now](const std::string& text, size_t at) {
    return at < text.size() && (text[at] == kAny || text[at] == now[at]);
  };
  for (size_t at = 0; at < now.size(); ++at) {
    if (!is(old, at) && !is(next, at)) return false;
  }
  return true;
}

// A new log whose writing broke off.
bool IsPartOfNew(const Scene& scene, const std::string& now) {
  return IsEmpty(now) || IsMadeOf(now, "", OwnAlone(scene)) ||
         IsMadeOf(now, OwnAlone(scene), Begun(scene)) || IsMadeOf(now, "", SceneAlone(scene));
}

bool IsMoved(const Scene& scene, const LogFiles& before, const LogFiles& now) {
  return scene.kind == Kind::kMoved && !IsEmpty(before.log) && now.backup == before.log;
}

// A move that fails may have removed the backup before it.
bool HasItsBackup(const LogFiles& before, const LogFiles& now) {
  return now.backup == before.backup || now.backup == kNone;
}

bool IsDone(const Scene& scene, const LogFiles& before, const LogFiles& now) {
  // The library ignores that its own entry fails.
  if (IsMoved(scene, before, now)) {
    return Fits(now.log, Begun(scene)) || Fits(now.log, SceneAlone(scene));
  }
  if (scene.kind == Kind::kCleared) return Fits(now.log, SceneAlone(scene));
  if (!HasItsBackup(before, now)) return false;
  if (scene.kind == Kind::kMoved && IsEmpty(before.log)) return Fits(now.log, SceneAlone(scene));
  return Fits(now.log, Grown(scene, before.log));
}

bool IsUndone(const Scene& scene, const LogFiles& before, const LogFiles& now) {
  const bool isNew = IsEmpty(now.log) || Fits(now.log, OwnAlone(scene));
  if (IsMoved(scene, before, now)) return isNew;
  if (!HasItsBackup(before, now)) return false;
  if (now.log == before.log || now.log == Trimmed(before.log)) return true;
  if (!before.torn.empty() && now.log == before.torn) return true;
  if (scene.kind == Kind::kCleared) return IsEmpty(now.log);
  return IsEmpty(before.log) && isNew;
}

bool IsBetween(const Scene& scene, const LogFiles& before, const LogFiles& now) {
  if (IsMoved(scene, before, now)) return IsPartOfNew(scene, now.log);
  if (!HasItsBackup(before, now)) return false;
  if (now.log == before.log) return true;
  if (scene.kind == Kind::kCleared || IsEmpty(before.log)) return IsPartOfNew(scene, now.log);
  // The closing tag comes back first, then what follows it goes.
  const std::string old = Trimmed(before.log);
  return IsMadeOf(TextOf(now.log), old, Grown(scene, before.log)) ||
         (!before.torn.empty() && IsMadeOf(TextOf(now.log), old, before.torn));
}

// The earlier entries were on the disk.
bool HasEarlierEntries(const Scene& scene, const LogFiles& before, const LogFiles& now) {
  if (scene.kind == Kind::kCleared || IsEmpty(before.log)) return true;
  const std::string earlier = EntriesOf(before.log);
  return StartsWith(now.log, earlier) ||
         (scene.kind == Kind::kMoved && StartsWith(now.backup, earlier));
}

}  // namespace

std::string BackupOf(const std::string& path) { return path.substr(0, path.size() - 1) + "_"; }

std::string MendedLog(const std::string& torn) {
  constexpr char kEntryEnd[] = "</LogEntry>";
  const size_t end = torn.rfind(kEntryEnd);
  return end == std::string::npos ? "" : Closed(torn.substr(0, end + sizeof(kEntryEnd) - 1));
}

LogFiles ReadLogFiles(const char* path) { return {ReadText(path), ReadText(BackupOf(path)), ""}; }

std::string JudgeLog(const Scene& scene, const LogFiles& before, const LogFiles& now, bool done,
                     Torn torn) {
  if (done) {
    return IsDone(scene, before, now) ? "" : "reported as done, but the log is: " + Shown(now.log);
  }
  if (torn == Torn::kLost) {
    return HasEarlierEntries(scene, before, now) ? ""
                                                 : "an earlier entry is lost: " + Shown(now.log);
  }
  const bool right =
      IsUndone(scene, before, now) ||
      (torn == Torn::kYes && (IsBetween(scene, before, now) || IsDone(scene, before, now)));
  return right ? "" : "reported as failed, but the log is: " + Shown(now.log);
}

bool IsDamaged(const std::string& log) {
  return !IsEmpty(log) && (!StartsWith(log, LogBegin()) || CountOf(log, kLogEnd) != 1);
}

}  // namespace qvx::torture
