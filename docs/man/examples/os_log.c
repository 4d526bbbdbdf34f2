/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <locale.h>
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

/* Writes "EventID: 42  The disk is full." with priority "warning" to the system's log. */
static u32 Warn(void) {
  return PXTAppendToOSLog(QVX_OSLOG_WARNING, 42, u"raidwatch", u"The disk is full.");
}

int main(void) {
  setlocale(LC_ALL, ""); /* the log's texts have the encoding of the locale */
  if (Warn() != SM_STATUS_SUCCESS) {
    fputs("the event cannot be written\n", stderr);
    return 1;
  }
  if (PXTClearOSLog() != SM_STATUS_SUCCESS) return 1; /* succeeds, and clears nothing */
  puts("written");
  return 0;
}

/*
 * Prints:
 *   written
 */
