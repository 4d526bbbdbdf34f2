// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "base/local_mutex.h"

#include <cstdlib>

#include "base/poll_wait.h"

namespace qvx {

LocalMutex CreateLocalMutex() {
  auto* const mutex = static_cast<LocalMutex>(malloc(sizeof(pthread_mutex_t)));
  if (mutex != nullptr) {
    pthread_mutex_init(mutex, nullptr);
  }
  return mutex;
}

s32 WaitForLocalMutex(LocalMutex mutex, s32 timeout) {
  if (mutex == nullptr) return -1;
  if (timeout == -1) return pthread_mutex_lock(mutex) == 0 ? 0 : -1;
  return PollWait(timeout, [mutex] {
    return pthread_mutex_trylock(mutex) == 0 ? Attempt::kTaken : Attempt::kBusy;
  });
}

s32 ReleaseLocalMutex(LocalMutex mutex) {
  if (mutex == nullptr) return -1;
  return pthread_mutex_unlock(mutex) == 0 ? 0 : -1;
}

void DestroyLocalMutex(LocalMutex mutex) {
  if (mutex != nullptr) {
    pthread_mutex_destroy(mutex);
    free(mutex);
  }
}

}  // namespace qvx
