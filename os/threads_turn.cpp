// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/threads_turn.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <ctime>

#include "base/poll_wait.h"

namespace qvx {
namespace {

// An identifier that the system gives to no thread.
constexpr pthread_t kNobody{};

// A thread that works without a pause would leave the others only the moments between two of its
// calls, too short for a thread that looks every millisecond. So after this time it leaves the turn
// to the other threads, and after the longer time the process leaves the lock to other processes.
constexpr u64 kThreadsRun = 10;
constexpr u64 kProcessRun = 100;
// Longer than a sleep between two attempts.
constexpr useconds_t kPause = 2000;

constinit std::atomic<pthread_t> holder{kNobody};
constinit std::atomic<u32> waiting{0};

// Only the holder uses what follows.
u32 takes = 0;

// The time, in ms, since which the lock has passed among threads that waited for it; 0 while none
// waits.
struct Run {
  pthread_t thread;
  u64 ofThread;
  u64 ofProcess;
};
constinit Run run = {};

u64 Now() {
  timespec time = {};
  (void)clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
  return static_cast<u64>(time.tv_sec) * 1000 + static_cast<u64>(time.tv_nsec) / 1000000;
}

bool TryTurn() {
  pthread_t nobody = kNobody;
  return holder.compare_exchange_strong(nobody, pthread_self(), std::memory_order_acquire,
                                        std::memory_order_relaxed);
}

// The child of a fork starts with no thread waiting, even if a waiting thread forked.
void EndWaiting() {
  u32 count = waiting.load(std::memory_order_relaxed);
  while (count != 0 && !waiting.compare_exchange_weak(count, count - 1)) {
  }
}

s32 WaitForTurn(s32 timeout) {
  s32 sleeps = -1;
  ++waiting;
  const s32 status = PollWait(timeout, [&sleeps] {
    ++sleeps;
    return TryTurn() ? Attempt::kTaken : Attempt::kBusy;
  });
  EndWaiting();
  return status == 0 ? sleeps : -1;
}

// Whether `since` is that long ago; if so, the run begins again.
bool HasRun(u64* since, u64 now, u64 limit) {
  if (*since == 0) *since = now;
  if (now - *since < limit) return false;
  *since = 0;
  return true;
}

}  // namespace

s32 TakeThreadsTurn(s32 timeout) {
  s32 sleeps = 0;
  if (holder.load(std::memory_order_relaxed) != pthread_self() && !TryTurn()) {
    if (timeout <= 0) return -1;
    sleeps = WaitForTurn(timeout);
    if (sleeps < 0) return -1;
  }
  ++takes;
  return sleeps;
}

void GiveThreadsTurn() {
  if (--takes != 0) return;
  bool leaveToThreads = false;
  if (waiting.load(std::memory_order_relaxed) == 0) {
    run = {};
  } else {
    const u64 now = Now();
    if (run.thread != pthread_self()) run = {pthread_self(), 0, run.ofProcess};
    leaveToThreads = HasRun(&run.ofThread, now, kThreadsRun);
    if (HasRun(&run.ofProcess, now, kProcessRun)) usleep(kPause);
  }
  holder.store(kNobody, std::memory_order_release);
  if (leaveToThreads) usleep(kPause);
}

void FreeThreadsTurnInChild() {
  waiting = 0;
  if (holder == pthread_self()) return;
  takes = 0;
  run = {};
  holder = kNobody;
}

}  // namespace qvx
