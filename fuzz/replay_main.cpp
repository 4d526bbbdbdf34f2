// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// replay FOLDER
//
// Passes every file of a corpus to the fuzzer that it is linked with. Needs no fuzzing compiler.
#include <dirent.h>

#include <cstdio>
#include <set>
#include <string>

#include "qvxcs/types.h"

#include "support/files.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const u8* data, size_t size);

namespace {

std::set<std::string> FilesIn(const std::string& folder) {
  std::set<std::string> names;
  DIR* const directory = opendir(folder.c_str());
  if (directory == nullptr) return names;
  while (const dirent* entry = readdir(directory)) {
    if (entry->d_name[0] != '.') names.insert(entry->d_name);
  }
  (void)closedir(directory);
  return names;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    fputs("usage: replay FOLDER\n", stderr);
    return 2;
  }
  (void)LLVMFuzzerInitialize(&argc, &argv);
  const std::string folder = argv[1];
  const std::set<std::string> names = FilesIn(folder);
  for (const std::string& name : names) {
    // Printed first, so that after a crash the last line names the input.
    fprintf(stderr, "%s\n", name.c_str());
    const std::string input = qvx::test::ReadFile(folder + "/" + name);
    (void)LLVMFuzzerTestOneInput(reinterpret_cast<const u8*>(input.data()), input.size());
  }
  fprintf(stderr, "%zu files replayed\n", names.size());
  return names.empty() ? 1 : 0;
}
