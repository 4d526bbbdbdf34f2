// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr char kLockFile[] = "/etc/cim/zarn/plinthos/var/lib/vexilon/.qvxipc";
constexpr char kClosingTag[] = "</EventLog>";

std::vector<std::string> Names(const char* folder) {
  std::vector<std::string> names;
  DIR* const open = opendir(folder);
  if (open == nullptr) return names;
  for (const dirent* entry; (entry = readdir(open)) != nullptr;) {
    names.emplace_back(entry->d_name);
  }
  closedir(open);
  return names;
}

int Descriptors() { return static_cast<int>(Names("/proc/self/fd").size()); }

unsigned Count(const std::string& text, const char* word) {
  unsigned count = 0;
  for (size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += strlen(word)) {
    ++count;
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

bool WellFormed(const std::string& log) {
  return log.rfind("<?xml", 0) == 0 && Count(log, "<EventLog>") == 1 &&
         Count(log, kClosingTag) == 1 && Count(log, "<LogEntry>") == Count(log, "</LogEntry>") &&
         log.compare(log.size() - strlen(kClosingTag), std::string::npos, kClosingTag) == 0;
}

// The entries alone: what every later log begins with.
std::string Entries(const std::string& log) { return log.substr(0, log.rfind(kClosingTag)); }

}  // namespace

std::string Path(const char* name) { return std::string(kPlace) + "/" + name; }

std::string ReadText(const std::string& path) {
  FILE* const file = fopen(path.c_str(), "rbe");
  if (file == nullptr) return "(none)";
  std::string text;
  char piece[65536];
  for (size_t got = 0; (got = fread(piece, 1, sizeof(piece), file)) != 0;) {
    text.append(piece, got);
  }
  (void)fclose(file);
  return text;
}

void WriteText(const std::string& path, const std::string& text) {
  FILE* const file = fopen(path.c_str(), "wbe");
  if (file == nullptr || fwrite(text.data(), 1, text.size(), file) != text.size() ||
      fclose(file) != 0) {
    perror(path.c_str());
    _exit(3);
  }
}

void MakePlace() {
  (void)mkdir(kPlace, 0755);
  for (const std::string& name : Names(kPlace)) {
    (void)unlink(Path(name.c_str()).c_str());
  }
}

Judge::Judge(const Scene& scene) : scene_(&scene) {
  MakePlace();
  scene.prepare();
  if (scene.kind == Kind::kWhole) {
    (void)InChild([&] { return std::string(scene.act() ? "" : "fails without a fault"); });
    after_ = ReadText(scene.path);
    MakePlace();
    scene.prepare();
  }
  if (scene.path != nullptr) before_ = ReadText(scene.path);
  descriptors_ = Descriptors();
}

std::string Judge::File(bool done, bool torn) const {
  if (scene_->kind == Kind::kPure) return "";
  const std::string now = ReadText(scene_->path);
  if (scene_->kind == Kind::kWhole) {
    if (now == after_) return "";
    if (now != before_) return "the file is neither old nor new: " + now.substr(0, 300);
    return done ? "reported as done, but the file is the old one" : "";
  }
  const bool earlier = before_ == "(none)" || now.rfind(Entries(before_), 0) == 0;
  if (!earlier) return "an earlier entry is not as it was: " + now.substr(0, 300);
  const unsigned entries = Count(before_, "</LogEntry>");
  if (done && !WellFormed(now)) return "reported as done, but not well-formed: " + now;
  if (done && Count(now, "</LogEntry>") <= entries)
    return "reported as done, but no entry is there";
  if (!done && !torn && Count(now, "</LogEntry>") > entries) return "not reported, but it is there";
  return "";
}

std::string Judge::Process(bool done) const {
  if (Descriptors() != descriptors_) {
    return "descriptors: " + std::to_string(descriptors_) + " before, " +
           std::to_string(Descriptors()) + " after";
  }
  if (!LockIsFree()) return "the lock is still held";
  // A call that failed may leave its copy; the next one clears it away.
  for (const std::string& name : Names(kPlace)) {
    if (done && name.rfind("pxt", 0) == 0) return "a temporary file is left: " + name;
  }
  return "";
}

std::string Judge::Next() const {
  if (!scene_->again) return "";
  if (!scene_->act()) return "the next call fails";
  const std::string wrong = File(true, true);
  return wrong.empty() ? Process(true) : wrong;
}

void Tally::Add(const std::string& wrong, const std::string& where) {
  ++points;
  if (wrong.empty()) return;
  ++failed;
  if (failed <= 20) printf("  %s: %s\n", where.c_str(), wrong.c_str());
}

std::string RunChild(void (*body)(void*, int), void* context) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) abort();
  (void)fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) abort();
  if (child == 0) {
    close(ends[0]);
    alarm(100);
    body(context, ends[1]);
    _exit(0);
  }
  close(ends[1]);
  std::string wrong;
  char piece[4096];
  for (ssize_t got = 0; (got = read(ends[0], piece, sizeof(piece))) > 0;) {
    wrong.append(piece, static_cast<size_t>(got));
  }
  close(ends[0]);
  int status = 0;
  (void)waitpid(child, &status, 0);
  if (WIFSIGNALED(status)) return "ended by signal " + std::to_string(WTERMSIG(status));
  if (WEXITSTATUS(status) != 0) return "left with " + std::to_string(WEXITSTATUS(status));
  return wrong;
}

}  // namespace qvx::torture
