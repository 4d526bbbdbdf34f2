/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

/* Appends 8-bit text and 16-bit text, which becomes UTF-8; the record grows by itself. */
static int Grow(void) {
  SSAStr line;
  if (PXTSSAStrAlloc(&line, 8) == NULL) return 1;
  (void)PXTSSAStrCatAStr(&line, "disk 0:3 ");
  (void)PXTSSAStrCatUStr(&line, u"is full");
  printf("%s (%u bytes)\n", line.text, line.length);
  PXTSSAStrFree(&line);
  return 0;
}

/* The same for 16-bit text, with a dump of bytes at its end. */
static int GrowUnits(void) {
  SSUStr line;
  astring narrow[128];
  u32 size = sizeof(narrow) - 1;
  if (PXTSSUStrAlloc(&line, 2) == NULL) return 1;
  (void)PXTSSUStrCatUStr(&line, u"sense ");
  (void)PXTSSUStrCatAStr(&line, "data\n");
  int result = PXTBufToUStr(&line, "ABC", 3, 0x1000) != 0;
  if (result == 0 && PXTUCS2StrToUTF8Str(narrow, &size, line.text) == SM_STATUS_SUCCESS) {
    printf("%.28s\n", narrow); /* the dump goes on with blanks and the three letters */
  }
  PXTSSUStrFree(&line);
  return result;
}

/* Helpers for plain 8-bit text. */
static int UseHelpers(void) {
  astring quoted[] = "\"a\" \"b\"";
  astring* texts[] = {quoted};
  astring* joined = NULL;
  astring replaced[32];
  u32 size = sizeof(replaced);
  PXTRemoveDQuotesInStrArr(1, texts);
  if (PXTASCIIReplaceSubstr("slot 3", "slot", "bay", &size, replaced) != SM_STATUS_SUCCESS)
    return 1;
  PXTAppendDNode("one", "two", &joined);
  if (joined == NULL) return 1;
  printf("%s, %s, %s, %d\n", quoted, replaced, joined, PXTAStrnicmp("Fan", "fanatic", 3));
  PXTFreeMem(joined);
  return 0;
}

int main(void) { return Grow() != 0 || GrowUnits() != 0 || UseHelpers() != 0; }

/*
 * Prints:
 *   disk 0:3 is full (16 bytes)
 *   sense data
 *   0x00001000: 41 42
 *   a b, bay 3, onetwo, 0
 */
