// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/thread.h"

namespace qvx {
namespace {

constexpr s32 kFailed = -1;

// The identifier in a record without a thread to wait for; the system gives it to no thread.
constexpr pthread_t kNoThread{};

void* RunRecord(void* record) {
  (void)OSThreadStub(static_cast<PXTThread*>(record));
  return nullptr;
}

}  // namespace

s32 OSThreadStart(PXTThread* thread, PXTThreadEntry entry, u32 argument) {
  if (thread == nullptr || entry == nullptr) return kFailed;
  thread->entry = entry;
  thread->argument = argument;
  if (pthread_create(&thread->thread, nullptr, RunRecord, thread) == 0) return 0;
  // A failed attempt may leave the identifier of a thread that never ran.
  thread->thread = kNoThread;
  return kFailed;
}

s32 OSThreadStop(PXTThread* thread) {
  if (thread == nullptr) return kFailed;
  // Deliberate: a body cannot be interrupted, so stopping a thread means waiting for its end, and a
  // thread that cannot be joined is not waited for. Held by Thread.StopWaitsForTheBodyToEnd.
  if (thread->thread == kNoThread) return 0;
  // A thread is joined once: a second stop finds none.
  if (pthread_join(thread->thread, nullptr) == 0) thread->thread = kNoThread;
  return 0;
}

u32 OSThreadStub(PXTThread* thread) {
  if (thread == nullptr) return 0;
  (void)thread->entry(thread->argument);
  return 0;
}

}  // namespace qvx
