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
  Start start;
};

qvx_u32 Fail(const Scene& scene, const Point& point) {
  FailAllocation(point.nth, point.failure);
  const qvx_u32 status = scene.act();
  FailNoAllocation();
  return status;
}

// Returns "reached", which is no fault, if the allocation took place, and then what is wrong.
std::string Try(const Point& point) {
  const Scene& scene = *point.scene;
  if (scene.others && point.failure == Failure::kFromThenOn) GiveUpAfter(5);
  if (scene.others && point.start == Start::kWarm) {
    scene.prepare();
    (void)Fail(scene, point);  // settles what is kept of such a failure
  }
  const Judge judge(scene, point.start);
  const qvx_u32 status = Fail(scene, point);
  if (!AllocationFailed()) return "";
  const std::string reached = "reached";
  if (const std::string wrong = judge.File(status, Torn::kNo); !wrong.empty()) {
    return reached + wrong;
  }
  if (const std::string wrong = judge.Process(status); !wrong.empty()) return reached + wrong;
  if (const std::string wrong = judge.Next(); !wrong.empty()) return reached + wrong;
  return reached;
}

std::string GivenWithoutFault(const Scene& scene) {
  return InChild([&scene] {
    MakePlace();
    scene.prepare();
    return scene.act() == SM_STATUS_SUCCESS ? Given() : "fails without a fault";
  });
}

// The allocation to try after this one: a login makes some thousand.
long After(long nth, Depth depth) {
  if (depth == Depth::kSample) return nth + 1 + nth / 2;
  return depth == Depth::kFloor && nth > 80 ? nth + nth / 32 : nth + 1;
}

void TryAll(Point point, Depth depth, Tally* tally) {
  for (;; point.nth = After(point.nth, depth)) {
    std::string wrong = InChild([&point] { return Try(point); });
    if (wrong.empty()) return;
    if (wrong.rfind("reached", 0) == 0) wrong.erase(0, 7);
    if (point.scene->others && IsEndInOthers(wrong)) wrong.clear();
    tally->Add(wrong, point.scene->name + (point.start == Start::kWarm ? ", warm" : ", cold") +
                          (point.failure == Failure::kAlone ? ", alone, " : ", from then on, ") +
                          std::to_string(point.nth));
  }
}

}  // namespace

Tally Allocations(Depth depth) {
  std::vector<Scene> scenes = AllScenes();
  Tally tally{"allocations fail, in " + std::to_string(scenes.size()) + " scenes"};
  for (Scene& scene : scenes) {
    if (scene.kind == Kind::kPure) scene.expected = GivenWithoutFault(scene);
    for (const Failure failure : {Failure::kAlone, Failure::kFromThenOn}) {
      for (const Start start : {Start::kCold, Start::kWarm}) {
        TryAll({&scene, 1, failure, start}, depth, &tally);
      }
    }
  }
  return tally;
}

}  // namespace qvx::torture
