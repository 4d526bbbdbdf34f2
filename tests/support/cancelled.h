// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TESTS_SUPPORT_CANCELLED_H
#define QVX_TESTS_SUPPORT_CANCELLED_H

#include <pthread.h>

#include <cstdlib>

namespace qvx::test {

// Runs `call` in a thread that has been asked to end: the first cancellation point that `call`
// reaches ends it, unless it holds cancellation off. True when `call` came back and the thread
// ended after it, by the request.
template <typename Call>
bool EndsAfter(Call call) {
  struct Run {
    Call* call;
    bool returned;
  } run = {&call, false};
  pthread_t thread;
  void* (*const body)(void*) = [](void* given) -> void* {
    Run* const here = static_cast<Run*>(given);
    (void)pthread_cancel(pthread_self());
    (*here->call)();
    here->returned = true;
    pthread_testcancel();
    return nullptr;
  };
  void* result = nullptr;
  if (pthread_create(&thread, nullptr, body, &run) != 0 || pthread_join(thread, &result) != 0) {
    abort();
  }
  return run.returned && result == PTHREAD_CANCELED;
}

// Runs `call` in a thread that pthread_cancel may end at any moment; the request comes within it.
// True when the thread ended by the request.
template <typename Call>
bool EndsWithin(Call call) {
  pthread_t thread;
  void* (*const body)(void*) = [](void* given) -> void* {
    (void)pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, nullptr);
    (*static_cast<Call*>(given))();
    return nullptr;
  };
  void* result = nullptr;
  if (pthread_create(&thread, nullptr, body, &call) != 0 || pthread_join(thread, &result) != 0) {
    abort();
  }
  return result == PTHREAD_CANCELED;
}

}  // namespace qvx::test

#endif
