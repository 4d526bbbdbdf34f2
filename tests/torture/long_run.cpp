// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Tens of thousands of mixed calls in one process: heap and descriptors end exactly as they began.
#include <random>

#include "torture/torture.h"

namespace qvx::torture {

Tally LongRun(Depth depth) {
  Tally tally{"long run of mixed calls"};
  const unsigned calls = depth == Depth::kGoal ? 1000000 : depth == Depth::kFloor ? 50000 : 3000;
  const std::string wrong = InChild([calls]() -> std::string {
    (void)alarm(0);
    const std::vector<Scene> scenes = AllScenes();
    std::vector<const Scene*> mixed;
    for (const Scene& scene : scenes) {
      if (scene.again) mixed.push_back(&scene);
    }
    long before = 0;
    const Scene nothing = {"", Kind::kPure, nullptr, [] {}, [] { return qvx_u32{0}; }};
    const Judge judge(nothing);
    std::minstd_rand random(1);
    for (unsigned round = 0; round < 3; ++round) {
      for (const Scene* scene : mixed) {
        MakePlace();
        scene->prepare();
        if (scene->act() != 0) return scene->name + " fails";
      }
      before = LiveBlocks();
    }
    for (unsigned call = 0; call < calls; ++call) {
      const Scene& scene = *mixed[random() % mixed.size()];
      if (call % 50 == 0) MakePlace();
      scene.prepare();
      if (scene.act() != 0) return scene.name + " fails at call " + std::to_string(call);
    }
    if (LiveBlocks() != before) {
      return "blocks: " + std::to_string(before) + " before, " + std::to_string(LiveBlocks()) +
             " after";
    }
    MakePlace();
    return judge.Process(SM_STATUS_SUCCESS);
  });
  tally.Add(wrong, "mixed calls");
  tally.points = calls;
  return tally;
}

}  // namespace qvx::torture
