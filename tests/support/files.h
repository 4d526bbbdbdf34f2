// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_FILES_H
#define QVX_TESTS_SUPPORT_FILES_H

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace qvx::test {

// Tests write fixed system paths: never outside the sandbox.
inline void RequireSandbox() {
  if (access("/run/qvx-sandbox", F_OK) != 0) {
    fputs("this test runs only inside tests/sandbox\n", stderr);
    _exit(125);
  }
}

inline std::string ReadFile(const std::string& path) {
  std::string text;
  FILE* const file = fopen(path.c_str(), "rbe");
  if (file == nullptr) return "(cannot be opened)";
  char piece[65536];
  for (size_t got = 0; (got = fread(piece, 1, sizeof(piece), file)) != 0;) {
    text.append(piece, got);
  }
  (void)fclose(file);
  return text;
}

inline void WriteFile(const std::string& path, const std::string& text) {
  RequireSandbox();
  FILE* const file = fopen(path.c_str(), "wbe");
  if (file == nullptr || fwrite(text.data(), 1, text.size(), file) != text.size() ||
      fclose(file) != 0) {
    perror(path.c_str());
    abort();
  }
}

inline bool Exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

// The permission bits, set-id and sticky bits included; 0 for a missing file.
inline mode_t ModeOf(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

}  // namespace qvx::test

#endif
