// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BENCHMARKS_JOB_H
#define QVX_BENCHMARKS_JOB_H

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

// A job is done twice in one program: by the library, and by a peer, which is what a program would
// use without it. scripts/bench divides the medians. A name has the form "job, case/who".

inline constexpr char kOurs[] = "libqvxcs";

// A benchmark that measures a wrong result measures nothing.
inline void Require(bool right, const char* what) {
  if (right) return;
  (void)std::fprintf(stderr, "bench: wrong result: %s\n", what);
  std::abort();
}

inline void Nothing() {}

// `prepare` is run before each repetition, untimed.
template <typename Work, typename Prepare = void (*)()>
benchmark::internal::Benchmark* Register(const std::string& job, const std::string& who, Work work,
                                         Prepare prepare = Nothing) {
  const auto run = [work, prepare](benchmark::State& state) mutable {
    prepare();
    for (auto _ : state) {
      work();
    }
  };
  return benchmark::RegisterBenchmark((job + "/" + who).c_str(), run)->MeasureProcessCPUTime();
}

template <typename Ours, typename Peers, typename Prepare = void (*)()>
void Compare(const std::string& job, const std::string& peer, Ours ours, Peers peers,
             Prepare prepare = Nothing) {
  Register(job, kOurs, std::move(ours), prepare);
  Register(job, peer, std::move(peers), std::move(prepare));
}

#endif
