/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * text TEXT
 *
 * Prints UTF-8 text as 16-bit units, as those come back, with backslash escapes and made safe for
 * XML. The exit status is 0, or 1 when the text does not come back as it was, or 2 when it could
 * not be converted.
 */
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

/* Each of these asks for the size, makes room, converts; the result is the caller's, or NULL. */

static ustring* Widen(const char* text) {
  u32 size = 0;
  if (PXTUTF8StrToUCS2Str(NULL, &size, text) != SM_STATUS_SUCCESS) {
    return NULL;
  }
  ustring* wide = PXTAllocMem(size);           /* asked for in bytes, */
  u32 room = size / (u32)sizeof(ustring) - 1u; /* given in units, less the terminator */
  if (wide != NULL && PXTUTF8StrToUCS2Str(wide, &room, text) != SM_STATUS_SUCCESS) {
    PXTFreeMem(wide);
    wide = NULL;
  }
  return wide;
}

static astring* Narrow(const ustring* wide) {
  u32 size = 0;
  if (PXTUCS2StrToUTF8Str(NULL, &size, wide) != SM_STATUS_SUCCESS) {
    return NULL;
  }
  astring* text = PXTAllocMem(size);
  u32 room = size - 1; /* less the terminator */
  if (text != NULL && PXTUCS2StrToUTF8Str(text, &room, wide) != SM_STATUS_SUCCESS) {
    PXTFreeMem(text);
    text = NULL;
  }
  return text;
}

static astring* Escape(const ustring* wide) {
  u32 size = 0; /* here the size counts the terminator, and asking for it is a refusal */
  if (PXTUnicodeToEscape(NULL, &size, wide) != SM_STATUS_BUFFER_TOO_SMALL) {
    return NULL;
  }
  astring* text = PXTAllocMem(size);
  if (text != NULL && PXTUnicodeToEscape(text, &size, wide) != SM_STATUS_SUCCESS) {
    PXTFreeMem(text);
    text = NULL;
  }
  return text;
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: text TEXT\n");
    return 2;
  }
  ustring* const wide = Widen(argv[1]);
  astring* const back = wide != NULL ? Narrow(wide) : NULL;
  astring* const escaped = wide != NULL ? Escape(wide) : NULL;
  astring* const xml = PXTGetXMLUTF8StrFromAStr(argv[1], 1);
  int result = 2;
  if (back != NULL && escaped != NULL && xml != NULL) {
    printf("units:");
    for (u32 at = 0; at < PXTUniStrlen(wide); ++at) {
      printf(" %04x", (unsigned)wide[at]);
    }
    printf("\nback: %s\nescaped: %s\nxml: %s\n", back, escaped, xml);
    result = strcmp(back, argv[1]) == 0 ? 0 : 1;
  } else {
    fprintf(stderr, "text: no UTF-8 text, or no memory\n");
  }
  PXTFreeMem(xml);
  PXTFreeMem(escaped);
  PXTFreeMem(back);
  PXTFreeMem(wide);
  return result;
}
