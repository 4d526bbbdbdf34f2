/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

/* Makes a name that no file of the folder has; another program could still take it first. */
static int NewName(astring* name, u32 room) {
  return PXTGetTmpFile("/tmp/reports", name, &room) == SM_STATUS_SUCCESS ? 0 : 1;
}

static int WriteReport(const char* path) {
  FILE* const file = fopen(path, "wx");
  if (file == NULL) return 1;
  const int result = fputs("three disks\n", file);
  return fclose(file) == 0 && result >= 0 ? 0 : 1;
}

static void PrintSize(const char* path) {
  u32 size = 0;
  if (PXTGetSizeOfFile(path, &size) == 0) {
    printf("%u bytes\n", size);
  } else {
    puts("no such file");
  }
}

int main(void) {
  astring name[256];
  if (PXTMkDir("/tmp/reports") != 0) return 1; /* one level; one that is there is no fault */
  if (NewName(name, sizeof(name)) != 0 || WriteReport(name) != 0) return 1;
  PrintSize(name);
  if (PXTDeleteFile(name) != 0) return 1;
  PrintSize(name);
  return PXTRmDir("/tmp/reports") == 0 ? 0 : 1; /* only an empty folder */
}

/*
 * Prints:
 *   12 bytes
 *   no such file
 */
