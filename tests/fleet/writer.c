/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* writer COUNT PER-SECOND: records COUNT numbered entries in the command log, and never more in a
   second than that. Of every hundred, two are long: the one longer than 8 KiB, which is what
   rsyslog takes of a line unless it is configured, the other as long as the log takes it. */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "qvxcs/qvxcs.h"

static size_t LengthOf(int number) {
  if (number % 100 == 0) return QVX_LOG_MAX_DESCRIPTION;
  return number % 100 == 50 ? 9000 : 0;
}

/* "entry 000050 of a host among many", and as many "." as make it long. */
static void Describe(int number, char text[QVX_LOG_MAX_DESCRIPTION + 1]) {
  const size_t length = LengthOf(number);
  const size_t begun = (size_t)snprintf(text, 64, "entry %06d of a host among many", number);
  if (length <= begun) return;
  memset(text + begun, '.', length - begun);
  text[length] = '\0';
}

int main(int argc, char** argv) {
  if (argc != 3) {
    fprintf(stderr, "usage: writer COUNT PER-SECOND\n");
    return 2;
  }
  const int count = atoi(argv[1]);
  const struct timespec pause = {0, 1000000000 / atoi(argv[2])};
  for (int number = 1; number <= count; ++number) {
    char text[QVX_LOG_MAX_DESCRIPTION + 1];
    Describe(number, text);
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
