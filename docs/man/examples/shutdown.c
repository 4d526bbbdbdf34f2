/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <string.h>

/* Runs shutdown(8), which needs root. The result says only whether it could be started. */
static int Reboot(void) {
  if (PXTOSGetType() != QVX_OS_LINUX) return 1;
  return PXTOSShutdown(0, QVX_SHUTDOWN_REBOOT) == 1 ? 0 : 1;
}

int main(int argc, char** argv) {
  if (argc == 2 && strcmp(argv[1], "reboot") == 0) return Reboot();
  puts("usage: shutdown reboot");
  return 0;
}

/*
 * Prints:
 *   usage: shutdown reboot
 */
