// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Each system call on files of each updating scene fails: with each error alone, and with all that
// follow; writes also write half of their bytes.
#include <cerrno>
#include <cstring>

#include "torture/fault.h"
#include "torture/stepper.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr int kErrors[] = {ENOSPC, EIO, EINTR, EDQUOT, EACCES, EMFILE, EROFS, ENOLCK, kHalf};
constexpr size_t kErrorCount = sizeof(kErrors) / sizeof(kErrors[0]);

struct Point {
  const Scene* scene;
  unsigned nth;
  int error;
  bool fromThenOn;
  Start start;
};

std::string Try(const Point& point, bool* met) {
  const Scene& scene = *point.scene;
  Fault fault(point.nth, point.error, point.fromThenOn);
  bool killed = false;
  const auto body = [&]() -> std::string {
    const Judge judge(scene, point.start);
    Begin();
    const qvx_u32 status = scene.act();
    End();
    const Torn torn = point.fromThenOn ? Torn::kYes : Torn::kNo;
    if (const std::string wrong = judge.File(status, torn); !wrong.empty()) return wrong;
    // What failed may have been the copy's removal.
    if (scene.kind == Kind::kAppended) (void)unlink(Path("pxtini32.tmp").c_str());
    const std::string wrong = point.fromThenOn ? judge.TornProcess() : judge.Process(status);
    return wrong.empty() ? judge.Next(torn) : wrong;
  };
  std::string wrong = Step(
      body, [&fault](const Stop& stop) { return fault(stop); }, &killed);
  *met = fault.Met();
  return wrong;
}

// False after the last call.
bool Add(const Point& point, Tally* tally) {
  // Half of the closing tag that is put back is neither the torn log nor the mended one. The next
  // append mends it: LogTorn.AMendThatIsCutItselfIsMendedAgain.
  if (point.error == kHalf && point.scene->name == "log: torn by a kill") return false;
  bool met = false;
  const std::string wrong = Try(point, &met);
  if (!met) return false;
  tally->Add(wrong, point.scene->name + ", call " + std::to_string(point.nth) + ", " +
                        (point.error == kHalf ? "half a write" : strerrorname_np(point.error)) +
                        (point.fromThenOn ? " from then on" : ""));
  return true;
}

// Each write cut, and each call with one error, another one than its neighbours'.
void AddSome(const Scene& scene, unsigned* turn, Tally* tally) {
  for (unsigned nth = 1; Add({&scene, nth, kHalf, *turn % 2 == 0, Start::kWarm}, tally);) {
    ++nth;
  }
  for (unsigned nth = 1;; ++nth) {
    const int error = kErrors[++*turn % (kErrorCount - 1)];
    if (!Add({&scene, nth, error, error != EINTR && *turn % 2 == 0,
              *turn % 3 == 0 ? Start::kCold : Start::kWarm},
             tally))
      return;
  }
}

// In the floor every error alone, and two of them from then on. Two begin cold: some calls are made
// only then.
void AddAll(const Scene& scene, Depth depth, Tally* tally) {
  for (const int error : kErrors) {
    const bool usual = error == EIO || error == ENOSPC;
    const Start start = error == EDQUOT || error == EIO ? Start::kCold : Start::kWarm;
    for (unsigned nth = 1; Add({&scene, nth, error, false, start}, tally);) {
      ++nth;
    }
    // A call that is interrupted is made again: for ever, if it always is.
    if (error == EINTR || (depth != Depth::kGoal && !usual)) continue;
    for (unsigned nth = 1; Add({&scene, nth, error, true, start}, tally);) {
      ++nth;
    }
  }
}

}  // namespace

Tally Calls(Depth depth) {
  const std::vector<Scene> scenes = UpdatingScenes();
  Tally tally{"system calls fail, in " + std::to_string(scenes.size()) + " operations"};
  unsigned turn = 0;
  for (const Scene& scene : scenes) {
    if (depth == Depth::kSample) {
      AddSome(scene, &turn, &tally);
    } else {
      AddAll(scene, depth, &tally);
    }
  }
  return tally;
}

}  // namespace qvx::torture
