/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#define QVXCS_NO_SHORT_TYPES /* this program has a u64 that means something else */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

typedef struct u64 {
  qvx_u32 high;
  qvx_u32 low;
} u64;

int main(void) {
  const u64 two = {0, 2};
  const qvx_booln flags[] = {QVX_TRUE, QVX_FALSE, 2}; /* only 1 is true */
  for (int at = 0; at < 3; ++at) {
    qvx_astring text[8];
    PXTBoolnToASCII(text, flags[at]);
    puts(text);
  }
  printf("%u, %u bytes a unit\n", two.low, (unsigned)sizeof(qvx_ustring));
  return 0;
}

/*
 * Prints:
 *   true
 *   false
 *   false
 *   2, 2 bytes a unit
 */
