/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

enum { kIds = 64, kSize = kIds / 8 };

static void PrintInUse(u32* table) {
  for (u32 id = 1; id < kIds; ++id) {
    if (PXTVerifyHashID(table, kSize, id) == 0) printf("%u ", id);
  }
  printf("(at most %u)\n", PXTGetMaxInUseID(table, kSize));
}

/* A cursor passes over identifiers whose bit in their word is below the cursor's. */
static void WalkByCursor(u32* table) {
  u32 word = 0;
  u32 bit = 0;
  for (u32 id = PXTFindFirstHashID(table, kSize, &word, &bit); id != 0;
       id = PXTFindNextHashID(table, kSize, &word, &bit)) {
    printf("cursor: %u\n", id);
  }
}

int main(void) {
  u32 table[kSize / sizeof(u32)];
  if (PXTHashTableBytesNeeded(kIds) > sizeof(table)) return 1;
  (void)PXTClearHashTable(table, kSize);
  for (int times = 0; times < 3; ++times) {
    if (PXTAcquireHashID(table, kSize) == 0) return 1; /* 0: none is free */
  }
  PrintInUse(table);
  if (PXTReleaseHashID(table, kSize, 2) != 0) return 1;
  PrintInUse(table);
  WalkByCursor(table);
  return 0;
}

/*
 * Prints:
 *   1 2 3 (at most 3)
 *   1 3 (at most 3)
 *   cursor: 1
 *   cursor: 3
 */
