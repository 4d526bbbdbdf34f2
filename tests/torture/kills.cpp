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
      if (!IsWrite(stop.number)) return Then::kKill;
      const Span span = SpanOf(stop);
      const unsigned long part = PartOf(span);
      if (part == 0 || part >= span.size) return Then::kKill;
      CutWrite(stop, part);
    }
    return Then::kGoOn;
  }

 private:
  // A kill cuts a write only where it goes from one page of the file to the next; a copy's writes
  // are cut anywhere.
  static unsigned long PartOf(const Span& span) {
    constexpr unsigned long kPage = 4096;
    return span.placed ? kPage - static_cast<unsigned long>(span.offset % kPage) : span.size / 2;
  }

  Point point_;
};

// What is wrong; `killed` is false after the last call.
std::string Try(const Scene& scene, const Point& point, bool* killed) {
  Judge judge(scene);
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
  // What was not reported may be cut within its write; what was there before it may not.
  if (wrong = judge.File(SM_STATUS_FAILURE, Torn::kYes); !wrong.empty()) return wrong;
  return InChild([&judge] {
    judge.BeginHere();
    return judge.Next();
  });
}

constexpr const char* kNames[] = {"before", "within", "after"};

// False after the last call.
bool Add(const Scene& scene, const Point& point, Tally* tally) {
  bool killed = false;
  const std::string wrong = Try(scene, point, &killed);
  if (!killed) return false;
  tally->Add(wrong, scene.name + ", " + kNames[static_cast<int>(point.when)] + " call " +
                        std::to_string(point.nth));
  return true;
}

}  // namespace

Tally Kills(Depth depth) {
  Tally tally{"kills before, within, after a call"};
  const unsigned step = depth == Depth::kSample ? 3 : 1;
  for (const Scene& scene : UpdatingScenes()) {
    for (const When when : {When::kBefore, When::kWithin, When::kAfter}) {
      unsigned nth = 1 + (depth == Depth::kSample ? static_cast<unsigned>(when) : 0);
      while (Add(scene, {nth, when}, &tally)) {
        nth += step;
      }
    }
  }
  return tally;
}

}  // namespace qvx::torture
