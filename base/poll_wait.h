// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_BASE_POLL_WAIT_H
#define QVX_BASE_POLL_WAIT_H

#include <unistd.h>

#include "qvxcs/status.h"
#include "qvxcs/types.h"

namespace qvx {

enum class Attempt { kTaken, kBusy, kFailed };

// Tries until taken. A time-out counts attempts that are 1000 microseconds apart; 0 means a single
// attempt. An interrupted sleep counts as a whole one.
template <typename Try>
s32 PollWait(s32 timeout, Try tryOnce) {
  for (s32 counter = 0;; ++counter) {
    const Attempt result = tryOnce();
    if (result == Attempt::kTaken) return 0;
    if (counter >= timeout) return static_cast<s32>(SM_STATUS_TIMEOUT);
    if (result == Attempt::kFailed) return -1;
    usleep(1000);
  }
}

}  // namespace qvx

#endif
