// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Each updating scene is killed before, after and (a write) within each of its system calls;
// another process then judges the file and calls again.
#include "torture/stepper.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

enum class When { kBefore, kWithin, kAfter };

struct Point {
  unsigned nth;
  When when;
};

class Killer {
 public:
  explicit Killer(const Point& point) : point_(point) {}
  Then operator()(const Stop& stop) {
    if (stop.nth != point_.nth) return Then::kGoOn;
    if (stop.at == At::kExit) return Then::kKill;
    if (point_.when == When::kBefore) return Then::kKill;
    if (point_.when == When::kWithin) {
      if (!IsWrite(stop.number) || stop.size < 2) return Then::kKill;
      SetSize(stop, stop.size / 2);
    }
    return Then::kGoOn;
  }

 private:
  Point point_;
};

// What is wrong; `killed` is false after the last call.
std::string Try(const Scene& scene, const Point& point, bool* killed) {
  const Judge judge(scene);
  Killer killer(point);
  const auto body = [&scene]() -> std::string {
    Begin();
    (void)scene.act();
    End();
    return "";
  };
  std::string wrong = Step(
      body, [&killer](const Stop& stop) { return killer(stop); }, killed);
  if (!*killed) return wrong;
  // An entry may be cut within its write; what was there before it may not.
  if (wrong = judge.File(false, true); !wrong.empty()) return wrong;
  return InChild([&judge] { return judge.Next(); });
}

}  // namespace

Tally Kills(bool /*goal*/) {
  Tally tally{"kills before, within, after a call"};
  for (const Scene& scene : UpdatingScenes()) {
    for (const When when : {When::kBefore, When::kWithin, When::kAfter}) {
      for (unsigned nth = 1;; ++nth) {
        bool killed = false;
        const std::string wrong = Try(scene, {nth, when}, &killed);
        if (!killed) break;
        static const char* const kNames[] = {"before", "within", "after"};
        tally.Add(wrong, std::string(scene.name) + ", " + kNames[static_cast<int>(when)] +
                             " call " + std::to_string(nth));
      }
    }
  }
  return tally;
}

}  // namespace qvx::torture
