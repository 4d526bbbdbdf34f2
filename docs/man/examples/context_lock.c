/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

enum { kTimes = 10000 };

static u32 lock;
static u32 total;

/* Each addition is whole, because only one thread at a time holds the lock. */
static u32 Add(u32 number) {
  for (int times = 0; times < kTimes; ++times) {
    PXTLockContext(lock);
    total += number;
    PXTUnLockContext(lock);
  }
  return 0;
}

int main(void) {
  PXTThread threads[2];
  lock = PXTAllocContextLock();
  if (lock == 0) return 1; /* no memory */
  for (u32 at = 0; at < 2; ++at) {
    if (PXTThreadStart(&threads[at], Add, at + 1) != 0) return 1;
  }
  for (u32 at = 0; at < 2; ++at) {
    (void)PXTThreadStop(&threads[at]);
  }
  PXTFreeContextLock(lock);
  printf("%u\n", total);
  return 0;
}

/*
 * Prints:
 *   30000
 */
