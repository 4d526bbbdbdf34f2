// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// INI files beside inih, iniparser and the system calls bare; key=value and string resource files
// beside a plain read.
#include <fcntl.h>
#include <ini.h>
#include <iniparser/iniparser.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

#include "benchmarks/job.h"

namespace {

constexpr char kIni[] = "/tmp/bench/bench.ini";
constexpr char kBare[] = "/tmp/bench/bare.ini";
constexpr char kBareCopy[] = "/tmp/bench/bare.tmp";
constexpr char kPairs[] = "/tmp/bench/pairs.properties";
constexpr int kSections = 30;  // with 20 keys each: 600 keys, 7 KB
constexpr int kKeys = 20;
constexpr int kPairCount = 20000;

void MakeIni(const char* path, int sections) {
  std::ofstream ini(path);
  for (int section = 0; section < sections; ++section) {
    ini << "[section" << section << "]\n";
    for (int key = 0; key < kKeys; ++key) {
      ini << "key" << key << "=" << section * kKeys + key << "\n";
    }
  }
}

void MakePairs() {
  std::ofstream pairs(kPairs);
  for (int key = 0; key < kPairCount; ++key) {
    pairs << "key" << key << "=value of " << key << "\n";
  }
}

std::string Whole(const char* path) {
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  struct stat status = {};
  Require(file >= 0 && fstat(file, &status) == 0, "open");
  std::string text(static_cast<size_t>(status.st_size), ' ');
  Require(read(file, text.data(), text.size()) == status.st_size, "read");
  close(file);
  return text;
}

struct Wanted {
  const char* section;
  const char* key;
  long value;
};

int TakeWanted(void* user, const char* section, const char* key, const char* value) {
  auto* const wanted = static_cast<Wanted*>(user);
  if (strcmp(section, wanted->section) == 0 && strcmp(key, wanted->key) == 0) {
    wanted->value = strtol(value, nullptr, 10);
  }
  return 1;
}

void CompareRead(int sections, const char* name, const std::string& section, const char* key) {
  const std::string path = "/tmp/bench/ini" + std::to_string(sections);
  MakeIni(path.c_str(), sections);
  const std::string job = "INI of " + std::to_string(sections * kKeys) + " keys, " + name + " key";
  Compare(
      job, "inih",
      [=] {
        u32 value = 0;
        u32 size = sizeof(value);
        Require(PXTReadINIPathFileValue(section.c_str(), key, QVX_INI_U32, &value, &size, nullptr,
                                        0, path.c_str(), QVX_LOCK_WAIT) == SM_STATUS_SUCCESS,
                "read a key");
        benchmark::DoNotOptimize(value);
      },
      [=] {
        Wanted wanted = {section.c_str(), key, -1};
        Require(ini_parse(path.c_str(), TakeWanted, &wanted) == 0 && wanted.value >= 0, "inih");
        benchmark::DoNotOptimize(wanted.value);
      });
  Register(job, "iniparser", [path, name = section + ":" + key] {
    dictionary* const ini = iniparser_load(path.c_str());
    Require(iniparser_getint(ini, name.c_str(), -1) >= 0, "iniparser");
    iniparser_freedict(ini);
  });
}

// What any careful writer does: lock, read, write a copy, flush it, rename it, unlock.
void ReplaceBare() {
  static const int lock = open("/tmp/bench/lock", O_RDWR | O_CREAT | O_CLOEXEC, 0664);
  struct flock whole = {};
  whole.l_type = F_WRLCK;
  Require(fcntl(lock, F_SETLK, &whole) == 0, "bare lock");
  const std::string text = Whole(kBare);
  const int copy = open(kBareCopy, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  Require(write(copy, text.data(), text.size()) == static_cast<ssize_t>(text.size()), "bare write");
  Require(fchmod(copy, 01664) == 0 && fsync(copy) == 0, "bare flush");
  close(copy);
  Require(rename(kBareCopy, kBare) == 0, "bare rename");
  whole.l_type = F_UNLCK;
  (void)fcntl(lock, F_SETLK, &whole);
}

void CompareReplace() {
  Compare(
      "INI of 600 keys, replace a key", "the calls bare",
      [value = u32{0}]() mutable {
        ++value;
        Require(PXTWriteINIPathFileValue("section25", "key10", QVX_INI_U32, &value, sizeof(value),
                                         kIni, QVX_LOCK_WAIT) == SM_STATUS_SUCCESS,
                "write a key");
      },
      [] { ReplaceBare(); });
}

void ComparePairs() {
  Compare(
      "key=value, all of 20,000 lines", "a plain read",
      [] {
        u32 count = 0;
        PXTCFGFreeKeyValueEntries(PXTCFGGetKeyValueEntries(kPairs, &count), kPairCount);
        Require(count == kPairCount, "count");
      },
      [] { benchmark::DoNotOptimize(Whole(kPairs).data()); });
}

const bool kRegistered = [] {
  (void)mkdir("/tmp/bench", 0755);
  MakeIni(kIni, kSections);
  MakeIni(kBare, kSections);
  MakePairs();
  CompareRead(kSections, "first", "section0", "key0");
  for (const int sections : {3, kSections, 300}) {
    CompareRead(sections, "last", "section" + std::to_string(sections - 1), "key19");
  }
  CompareReplace();
  ComparePairs();
  return true;
}();

}  // namespace
