/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * A host that loads and unloads the library many times: load_host LIBRARY. Each load attaches
 * afresh, is a new image, starts no thread and leaves no descriptor behind.
 */
#include <dirent.h>
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "qvxcs/types.h"

static int EntriesOf(const char* path) {
  DIR* const folder = opendir(path);
  int count = 0;
  while (folder != NULL && readdir(folder) != NULL) {
    ++count;
  }
  if (folder != NULL) {
    closedir(folder);
  }
  return count;
}

static int Mapped(const char* name) {
  char line[4096];
  int found = 0;
  FILE* const maps = fopen("/proc/self/maps", "r");
  while (maps != NULL && fgets(line, sizeof(line), maps) != NULL) {
    found |= strstr(line, name) != NULL;
  }
  if (maps != NULL) {
    fclose(maps);
  }
  return found;
}

static int UseOnce(const char* path) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) {
    fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  u32 (*hostName)(astring*, u32*) = NULL;
  u32 (*maximum)(u32*) = NULL;
  *(void**)&hostName = dlsym(library, "PXTGetIPHostName");
  *(void**)&maximum = dlsym(library, "PXTGetCmdLogMaxSize");
  char name[256];
  u32 size = sizeof(name);
  u32 limit = 0;
  if (hostName == NULL || maximum == NULL) return 2;
  /* Both work only in an attached image. */
  if (hostName(name, &size) != 0 || strcmp(name, "qvxtest") != 0 || size != 8) return 3;
  if (maximum(&limit) != 0 || limit != 131072) return 4;
  if (EntriesOf("/proc/self/task") != 3) { /* ".", ".." and one thread */
    return 5;
  }
  const int mapped = Mapped("/libqvxcs.so");
  return mapped && dlclose(library) == 0 && !Mapped("/libqvxcs.so") ? 0 : 6;
}

int main(int argc, char** argv) {
  if (argc != 2) return 125;
  int result = UseOnce(argv[1]);
  const int descriptors = EntriesOf("/proc/self/fd");
  for (int round = 0; result == 0 && round < 200; ++round) {
    result = UseOnce(argv[1]);
  }
  return result == 0 && EntriesOf("/proc/self/fd") != descriptors ? 7 : result;
}
