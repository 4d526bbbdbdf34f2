// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Tens of thousands of mixed calls in one process: heap and descriptors end exactly as they began.
#include <random>

#include "torture/torture.h"

namespace qvx::torture {

Tally LongRun(bool goal) {
  Tally tally{"long run of mixed calls"};
  const unsigned calls = goal ? 1000000 : 50000;
  const std::string wrong = InChild([calls]() -> std::string {
    (void)alarm(0);
    const std::vector<Scene> scenes = AllScenes();
    std::vector<const Scene*> mixed;
    for (const Scene& scene : scenes) {
      if (scene.again) mixed.push_back(&scene);
    }
    long before = 0;
    const Judge judge({"", Kind::kPure, nullptr, [] {}, [] { return true; }});
    std::minstd_rand random(1);
    for (unsigned round = 0; round < 3; ++round) {
      for (const Scene* scene : mixed) {
        MakePlace();
        scene->prepare();
        if (!scene->act()) return std::string(scene->name) + " fails";
      }
      before = LiveBlocks();
    }
    for (unsigned call = 0; call < calls; ++call) {
      const Scene& scene = *mixed[random() % mixed.size()];
      if (call % 50 == 0) MakePlace();
      scene.prepare();
      if (!scene.act()) return std::string(scene.name) + " fails at call " + std::to_string(call);
    }
    if (LiveBlocks() != before) {
      return "blocks: " + std::to_string(before) + " before, " + std::to_string(LiveBlocks()) +
             " after";
    }
    return judge.Process(true);
  });
  tally.Add(wrong, "mixed calls");
  tally.points = calls;
  return tally;
}

}  // namespace qvx::torture
