// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// What is right after a call, whatever happened within it.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstring>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kLockFile[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc";
constexpr char kClosingTag[] = "</EventLog>";
constexpr mode_t kFileMode = 01664;

// Without the role map's, which stays open until it is read whole.
int Descriptors() {
  int count = 0;
  for (const std::string& name : Names("/proc/self/fd")) {
    char target[256] = "";
    (void)!readlink(("/proc/self/fd/" + name).c_str(), target, sizeof(target) - 1);
    if (strstr(target, "qvxrolemap") == nullptr) ++count;
  }
  return count;
}

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

unsigned Count(const std::string& text, const char* word) {
  unsigned count = 0;
  for (size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += strlen(word)) {
    ++count;
  }
  return count;
}

}  // namespace

unsigned EntryCount(const std::string& log) { return Count(log, "</LogEntry>"); }

bool WellFormed(const std::string& log) {
  return StartsWith(log, "<?xml") && Count(log, "<EventLog>") == 1 &&
         Count(log, kClosingTag) == 1 && Count(log, "<LogEntry>") == EntryCount(log) &&
         log.compare(log.size() - strlen(kClosingTag), std::string::npos, kClosingTag) == 0;
}

namespace {

// Without those that the library writes of its own, of a log that it begins.
unsigned CallersEntries(const std::string& log) {
  return EntryCount(log) - Count(log, "<Description>Log was cleared<") -
         Count(log, "<Description>Log backup created<");
}

// Another process tries it: closing a descriptor of the lock file would end this one's hold.
bool LockIsFree() {
  const pid_t child = fork();
  if (child == 0) {
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    whole.l_whence = SEEK_SET;
    const int file = open(kLockFile, O_RDONLY | O_CLOEXEC);
    _exit(file >= 0 && fcntl(file, F_GETLK, &whole) == 0 && whole.l_type == F_UNLCK ? 0 : 1);
  }
  int status = 1;
  return waitpid(child, &status, 0) == child && status == 0;
}

// The entries alone: what every later log begins with.
std::string Entries(const std::string& log) { return log.substr(0, log.rfind(kClosingTag)); }

// The backup's name: the path with its last character replaced.
std::string BackupOf(const std::string& path) { return path.substr(0, path.size() - 1) + "_"; }

bool HasItsMode(const char* path) {
  struct stat seen = {};
  return stat(path, &seen) != 0 || (seen.st_mode & 07777) == kFileMode;
}

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// A failed change may leave its copy, which the next change replaces: one that broke off after the
// copy was made, as these statuses tell. None leaves any other file.
bool MayStay(const std::string& name, qvx_u32 status) {
  const bool broken = status == SM_STATUS_WRITE_FAILED || status == SM_STATUS_FILE_DELETE_FAILED ||
                      status == SM_STATUS_FILE_CREATE_FAILED || status == QVX_FAILED;
  if (name == "pxtini32.tmp") return broken || status == SM_STATUS_BAD_SECTION_HEADER;
  return name == "pxtcfg32.tmp" && (broken || status == SM_STATUS_NO_MEMORY);
}

// The files of the scene itself.
std::vector<std::string> OwnNames() {
  std::vector<std::string> own;
  for (const std::string& name : Names(kPlace)) {
    if (!StartsWith(name, "pxt")) own.push_back(name);
  }
  return own;
}

std::string TextOf(const std::string& file) { return file == kNone ? "" : file; }

std::string Shown(const std::string& text) { return text.substr(0, 300); }

}  // namespace

Judge::Judge(const Scene& scene) : scene_(&scene) {
  MakePlace();
  scene.prepare();
  if (scene.kind == Kind::kWhole || scene.kind == Kind::kAppended) {
    (void)InChild([&] { return std::string(scene.act() == 0 ? "" : "fails without a fault"); });
    after_ = ReadText(scene.path);
    names_ = OwnNames();
    MakePlace();
    scene.prepare();
  }
  if (scene.path != nullptr) before_ = ReadText(scene.path);
  for (const std::string& name : OwnNames()) {
    names_.push_back(name);
  }
  if (scene.path != nullptr) names_.push_back(NameOf(scene.path));
  if (scene.kind == Kind::kMoved) names_.push_back(NameOf(BackupOf(scene.path)));
  BeginHere();
}

void Judge::BeginHere() { descriptors_ = Descriptors(); }

std::string Judge::WholeFile(const std::string& now, qvx_u32 status, Torn torn) const {
  const bool done = status == SM_STATUS_SUCCESS;
  if (done) return now == after_ ? "" : "reported as done, but the file is: " + Shown(now);
  if (now == before_ || (torn == Torn::kYes && now == after_)) return "";
  const bool part = StartsWith(now, TextOf(before_)) && StartsWith(after_, now);
  if (scene_->kind == Kind::kAppended && torn == Torn::kYes && part) return "";
  // Without room for a copy the file is made in place, and stays empty where its line finds no
  // room.
  const bool tried = status == SM_STATUS_WRITE_FAILED || status == SM_STATUS_FILE_OPEN_FAILED;
  if (before_ == kNone && now.empty()) return tried ? "" : "made empty";
  if (now == after_) return "reported as failed, but done";
  return "the file is neither old nor new: " + Shown(now);
}

std::string Judge::Log(const std::string& now, bool done, Torn torn) const {
  const std::string earlier = Entries(TextOf(before_));
  // A move that failed may have been made with the next call.
  const bool moved =
      scene_->kind == Kind::kMoved && StartsWith(ReadText(BackupOf(scene_->path)), earlier);
  if (!moved && !StartsWith(now, earlier))
    return "an earlier entry is not as it was: " + Shown(now);
  const unsigned entries = moved ? 0 : CallersEntries(before_);
  if (done && !WellFormed(now)) return "reported as done, but not well-formed: " + Shown(now);
  if (done && CallersEntries(now) <= entries) return "reported as done, but no entry is there";
  if (!done && torn == Torn::kNo && CallersEntries(now) > entries) {
    return "reported as failed, but the entry is there";
  }
  return "";
}

std::string Judge::ClearedLog(const std::string& now, bool done, Torn torn) const {
  const bool begun = WellFormed(now) && EntryCount(now) == 1 && now != before_;
  if (done) return begun ? "" : "reported as done, but the log is: " + Shown(now);
  if (now == before_ || now == kNone || now.empty()) return "";
  return torn == Torn::kYes && !StartsWith(now, Entries(before_)) ? "" : "left: " + Shown(now);
}

std::string Judge::File(qvx_u32 status, Torn torn) const {
  if (scene_->kind == Kind::kPure) return "";
  const bool done = status == SM_STATUS_SUCCESS;
  const std::string now = ReadText(scene_->path);
  if (scene_->kind == Kind::kCleared) return ClearedLog(now, done, torn);
  if (scene_->kind == Kind::kLog || scene_->kind == Kind::kMoved) return Log(now, done, torn);
  return WholeFile(now, status, torn);
}

std::string Judge::Process(qvx_u32 status) const {
  if (Descriptors() != descriptors_) {
    return "descriptors: " + std::to_string(descriptors_) + " before, " +
           std::to_string(Descriptors()) + " after";
  }
  if (!LockIsFree()) return "the lock is still held";
  for (const std::string& name : Names(kPlace)) {
    if (std::find(names_.begin(), names_.end(), name) != names_.end()) continue;
    if (!MayStay(name, status)) return name + " is left after status " + std::to_string(status);
  }
  return "";
}

// What a call after the fault may find that it cannot put right, as its description says.
bool Judge::IsBeyondMending(qvx_u32 status) const {
  const std::string now = ReadText(scene_->path);
  // A missing log cannot be cleared.
  if (scene_->kind == Kind::kCleared) return now == kNone && status == QVX_FAILED;
  // A line that was cut takes up the next one.
  return scene_->kind == Kind::kAppended && now != after_ && StartsWith(now, TextOf(before_));
}

// Whether a call that succeeds always writes the file.
bool Judge::IsUpdate() const {
  return scene_->kind != Kind::kPure && scene_->kind != Kind::kCleared;
}

std::string Judge::Next() const {
  if (!scene_->again) return "";
  const qvx_u32 status = scene_->act();
  if (scene_->path != nullptr && IsBeyondMending(status)) return Process(status);
  if (status != SM_STATUS_SUCCESS) return "the next call fails: " + std::to_string(status);
  // A mode that cannot be set is no fault; now it can.
  if (IsUpdate() && !HasItsMode(scene_->path)) return "the mode is another";
  const std::string wrong = File(SM_STATUS_SUCCESS, Torn::kYes);
  return wrong.empty() ? Process(SM_STATUS_SUCCESS) : wrong;
}

}  // namespace qvx::torture
