/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <string.h>

typedef double (*Root)(double);

int main(void) {
  PXTLibrary library = {NULL, NULL};
  if (PXTLibLoad(&library, "libm.so.6") != SM_STATUS_SUCCESS) return 1;
  void* const symbol = PXTLibLinkToExportFN(&library, "sqrt");
  if (symbol != NULL) {
    Root root = NULL;
    memcpy(&root, &symbol, sizeof(root)); /* ISO C has no cast from a pointer to a function */
    printf("%.1f\n", root(6.25));
    (void)PXTLibUnLinkFromExportFN(&library, symbol);
  }
  if (PXTLibLinkToExportFN(&library, "no_such_function") == NULL) puts("no such function");
  return PXTLibUnLoad(&library) == SM_STATUS_SUCCESS ? 0 : 1; /* no symbol is used after this */
}

/*
 * Prints:
 *   2.5
 *   no such function
 */
