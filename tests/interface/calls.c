/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* The host's frame: calls MAP [LIBRARY]. See calls.h. */
#include "calls.h"

#include <ctype.h>
#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

enum { kMostNames = 1000, kReport = 300 };

static const char kOut[] = "/run/descriptor1";
static const char kErr[] = "/run/descriptor2";

static void* library;
static const char* called[kMostNames];
static size_t calledCount;
static const char* lastCalled = "the loading";
static int threadsAreAskedFor;
static int failures;

static void Report(const char* file, int line) {
  ++failures;
  dprintf(kReport, "%s:%d: ", file, line);
}

static void ReportAfter(const char* name) {
  ++failures;
  dprintf(kReport, "after %s: ", name);
}

void Expect(int holds, const char* claim, const char* file, int line) {
  if (!holds) {
    Report(file, line);
    dprintf(kReport, "not so: %s\n", claim);
  }
}

void Equal(s64 got, s64 expected, const char* claim, const char* file, int line) {
  if (got != expected) {
    Report(file, line);
    dprintf(kReport, "%s is %lld, not %lld\n", claim, (long long)got, (long long)expected);
  }
}

void SameText(const astring* got, const char* expected, const char* claim, const char* file,
              int line) {
  if (got == NULL || strcmp(got, expected) != 0) {
    Report(file, line);
    dprintf(kReport, "%s is\n  %s\nnot\n  %s\n", claim, got == NULL ? "(null)" : got, expected);
  }
}

void SameUnits(const ustring* got, const ustring* expected, const char* claim, const char* file,
               int line) {
  size_t at = 0;
  while (got != NULL && got[at] == expected[at] && got[at] != 0) {
    ++at;
  }
  if (got == NULL || got[at] != expected[at]) {
    Report(file, line);
    dprintf(kReport, "%s differs at unit %zu\n", claim, at);
  }
}

void SameOwn(astring* got, const char* expected, const char* claim, const char* file, int line) {
  SameText(got, expected, claim, file, line);
  CALL(PXTFreeMem)(got);
}

void Has(const char* text, const char* part, const char* file, int line) {
  if (text == NULL || strstr(text, part) == NULL) {
    Report(file, line);
    dprintf(kReport, "no\n  %s\nin\n  %s\n", part, text == NULL ? "(null)" : text);
  }
}

/* Entries of a folder of /proc that holds numbers. */
static int NumbersIn(const char* path) {
  int count = 0;
  DIR* const folder = opendir(path);
  for (const struct dirent* each = NULL; folder != NULL && (each = readdir(folder)) != NULL;) {
    count += isdigit((unsigned char)each->d_name[0]) != 0;
  }
  if (folder != NULL) {
    closedir(folder);
  }
  return count;
}

static int ThreadCount(void) { return NumbersIn("/proc/self/task"); }

/* The system may show a thread a moment longer than it was waited for. */
static int HasOneThread(void) {
  for (int tries = 0; tries < 1000; ++tries) {
    if (ThreadCount() == 1) return 1;
    usleep(1000);
  }
  return 0;
}

/* The calls so far wrote nothing to the host's output and left no thread behind. */
static void CheckQuiet(void) {
  for (int descriptor = 1; descriptor <= 2; ++descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0 || status.st_size != 0) {
      ReportAfter(lastCalled);
      dprintf(kReport, "descriptor %d was written to, or closed\n", descriptor);
      (void)ftruncate(descriptor, 0);
    }
  }
  if (!threadsAreAskedFor && !HasOneThread()) {
    ReportAfter(lastCalled);
    dprintf(kReport, "%d threads\n", ThreadCount());
  }
}

void AskForThreads(int some) { threadsAreAskedFor = some; }

static int WasCalled(const char* name) {
  for (size_t at = 0; at < calledCount; ++at) {
    if (strcmp(called[at], name) == 0) return 1;
  }
  return 0;
}

void* Called(const char* name, void* linked) {
  CheckQuiet();
  void* const address = library == NULL ? linked : dlsym(library, name);
  if (address == NULL || calledCount == kMostNames) {
    dprintf(kReport, "there is no %s: %s\n", name, dlerror());
    exit(1);
  }
  if (!WasCalled(name)) {
    called[calledCount++] = name;
  }
  lastCalled = name;
  return address;
}

/* The version script has one name on a line, followed by a semicolon. */
static void CheckThatAllWereCalled(const char* map) {
  char line[256];
  size_t names = 0;
  FILE* const file = fopen(map, "re");
  while (file != NULL && fgets(line, sizeof(line), file) != NULL) {
    char name[128];
    char end = '\0';
    if (sscanf(line, " %127[A-Za-z0-9_]%c", name, &end) != 2 || end != ';') continue;
    ++names;
    if (!WasCalled(name)) {
      ++failures;
      dprintf(kReport, "%s was not called\n", name);
    }
  }
  if (file != NULL) {
    fclose(file);
  }
  EXPECT(names != 0);
  EXPECT_EQ(calledCount, names);
}

size_t HeapInUse(void) {
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

void WriteWhole(const char* path, const void* bytes, size_t size) {
  FILE* const file = fopen(path, "we");
  if (file == NULL || fwrite(bytes, 1, size, file) != size || fclose(file) != 0) {
    dprintf(kReport, "%s cannot be written\n", path);
    exit(125);
  }
}

void WriteText(const char* path, const char* text) { WriteWhole(path, text, strlen(text)); }

const char* ReadText(const char* path) {
  static char text[65536];
  FILE* const file = fopen(path, "re");
  const size_t got = file == NULL ? 0 : fread(text, 1, sizeof(text) - 1, file);
  text[got] = '\0';
  if (file != NULL) {
    fclose(file);
  }
  return text;
}

int Exists(const char* path) { return access(path, F_OK) == 0; }

void MakeProgram(const char* path, const char* script) {
  (void)unlink(path);
  WriteText(path, script);
  EXPECT_EQ(chmod(path, 0755), 0);
}

void Shell(const char* command) {
  if (system(command) != 0) {
    dprintf(kReport, "failed: %s\n", command);
    exit(125);
  }
}

static void ReplaceDescriptor(int descriptor, const char* path) {
  const int file = open(path, O_RDWR | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
  if (file < 0 || dup2(file, descriptor) != descriptor) {
    exit(125);
  }
  close(file);
}

int main(int argc, char** argv) {
  /* Fixed system paths are written: only in a sandbox. */
  if (argc < 2 || !Exists("/run/qvx-sandbox") || dup3(2, kReport, O_CLOEXEC) != kReport) return 125;
  ReplaceDescriptor(1, kOut);
  ReplaceDescriptor(2, kErr);
  const int descriptors = NumbersIn("/proc/self/fd");
  if (argc == 3) {
    library = dlopen(argv[2], RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
      dprintf(kReport, "%s\n", dlerror());
      return 125;
    }
  }
  CallData();
  CallText();
  CallXml();
  CallConfig();
  CallPaths();
  CallAccess();
  CallOs();
  CheckQuiet();
  if (library != NULL) {
    EXPECT(strstr(ReadText("/proc/self/maps"), "/libqvxcs.so") != NULL);
    EXPECT_EQ(dlclose(library), 0);
    lastCalled = "the unloading";
    CheckQuiet();
    EXPECT_EQ(NumbersIn("/proc/self/fd"), descriptors);
    EXPECT(strstr(ReadText("/proc/self/maps"), "/libqvxcs.so") == NULL);
  }
  CheckThatAllWereCalled(argv[1]);
  dprintf(kReport, "%zu names called, %d faults\n", calledCount, failures);
  return failures == 0 ? 0 : 1;
}
