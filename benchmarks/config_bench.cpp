// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// An INI file of 50 sections with 20 keys each, and a key=value file of 1,000 lines.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "qvxcs/qvxcs.h"

namespace {

constexpr char kFolder[] = "/tmp/bench-config";
constexpr char kIni[] = "/tmp/bench-config/bench.ini";
constexpr char kKeyValue[] = "/tmp/bench-config/bench.properties";

// Both files, once; the size of the first.
size_t MakeFiles() {
  (void)mkdir(kFolder, 0755);
  std::ofstream ini(kIni);
  for (int section = 0; section < 50; ++section) {
    ini << "[section" << section << "]\n";
    for (int key = 0; key < 20; ++key) {
      ini << "key" << key << "=" << section * 20 + key << "\n";
    }
  }
  std::ofstream pairs(kKeyValue);
  for (int key = 0; key < 1000; ++key) {
    pairs << "key" << key << "=value of " << key << "\n";
  }
  return static_cast<size_t>(ini.tellp());
}
const size_t kIniSize = MakeFiles();

// Reads the INI file, as a read of its last key must.
void Yardstick(benchmark::State& state) {
  std::vector<char> room(kIniSize);
  for (auto _ : state) {
    const int file = open(kIni, O_RDONLY | O_CLOEXEC);
    if (read(file, room.data(), room.size()) != static_cast<ssize_t>(kIniSize)) abort();
    close(file);
  }
}
BENCHMARK(Yardstick);

// The same written to another file, flushed to disk and renamed over the first.
void YardstickOfWriting(benchmark::State& state) {
  const std::vector<char> text(kIniSize, 'x');
  for (auto _ : state) {
    const int file = open("/tmp/bench-config/a", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (write(file, text.data(), text.size()) != static_cast<ssize_t>(kIniSize)) abort();
    fsync(file);
    close(file);
    if (rename("/tmp/bench-config/a", "/tmp/bench-config/b") != 0) abort();
  }
}
BENCHMARK(YardstickOfWriting);

void ReadKey(benchmark::State& state, const char* section) {
  for (auto _ : state) {
    u32 value = 0;
    u32 size = sizeof(value);
    if (PXTReadINIPathFileValue(section, "key19", 5, &value, &size, nullptr, 0, kIni, 1) !=
        SM_STATUS_SUCCESS) {
      abort();
    }
  }
}
BENCHMARK_CAPTURE(ReadKey, First, "section0");
BENCHMARK_CAPTURE(ReadKey, Last, "section49");

void ListSections(benchmark::State& state) {
  std::vector<astring> room(4096);
  for (auto _ : state) {
    u32 size = static_cast<u32>(room.size());
    if (PXTReadINIPathFileValue(nullptr, nullptr, 1, room.data(), &size, nullptr, 0, kIni, 1) !=
        SM_STATUS_SUCCESS) {
      abort();
    }
  }
}
BENCHMARK(ListSections);

void WriteKey(benchmark::State& state) {
  u32 value = 0;
  for (auto _ : state) {
    ++value;
    if (PXTWriteINIPathFileValue("section25", "key10", 5, &value, sizeof(value), kIni, 1) !=
        SM_STATUS_SUCCESS) {
      abort();
    }
  }
}
BENCHMARK(WriteKey);

void ReadPairs(benchmark::State& state) {
  for (auto _ : state) {
    u32 count = 0;
    PXTCFGFreeKeyValueEntries(PXTCFGGetKeyValueEntries(kKeyValue, &count), 1000);
    if (count != 1000) abort();
  }
}
BENCHMARK(ReadPairs);

void WritePair(benchmark::State& state) {
  std::string key = "key500";
  std::string value = "another";
  const PXTKeyValue pair = {key.data(), value.data()};
  for (auto _ : state) {
    if (PXTCFGSetKeyValue(kKeyValue, &pair, 0) != SM_STATUS_SUCCESS) abort();
  }
}
BENCHMARK(WritePair);

}  // namespace
