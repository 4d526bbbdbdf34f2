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
  unsigned border;  // within a write: after the first page border that it crosses, the second, ...
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
      cut_ = true;
    }
    return Then::kGoOn;
  }
  // Whether the call was killed in the way that the point asks for.
  [[nodiscard]] bool IsMet() const { return point_.when != When::kWithin || cut_; }

 private:
  // A kill cuts a write only where it goes from one page of the file to the next; a copy's writes
  // are cut anywhere.
  [[nodiscard]] unsigned long PartOf(const Span& span) const {
    constexpr unsigned long kPage = 4096;
    if (!span.placed) return point_.border == 0 ? span.size / 2 : span.size;
    return kPage - static_cast<unsigned long>(span.offset % kPage) + point_.border * kPage;
  }

  Point point_;
  bool cut_ = false;
};

// What is wrong; `killed` is false after the last call, `met` where the call is no such write.
std::string Try(const Scene& scene, const Point& point, bool* killed, bool* met) {
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
  *met = killer.IsMet();
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
  bool met = false;
  const std::string wrong = Try(scene, point, &killed, &met);
  if (!killed) return false;
  if (!met) return true;
  tally->Add(wrong, scene.name + ", " + kNames[static_cast<int>(point.when)] + " call " +
                        std::to_string(point.nth));
  // A longer write is cut at its next border, too.
  return point.when != When::kWithin ||
         Add(scene, {point.nth, point.when, point.border + 1}, tally);
}

}  // namespace

Tally Kills(Depth depth) {
  Tally tally{"kills before, within, after a call"};
  const unsigned step = depth == Depth::kSample ? 3 : 1;
  for (const Scene& scene : UpdatingScenes()) {
    for (const When when : {When::kBefore, When::kWithin, When::kAfter}) {
      unsigned nth = 1 + (depth == Depth::kSample ? static_cast<unsigned>(when) : 0);
      while (Add(scene, {nth, when, 0}, &tally)) {
        nth += step;
      }
    }
  }
  return tally;
}

}  // namespace qvx::torture
