/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

#if QVXCS_VERSION_MAJOR != 1
#error "this program was written for version 1"
#endif

int main(void) {
  puts("built with the headers of libqvxcs " QVXCS_VERSION);
  return QVXCS_VERSION_MINOR >= 0 && QVXCS_VERSION_PATCH >= 0 ? 0 : 1;
}

/*
 * Prints:
 *   built with the headers of libqvxcs 1.0.0
 */
