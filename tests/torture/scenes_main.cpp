// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// scenes [threads]: every scene twice, for tools that watch a program; with "threads", those
// without a file in four threads at a time. Exit status 1 when a scene fails.
#include <atomic>
#include <cstdio>
#include <thread>

#include "torture/torture.h"

namespace {

using qvx::torture::Kind;
using qvx::torture::Scene;

bool Twice(const Scene& scene) {
  for (int time = 0; time < 2; ++time) {
    qvx::torture::MakePlace();
    scene.prepare();
    if (scene.act() == 0) continue;
    printf("%s fails\n", scene.name.c_str());
    return false;
  }
  return true;
}

bool InThreads(const Scene& scene) {
  qvx::torture::MakePlace();
  scene.prepare();
  std::atomic<bool> good = true;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 4; ++thread) {
    threads.emplace_back([&] {
      if (scene.act() != 0) good = false;
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  if (!good) printf("%s fails in threads\n", scene.name.c_str());
  return good;
}

}  // namespace

int main(int argc, char** /*argv*/) {
  bool good = true;
  size_t count = 0;
  for (const Scene& scene : qvx::torture::AllScenes()) {
    const bool threads = argc > 1;
    if (threads && (scene.kind == Kind::kCleared || scene.name == "a file deleted")) continue;
    good = (threads ? InThreads(scene) : Twice(scene)) && good;
    ++count;
  }
  printf("%zu scenes\n", count);
  return good ? 0 : 1;
}
