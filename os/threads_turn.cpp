// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/threads_turn.h"

#include <atomic>

#include "base/poll_wait.h"

namespace qvx {
namespace {

// How often the thread has taken the turn; its address names the thread.
thread_local u32 takes = 0;
std::atomic<const u32*> holder{nullptr};

}  // namespace

s32 TakeThreadsTurn(s32 timeout) {
  s32 attempts = 0;
  const s32 status = PollWait(timeout, [&attempts] {
    ++attempts;
    const u32* nobody = nullptr;
    const bool taken =
        takes != 0 || holder.compare_exchange_strong(nobody, &takes, std::memory_order_acquire,
                                                     std::memory_order_relaxed);
    return taken ? Attempt::kTaken : Attempt::kBusy;
  });
  if (status != 0) return -1;
  ++takes;
  return attempts - 1;
}

void GiveThreadsTurn() {
  if (--takes == 0) holder.store(nullptr, std::memory_order_release);
}

}  // namespace qvx
