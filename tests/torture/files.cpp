// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Files, child processes and the count of points.
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "torture/machine.h"
#include "torture/torture.h"

namespace qvx::torture {

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

std::string FolderOf(const Scene& scene) {
  const std::string path = scene.path;
  return path.substr(0, path.rfind('/'));
}

std::string Path(const char* name) { return std::string(kPlace) + "/" + name; }

std::string ReadText(const std::string& path) {
  FILE* const file = fopen(path.c_str(), "rbe");
  if (file == nullptr) return kNone;
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
  (void)truncate(kLockFile, 0);
}

namespace {

// Each thread's own. No memory of the heap, which a scene's call may be without.
thread_local char given[20000];
thread_local size_t givenSize = 0;

}  // namespace

void Give(const void* bytes, size_t size) {
  givenSize = std::min(size, sizeof(given));
  memcpy(given, bytes, givenSize);
}

std::string Given() { return {given, givenSize}; }

bool GaveWhole(const char* text, size_t wholeLength, const std::vector<std::string>& pieces) {
  if (text == nullptr) return false;
  Give(text, strlen(text));
  if (strlen(text) == wholeLength) return true;
  while (*text != '\0') {
    const auto piece = std::find_if(pieces.begin(), pieces.end(), [text](const std::string& each) {
      return strncmp(text, each.c_str(), each.size()) == 0;
    });
    if (piece == pieces.end()) return true;  // which shows in the comparison
    text += piece->size();
  }
  return false;
}

bool Came(qvx_astring* text) {
  if (text != nullptr) Give(text, strlen(text));
  return Came(static_cast<void*>(text));
}

bool Came(qvx_ustring* text) {
  size_t units = 0;
  while (text != nullptr && text[units] != 0) {
    ++units;
  }
  if (text != nullptr) Give(text, units * sizeof(qvx_ustring));
  return Came(static_cast<void*>(text));
}

bool Came(void* block) {
  const bool came = block != nullptr;
  PXTFreeMem(block);
  return came;
}

namespace {

// A broken lock makes each point wait until it is given up: a proof needs no more than a few.
unsigned long MostFailures() {
  const char* const wanted = getenv("QVX_TORTURE_MOST_FAILURES");
  return wanted == nullptr ? 0 : strtoul(wanted, nullptr, 10);
}

}  // namespace

void Tally::Add(const std::string& wrong, const std::string& where) {
  ++points;
  if (wrong.empty()) return;
  ++failed;
  if (failed <= 20) printf("  %s: %s\n", where.c_str(), wrong.c_str());
  static const unsigned long enough = MostFailures();
  if (failed == enough) throw *this;
}

namespace {

constexpr int kEndOfOthers = 127;  // the loader's own status, too

bool IsPartOf(const char* file, const char* name) { return strstr(file, name) != nullptr; }

// PAM looks up names in a module that it has not loaded where its own record of it finds no memory.
void EndInOthers(int signal, siginfo_t*, void* context) {
  const auto* const at = static_cast<const ucontext_t*>(context);
  Dl_info place = {};
  const auto address = static_cast<uintptr_t>(at->uc_mcontext.gregs[kCodePointer]);
  const bool found = dladdr(reinterpret_cast<void*>(address), &place) != 0;
  if (found && (IsPartOf(place.dli_fname, "libpam.so") || IsPartOf(place.dli_fname, "ld-linux"))) {
    _exit(kEndOfOthers);
  }
  (void)std::signal(signal, SIG_DFL);
}

// PAM asks again and again for memory that never comes.
void EndWaiting(int) { _exit(kEndOfOthers); }

void WatchOthers() {
  struct sigaction action = {};
  action.sa_sigaction = EndInOthers;
  action.sa_flags = SA_SIGINFO;
  (void)sigaction(SIGSEGV, &action, nullptr);
}

}  // namespace

bool IsEndInOthers(const std::string& wrong) {
  return wrong == "left with " + std::to_string(kEndOfOthers);
}

void GiveUpAfter(unsigned seconds) {
  (void)std::signal(SIGALRM, EndWaiting);
  (void)alarm(seconds);
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
    WatchOthers();
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
