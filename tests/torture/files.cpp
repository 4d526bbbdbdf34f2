// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Files, child processes and the count of points.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>

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
