// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Each scene with its first, second, ... allocation failing, alone and with all that follow, in a
// process that has called nothing before and in one that has.
#include "torture/torture.h"

namespace qvx::torture {
namespace {

struct Point {
  const Scene* scene;
  long nth;
  Failure failure;
  bool warm;
};

// Returns "reached", which is no fault, if the allocation took place, and then what is wrong.
std::string Try(const Point& point) {
  const Scene& scene = *point.scene;
  if (point.warm) {
    MakePlace();
    scene.prepare();
    (void)scene.act();
    (void)scene.act();
  }
  const Judge judge(scene);
  const long held = LiveBlocks();
  FailAllocation(point.nth, point.failure);
  const bool done = scene.act();
  FailNoAllocation();
  if (!AllocationFailed()) return "";
  const std::string reached = "reached";
  // The C library may release one of its own blocks, such as its copy of TZ.
  if (point.warm && scene.again && LiveBlocks() > held) {
    return reached + "blocks: " + std::to_string(held) + " before, " +
           std::to_string(LiveBlocks()) + " after";
  }
  if (const std::string wrong = judge.File(done, false); !wrong.empty()) return reached + wrong;
  if (const std::string wrong = judge.Process(done); !wrong.empty()) return reached + wrong;
  return reached + judge.Next();
}

}  // namespace

Tally Allocations(bool goal) {
  Tally tally{"allocations that fail"};
  const long most = goal ? 1000000 : 120;
  for (const Scene& scene : AllScenes()) {
    for (const Failure failure : {Failure::kAlone, Failure::kFromThenOn}) {
      for (const bool warm : {false, true}) {
        for (long nth = 1; nth <= most; ++nth) {
          const Point point = {&scene, nth, failure, warm};
          std::string wrong = InChild([&point] { return Try(point); });
          if (wrong.empty()) break;
          if (wrong.rfind("reached", 0) == 0) wrong.erase(0, 7);
          tally.Add(wrong, std::string(scene.name) + (warm ? ", warm" : ", cold") +
                               (failure == Failure::kAlone ? ", alone, " : ", from then on, ") +
                               std::to_string(nth));
        }
      }
    }
  }
  return tally;
}

}  // namespace qvx::torture
