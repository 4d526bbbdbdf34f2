// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// What is right after a call, whatever happened within it.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstring>

#include "torture/log_judge.h"
#include "torture/log_text.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

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

bool HasItsMode(const char* path) {
  struct stat seen = {};
  return stat(path, &seen) != 0 || (seen.st_mode & 07777) == kFileMode;
}

std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

// Where a link leads, if the path is one.
std::string LinkedName(const char* path) {
  char target[256] = "";
  return readlink(path, target, sizeof(target) - 1) > 0 ? NameOf(target) : "";
}

// A failed change may leave its copy, which the next change replaces: one that broke off after the
// copy was made, as these statuses tell. None leaves any other file.
bool MayStay(const std::string& name, qvx_u32 status) {
  const bool broken = status == SM_STATUS_WRITE_FAILED || status == SM_STATUS_FILE_DELETE_FAILED ||
                      status == SM_STATUS_FILE_CREATE_FAILED || status == QVX_FAILED;
  if (name == "pxtini32.tmp") return broken || status == SM_STATUS_BAD_SECTION_HEADER;
  return name == "pxtcfg32.tmp" && (broken || status == SM_STATUS_NO_MEMORY);
}

bool IsLog(const Scene& scene) {
  return scene.kind == Kind::kLog || scene.kind == Kind::kMoved || scene.kind == Kind::kCleared;
}

long BlocksOf(const Scene& scene) { return scene.others ? OwnBlocks() : LiveBlocks(); }

std::string TextOf(const std::string& file) { return file == kNone ? "" : file; }

std::string Shown(const std::string& text) { return text.substr(0, 300); }

}  // namespace

Judge::Judge(const Scene& scene, Start start) : scene_(&scene), start_(start), backup_(kNone) {
  for (int time = 0; start == Start::kWarm && time < 2; ++time) {
    MakePlace();
    scene.prepare();
    (void)scene.act();
  }
  MakePlace();
  scene.prepare();
  folder_ = scene.path == nullptr ? kPlace : FolderOf(scene);
  names_ = Names(folder_.c_str());
  if (scene.path != nullptr) {
    before_ = ReadText(scene.path);
    names_.push_back(NameOf(scene.path));
    names_.push_back(LinkedName(scene.path));
  }
  if (IsLog(scene)) backup_ = ReadText(BackupOf(scene.path));
  if (IsLog(scene) && IsDamaged(before_)) {
    torn_ = before_;
    before_ = MendedLog(torn_);
  }
  if (scene.kind == Kind::kMoved) names_.push_back(NameOf(BackupOf(scene.path)));
  BeginHere();
}

void Judge::BeginHere() {
  descriptors_ = Descriptors();
  blocks_ = BlocksOf(*scene_);
}

// Where nothing was put back, what was begun in place.
bool Judge::IsCutSection(const std::string& now) const {
  return scene_->kind == Kind::kAppended && StartsWith(now, TextOf(before_)) &&
         StartsWith(scene_->expected, now);
}

std::string Judge::WholeFile(const std::string& now, qvx_u32 status, Torn torn) const {
  const std::string& after = scene_->expected;
  const bool done = status == SM_STATUS_SUCCESS;
  if (done) return now == after ? "" : "reported as done, but the file is: " + Shown(now);
  if (now == before_ || (torn != Torn::kNo && now == after)) return "";
  if (torn != Torn::kNo && IsCutSection(now)) return "";
  // Without room for a copy the file is made in place, and stays empty where its line finds no
  // room.
  const bool tried = status == SM_STATUS_WRITE_FAILED || status == SM_STATUS_FILE_OPEN_FAILED;
  if (before_ == kNone && now.empty()) return tried ? "" : "made empty";
  if (now == after) return "reported as failed, but done";
  return "the file is neither old nor new: " + Shown(now);
}

std::string Judge::Gift(qvx_u32 status) const {
  const bool right = status != SM_STATUS_SUCCESS || Given() == scene_->expected;
  return right ? "" : "reported as done, but it gives: " + Shown(Given());
}

std::string Judge::File(qvx_u32 status, Torn torn) const {
  if (scene_->kind == Kind::kPure) return Gift(status);
  if (!IsLog(*scene_)) return WholeFile(ReadText(scene_->path), status, torn);
  return JudgeLog(*scene_, {before_, backup_, torn_}, ReadLogFiles(scene_->path),
                  status == SM_STATUS_SUCCESS, torn);
}

std::string Judge::DescriptorsAndLock() const {
  if (Descriptors() != descriptors_) {
    return "descriptors: " + std::to_string(descriptors_) + " before, " +
           std::to_string(Descriptors()) + " after";
  }
  return LockIsFree() ? "" : "the lock is still held";
}

std::string Judge::Process(qvx_u32 status) const {
  if (const std::string wrong = DescriptorsAndLock(); !wrong.empty()) return wrong;
  for (const std::string& name : Names(folder_.c_str())) {
    if (std::find(names_.begin(), names_.end(), name) != names_.end()) continue;
    if (!MayStay(name, status)) return name + " is left after status " + std::to_string(status);
  }
  return "";
}

std::string Judge::TornProcess() const { return DescriptorsAndLock(); }

// Only after a later call: until its next use the C library may be without its copy of TZ, or with
// a message.
std::string Judge::Memory() const {
  const long blocks = BlocksOf(*scene_);
  if (start_ == Start::kCold || blocks == blocks_) return "";
  // The later call may not begin where the log is missing.
  if (scene_->kind == Kind::kCleared && blocks < blocks_) return "";
  return "blocks: " + std::to_string(blocks_) + " before, " + std::to_string(blocks) + " after";
}

std::string Judge::NextWholeFile(qvx_u32* status) const {
  const std::string first = ReadText(scene_->path);
  *status = scene_->act();
  const std::string now = ReadText(scene_->path);
  if (first != before_ && first != scene_->expected && !first.empty() && IsCutSection(first)) {
    // A line that was cut takes up the next one.
    return StartsWith(now, TextOf(before_)) ? "" : "the next call loses text: " + Shown(now);
  }
  if (*status != SM_STATUS_SUCCESS) return "the next call fails: " + std::to_string(*status);
  return now == scene_->expected ? "" : "the next call leaves: " + Shown(now);
}

std::string Judge::NextLog(qvx_u32* status, Torn torn) const {
  const LogFiles first = ReadLogFiles(scene_->path);
  *status = scene_->act();
  const LogFiles now = ReadLogFiles(scene_->path);
  // A missing log cannot be cleared.
  const bool isMissing = first.log == kNone && before_ != kNone;
  if (scene_->kind == Kind::kCleared && isMissing && *status == QVX_FAILED) {
    return now.log == kNone ? "" : "a log that cannot be cleared is made";
  }
  const bool damaged = scene_->kind != Kind::kCleared && IsDamaged(first.log);
  if (damaged && torn == Torn::kYes && *status == SM_STATUS_BAD_DATA) {
    return now.log == first.log ? "" : "a log that is refused is changed";
  }
  if (*status != SM_STATUS_SUCCESS) return "the next call fails: " + std::to_string(*status);
  // A damaged log is mended: what was cut is gone.
  const LogFiles base = damaged ? LogFiles{before_, backup_, torn_} : first;
  return JudgeLog(*scene_, base, now, true, Torn::kNo);
}

std::string Judge::NextFile(qvx_u32* status, Torn torn) const {
  if (IsLog(*scene_)) return NextLog(status, torn);
  if (scene_->kind != Kind::kPure) return NextWholeFile(status);
  *status = scene_->act();
  if (*status != SM_STATUS_SUCCESS) return "the next call fails: " + std::to_string(*status);
  return Gift(*status);
}

std::string Judge::Next(Torn torn) const {
  if (!scene_->again) return "";
  qvx_u32 status = SM_STATUS_SUCCESS;
  if (const std::string wrong = NextFile(&status, torn); !wrong.empty()) return wrong;
  // A mode that cannot be set is no fault; now it can.
  const bool isUpdate = scene_->kind != Kind::kPure && scene_->kind != Kind::kCleared;
  if (isUpdate && status == SM_STATUS_SUCCESS && !HasItsMode(scene_->path)) {
    return "the mode is another";
  }
  if (const std::string wrong = Process(status); !wrong.empty()) return wrong;
  return Memory();
}

}  // namespace qvx::torture
