// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_CANCEL_HOLD_H
#define QVX_BASE_CANCEL_HOLD_H

#include <pthread.h>

namespace qvx {

// While it lives, pthread_cancel does not end the thread: a request takes effect after it, at the
// next cancellation point. So a call never ends half-way, with a lock or a secret left.
class CancelHold {
 public:
  CancelHold() { (void)pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state_); }
  // A thread that is cancelled asynchronously ends here, by the last call: only that one reports
  // the thread as cancelled.
  ~CancelHold() noexcept(false) {
    int type = PTHREAD_CANCEL_DEFERRED;
    (void)pthread_setcanceltype(PTHREAD_CANCEL_DEFERRED, &type);
    (void)pthread_setcancelstate(state_, nullptr);
    if (type != PTHREAD_CANCEL_DEFERRED) (void)pthread_setcanceltype(type, nullptr);
  }
  CancelHold(const CancelHold&) = delete;
  CancelHold& operator=(const CancelHold&) = delete;

 private:
  int state_ = PTHREAD_CANCEL_ENABLE;
};

}  // namespace qvx

#endif
