// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Rights by a role map of 200 lines: asked of it in force, and with the file read anew each time.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>

#include "qvxcs/qvxcs.h"

namespace {

constexpr char kRoleMap[] = "/etc/cim/zarn/plinthos/qvxrolemap";
const ustring kRoot[] = {'r', 'o', 'o', 't', 0};
const ustring kBin[] = {'b', 'i', 'n', 0};

void Date(time_t time) {
  const timespec times[] = {{time, 0}, {time, 0}};
  if (utimensat(AT_FDCWD, kRoleMap, times, 0) != 0) abort();
}

void Load(time_t time) {
  Date(time);
  if (PXTOpenRolemapFile() != 0 || PXTGetRightsUsingRolemap() != 0x3) abort();
}

bool MakeRoleMap() {
  std::ofstream map(kRoleMap);
  for (int user = 0; user < 199; ++user) {
    map << "user" << user << ",+group" << user << "   *.lab,10.0.0.1   poweruser\n";
  }
  map << "root,bin * poweruser\n";
  map.close();
  if (chmod(kRoleMap, 0640) != 0) abort();
  Load(1000000);
  return true;
}
const bool kMade = MakeRoleMap();

// What the system knows of a user.
void Yardstick(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(getpwnam("bin"));
  }
}
BENCHMARK(Yardstick);

void Authorize(benchmark::State& state, const ustring* user) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(PXTAuthorizeUser(nullptr, user));
  }
}
BENCHMARK_CAPTURE(Authorize, Superuser, kRoot);
BENCHMARK_CAPTURE(Authorize, User, kBin);

void ReadRoleMap(benchmark::State& state) {
  time_t time = 2000000;
  for (auto _ : state) {
    Load(++time);
  }
}
BENCHMARK(ReadRoleMap);

}  // namespace
