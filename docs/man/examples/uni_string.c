/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

static void Print(const ustring* units) {
  astring text[64];
  u32 size = sizeof(text) - 1;
  if (PXTUCS2StrToUTF8Str(text, &size, units) == SM_STATUS_SUCCESS) puts(text);
}

/* Copies and appends; the room is the caller's to know. */
static void Build(void) {
  ustring text[32];
  PXTUniStrcpy(text, u"disk");
  PXTUniStrcat(text, u" 0:");
  PXTUniStrncat(text, u"34567", 1); /* one unit and a terminator */
  Print(text);
  PXTUniStrncpy(text, u"DISK array", 4); /* four units, and no terminator */
  Print(text);
}

/* Where something is, and how long a run of units is. */
static void Search(const ustring* text) {
  printf("length %u, colon at %d, 0: at %d\n", PXTUniStrlen(text),
         (int)(PXTUniStrchr(text, ':') - text), (int)(PXTUniStrstr(text, u"0:") - text));
  printf("letters %u, up to a digit %u\n", PXTUniStrspn(text, u"disk"),
         PXTUniStrcspn(text, u"0123456789"));
}

/* 0 means equal; any other result says nothing about the order. */
static int IsRoot(const ustring* name) { return PXTUniStrcmp(name, u"root") == 0; }

/* One split at a time in the whole process. */
static void Split(ustring* text) {
  for (ustring* token = PXTUniStrtok(text, u" ,"); token != NULL;
       token = PXTUniStrtok(NULL, u" ,")) {
    Print(token);
  }
}

/* Each of these keeps the length. */
static void Change(ustring* text) {
  Print(PXTUniStrrev(text));
  PXTUniStrnset(text, '-', 2);
  Print(text);
  Print(PXTUniStrset(text, '*'));
}

int main(void) {
  ustring list[] = u"one, two";
  ustring word[] = u"fans";
  Build();
  Search(u"disk 0:3");
  Split(list);
  Change(word);
  return IsRoot(u"ada");
}

/*
 * Prints:
 *   disk 0:3
 *   DISK 0:3
 *   length 8, colon at 6, 0: at 5
 *   letters 4, up to a digit 5
 *   one
 *   two
 *   snaf
 *   --af
 *   ****
 */
