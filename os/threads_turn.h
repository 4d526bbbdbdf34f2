// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_OS_THREADS_TURN_H
#define QVX_OS_THREADS_TURN_H

#include "qvxcs/types.h"

namespace qvx {

// The record lock keeps processes apart, not the threads of one. So operations under the file lock
// first take a turn among the process's threads.

// Tries until the thread has the turn, with at most `timeout` sleeps of 1 ms. Returns the sleeps
// that it took, or -1 when another thread kept the turn. A thread that has the turn takes it once
// more.
s32 TakeThreadsTurn(s32 timeout);

// The thread's last give ends its turn. The file lock must be free by then. While other threads of
// the process wait, the give sometimes sleeps, so that other threads and other processes, which
// look every millisecond, find the lock free.
void GiveThreadsTurn();

// Called in the child of a fork: the thread that had the turn does not exist there, unless it
// forked.
void FreeThreadsTurnInChild();

}  // namespace qvx

#endif
