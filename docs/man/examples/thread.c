/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

static u32 squares[4];

static u32 Square(u32 number) {
  squares[number] = number * number;
  return 0;
}

int main(void) {
  PXTThread threads[4]; /* each record must live until its thread was waited for */
  for (u32 at = 0; at < 4; ++at) {
    if (PXTThreadStart(&threads[at], Square, at) != 0) return 1;
  }
  for (u32 at = 0; at < 4; ++at) {
    if (PXTThreadStop(&threads[at]) != 0) return 1; /* waits; it does not interrupt the thread */
    printf("%u\n", squares[at]);
  }
  return 0;
}

/*
 * Prints:
 *   0
 *   1
 *   4
 *   9
 */
