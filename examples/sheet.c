/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * sheet PRODUCT DIRECTORY FILE LOCALE
 *
 * Prints the style sheet that renders XML for a product and a locale: a whole sheet that includes
 * the product's template and the locale's parts, or the URI of a plain sheet.
 */
#include <stdio.h>

#include "qvxcs/qvxcs.h"

int main(int argc, char** argv) {
  if (argc != 5) {
    fprintf(stderr, "usage: sheet PRODUCT DIRECTORY FILE LOCALE\n");
    return 2;
  }
  const u8 parts = QVX_SHEET_DECLARATION | QVX_SHEET_OPENING_TAG | QVX_SHEET_CLOSING_TAG;
  astring* const sheet = PXTGetXSLPathLocale(argv[1], argv[2], argv[3], argv[4], parts, QVX_TRUE);
  if (sheet == NULL) {
    fprintf(stderr, "sheet: the locale is too long, or there is no style sheet root\n");
    return 1;
  }
  printf("%s\n", sheet);
  PXTFreeMem(sheet);
  return 0;
}
