/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_EXAMPLES_FAILURE_H
#define QVXCS_EXAMPLES_FAILURE_H

/* How the examples report a failed call: in words, by the status's name, by the system's reason. */

#include <errno.h>
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

static inline const char* StatusName(u32 status) {
#define NAME_OF(status_name) \
  case status_name:          \
    return #status_name;
  switch (status) {
    QVXCS_EACH_STATUS(NAME_OF)
    NAME_OF(QVX_FAILED)
    default:
      return "a status without a name";
  }
#undef NAME_OF
}

/* The statuses after which errno says what the system refused, if it was 0 before the call. */
static inline int HasReason(u32 status) {
  switch (status) {
    case SM_STATUS_FILE_OPEN_FAILED:
    case SM_STATUS_FILE_OPEN_ERROR:
    case SM_STATUS_FILE_CREATE_FAILED:
    case SM_STATUS_FILE_DELETE_FAILED:
    case SM_STATUS_WRITE_FAILED:
    case SM_STATUS_LOCK_FAILED:
    case SM_STATUS_FAILURE:
    case QVX_FAILED:
      return errno != 0;
    default:
      return 0;
  }
}

/* "program: words (SM_STATUS_FILE_OPEN_FAILED: No such file or directory)" */
static inline void PrintFailure(const char* program, const char* words, u32 status) {
  const char* const reason = HasReason(status) ? strerror(errno) : "";
  fprintf(stderr, "%s: %s (%s%s%s)\n", program, words, StatusName(status),
          *reason != '\0' ? ": " : "", reason);
}

#endif
