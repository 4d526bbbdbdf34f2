// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "frame/forks.h"

#include <pthread.h>

#include "base/context_lock.h"
#include "os/stdio_file.h"
#include "os/threads_turn.h"

namespace qvx {
namespace {

void StartChild() {
  EndContextLocksHold();
  FreeThreadsTurnInChild();
  DropStreamsInChild();
}

bool watched = false;

}  // namespace

// The C library notes which image the handlers belong to and drops them when it is unloaded.
// Without enough memory for the note a child runs without them.
void WatchForks() {
  if (watched) return;
  watched = pthread_atfork(HoldContextLocksForFork, EndContextLocksHold, StartChild) == 0;
}

}  // namespace qvx
