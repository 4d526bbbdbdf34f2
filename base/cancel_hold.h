// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_CANCEL_HOLD_H
#define QVX_BASE_CANCEL_HOLD_H

#include <pthread.h>

namespace qvx {

// While it lives, pthread_cancel does not end the thread: a request takes effect at the next
// cancellation point after it. So a call never ends half-way, with a lock or a secret left.
class CancelHold {
 public:
  CancelHold() { (void)pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &state_); }
  ~CancelHold() { (void)pthread_setcancelstate(state_, nullptr); }
  CancelHold(const CancelHold&) = delete;
  CancelHold& operator=(const CancelHold&) = delete;

 private:
  int state_ = PTHREAD_CANCEL_ENABLE;
};

}  // namespace qvx

#endif
