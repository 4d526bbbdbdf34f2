// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Each system call on files of each updating scene fails: with each error alone, and with all that
// follow; writes also write half of their bytes.
#include <sys/syscall.h>

#include <cerrno>
#include <cstring>

#include "torture/stepper.h"
#include "torture/torture.h"

namespace qvx::torture {
namespace {

constexpr int kShort = -1;  // half a write instead of an error
constexpr int kErrors[] = {ENOSPC, EIO, EINTR, EDQUOT, EACCES, EMFILE, EROFS, ENOLCK, kShort};

struct Point {
  const Scene* scene;
  unsigned nth;
  int error;
  bool fromThenOn;
};

// The fault, as the stepper's look.
class Fault {
 public:
  explicit Fault(const Point& point) : point_(point) {}

  Then operator()(const Stop& stop) {
    // A lock that never comes is waited for a minute long: its sleeps are left out.
    if (stop.number == SYS_clock_nanosleep) {
      if (stop.at == At::kEntry) Refuse(stop);
      if (stop.at == At::kExit) SetResult(stop, 0);
      return Then::kGoOn;
    }
    if (stop.at == At::kEntry) Entry(stop);
    if (stop.at == At::kExit && failing_) SetResult(stop, -point_.error);
    if (stop.at == At::kExit) failing_ = false;
    return Then::kGoOn;
  }
  [[nodiscard]] bool Met() const { return met_; }

 private:
  void Entry(const Stop& stop) {
    if (!IsFileCall(stop.number) || IsAboutTheLock(stop)) return;
    ++seen_;
    if (seen_ < point_.nth || (seen_ > point_.nth && !point_.fromThenOn)) return;
    met_ = true;
    if (point_.error == kShort) {
      if (IsWrite(stop.number) && stop.size > 1) SetSize(stop, stop.size / 2);
      return;
    }
    failing_ = true;
    if (stop.number != SYS_close) Refuse(stop);  // Linux closes whatever close() says
  }

  Point point_;
  unsigned seen_ = 0;
  bool failing_ = false;
  bool met_ = false;
};

std::string Try(const Point& point, bool* met) {
  const Scene& scene = *point.scene;
  Fault fault(point);
  bool killed = false;
  const auto body = [&]() -> std::string {
    const Judge judge(scene);
    Begin();
    const bool done = scene.act();
    End();
    if (std::string wrong = judge.File(done, point.fromThenOn); !wrong.empty()) return wrong;
    if (point.fromThenOn) return "";  // nothing could be put back
    if (std::string wrong = judge.Process(done); !wrong.empty()) return wrong;
    return judge.Next();
  };
  std::string wrong = Step(
      body, [&fault](const Stop& stop) { return fault(stop); }, &killed);
  *met = fault.Met();
  return wrong;
}

}  // namespace

Tally Calls(bool goal) {
  Tally tally{"system calls that fail"};
  for (const Scene& scene : UpdatingScenes()) {
    for (const int error : kErrors) {
      for (const bool fromThenOn : {false, true}) {
        // In the short form every error alone, and two of them from then on.
        if (!goal && fromThenOn && error != EIO && error != ENOSPC) continue;
        for (unsigned nth = 1;; ++nth) {
          const Point point = {&scene, nth, error, fromThenOn};
          bool met = false;
          const std::string wrong = Try(point, &met);
          if (!met) break;
          tally.Add(wrong, std::string(scene.name) + ", call " + std::to_string(nth) + ", " +
                               (error == kShort ? "half a write" : strerrorname_np(error)) +
                               (fromThenOn ? " from then on" : ""));
        }
      }
    }
  }
  return tally;
}

}  // namespace qvx::torture
