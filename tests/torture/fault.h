// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_TORTURE_FAULT_H
#define QVX_TESTS_TORTURE_FAULT_H

#include <sys/syscall.h>

#include "torture/stepper.h"

namespace qvx::torture {

inline constexpr int kHalf = -1;  // half a write instead of an error

// The nth call on files (of kHalf: the nth write) fails, alone or with all that follow: for Step()
// to look with.
class Fault {
 public:
  Fault(unsigned nth, int error, bool fromThenOn)
      : nth_(nth), error_(error), fromThenOn_(fromThenOn) {}

  Then operator()(const Stop& stop) {
    // The sleeps between two attempts at the lock are left out.
    if (stop.number == SYS_clock_nanosleep) {
      if (stop.at == At::kEntry) Refuse(stop);
      if (stop.at == At::kExit) SetResult(stop, 0);
      return Then::kGoOn;
    }
    if (stop.at == At::kEntry) Entry(stop);
    if (stop.at == At::kExit && failing_) SetResult(stop, -error_);
    if (stop.at == At::kExit) failing_ = false;
    return Then::kGoOn;
  }
  [[nodiscard]] bool Met() const { return met_; }

 private:
  void Entry(const Stop& stop) {
    if (!IsFileCall(stop.number) || IsAboutTheLock(stop)) return;
    // A lock that never comes is asked for 60,000 times.
    if (fromThenOn_ && TakesTheLock(stop)) return;
    // A call that writes nothing cannot write half.
    if (error_ == kHalf && !IsWrite(stop.number)) return;
    ++seen_;
    if (seen_ < nth_ || (seen_ > nth_ && !fromThenOn_)) return;
    met_ = true;
    if (error_ == kHalf) {
      CutWrite(stop, SpanOf(stop).size / 2);
      return;
    }
    failing_ = true;
    if (stop.number != SYS_close) Refuse(stop);  // Linux closes whatever close() says
  }

  unsigned nth_;
  int error_;
  bool fromThenOn_;
  unsigned seen_ = 0;
  bool failing_ = false;
  bool met_ = false;
};

}  // namespace qvx::torture

#endif
