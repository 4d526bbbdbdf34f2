// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// An answer of 100 elements, and entries added to a log of 100 to 200 KB: one lock, one search for
// the closing tag, one write each.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "qvxcs/qvxcs.h"

namespace {

constexpr char kLog[] = "/tmp/bench/log.xml";

// Opens a file, locks it, writes as much as an entry has, and lets it go.
void Yardstick(benchmark::State& state) {
  const std::string entry(300, 'x');
  for (auto _ : state) {
    const int file = open("/tmp/yardstick", O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    if (file < 0 || fcntl(file, F_SETLK, &whole) != 0) abort();
    if (pwrite(file, entry.data(), entry.size(), 100000) != 300) abort();
    close(file);
  }
}
BENCHMARK(Yardstick);

void Answer(benchmark::State& state) {
  const u32 number = 4000000000;
  for (auto _ : state) {
    void* answer = PXTXAllocBuf(256, 0);
    PXTXBufCatBeginNode(answer, "Answer", "id=\"7\"");
    for (int at = 0; at < 50; ++at) {
      PXTXBufCatNode(answer, "Name", nullptr, 26, "R&D archive of the laboratory");
      PXTXBufCatNode(answer, "Used", nullptr, 5, &number);
    }
    PXTXBufCatEndNode(answer, "Answer");
    PXTXFreeBufContent(PXTXFreeBufGetContent(answer));
  }
}
BENCHMARK(Answer);

void AppendToLog(benchmark::State& state) {
  PXTForceXMLLogExists(kLog, "bench", "BENCH");
  const std::string filler(14000, 'x');
  for (int at = 0; at < 7; ++at) {
    PXTAppendToXMLLog(kLog, 4, 1, "bench", "BENCH", filler.c_str(), nullptr, 0, 0xFFFFFFFF);
  }
  for (auto _ : state) {
    if (PXTAppendToXMLLog(kLog, 4, 1, "bench", "BENCH", "an entry like many", nullptr, 0, 200000) !=
        SM_STATUS_SUCCESS) {
      abort();
    }
  }
}
BENCHMARK(AppendToLog);

void AppendDataToLog(benchmark::State& state) {
  const std::string data(4096, 'd');
  for (auto _ : state) {
    if (PXTAppendToXMLLog(kLog, 4, 1, "bench", "BENCH", "data", data.data(),
                          static_cast<u32>(data.size()), 200000) != SM_STATUS_SUCCESS) {
      abort();
    }
  }
}
BENCHMARK(AppendDataToLog);

void ShowLog(benchmark::State& state) {
  PXTClearXMLLog(kLog, "bench", "BENCH");
  for (int at = 0; at < 300; ++at) {
    PXTAppendToXMLLog(kLog, 4, 1, "bench", "BENCH", "an entry like many", nullptr, 0, 0xFFFFFFFF);
  }
  for (auto _ : state) {
    PXTFreeMem(PXTCmdGetXMLLogContent(kLog));
  }
}
BENCHMARK(ShowLog);

}  // namespace
