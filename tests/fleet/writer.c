/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* writer COUNT PER-SECOND: records COUNT numbered entries in the command log, and never more in a
   second than that. */
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include "qvxcs/qvxcs.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: writer COUNT PER-SECOND\n");
    return 2;
  }
  const int count = atoi(argv[1]);
  const struct timespec pause = {0, 1000000000 / atoi(argv[2])};
  for (int number = 1; number <= count; ++number) {
    char text[64];
    snprintf(text, sizeof(text), "entry %06d of a host among many", number);
    const qvx_u32 status =
        PXTAppendToCmdLog(QVX_CMDLOG_FIRST_ID, "root", "FLEET", text, QVX_LOG_INFORMATION);
    if (status != SM_STATUS_SUCCESS) {
      fprintf(stderr, "writer: entry %d: status 0x%X\n", number, status);
      return 1;
    }
    nanosleep(&pause, NULL);
  }
  return 0;
}
