/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

int main(void) {
  /* The locale's sheet is not there: the product's own is named without looking for it. */
  astring* const sheet =
      PXTGetXSLPathLocale("raid", "reports", "disk list.xsl", "de_DE",
                          QVX_SHEET_DECLARATION | QVX_SHEET_OPENING_TAG | QVX_SHEET_CLOSING_TAG, 1);
  if (sheet == NULL) return 1;
  puts(sheet);
  PXTFreeMem(sheet);
  return 0;
}

/*
 * Prints:
 *   /etc/cim/zarn/plinthos/var/lib/vexilon/xslroot//raid/reports/disk%20list.xsl
 */
