/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * text TEXT
 *
 * Prints UTF-8 text as 16-bit units, converted back from those, with backslash escapes and escaped
 * for XML. The exit status is 0, or 1 when the round trip changes the text, or 2 when it could not
 * be converted.
 */
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

/* Each of these queries the size, allocates and converts; the caller frees the result, or NULL. */

static ustring* Widen(const char* text, u32* status) {
  u32 size = 0;
  *status = PXTUTF8StrToUCS2Str(NULL, &size, text);
  if (*status != SM_STATUS_SUCCESS) return NULL;
  ustring* wide = PXTAllocMem(size);           /* the query reports bytes, */
  u32 room = size / (u32)sizeof(ustring) - 1u; /* the call expects units, less the terminator */
  *status = wide == NULL ? SM_STATUS_NO_MEMORY : PXTUTF8StrToUCS2Str(wide, &room, text);
  if (*status != SM_STATUS_SUCCESS) {
    PXTFreeMem(wide);
    wide = NULL;
  }
  return wide;
}

static astring* Narrow(const ustring* wide, u32* status) {
  u32 size = 0;
  *status = PXTUCS2StrToUTF8Str(NULL, &size, wide);
  if (*status != SM_STATUS_SUCCESS) return NULL;
  astring* text = PXTAllocMem(size);
  u32 room = size - 1; /* less the terminator */
  *status = text == NULL ? SM_STATUS_NO_MEMORY : PXTUCS2StrToUTF8Str(text, &room, wide);
  if (*status != SM_STATUS_SUCCESS) {
    PXTFreeMem(text);
    text = NULL;
  }
  return text;
}

static astring* Escape(const ustring* wide, u32* status) {
  u32 size = 0; /* here the size includes the terminator, and a size query is refused */
  *status = PXTUnicodeToEscape(NULL, &size, wide);
  if (*status != SM_STATUS_BUFFER_TOO_SMALL) return NULL;
  astring* text = PXTAllocMem(size);
  *status = text == NULL ? SM_STATUS_NO_MEMORY : PXTUnicodeToEscape(text, &size, wide);
  if (*status != SM_STATUS_SUCCESS) {
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
  u32 status = SM_STATUS_SUCCESS;
  ustring* const wide = Widen(argv[1], &status);
  astring* const back = wide != NULL ? Narrow(wide, &status) : NULL;
  astring* const escaped = back != NULL ? Escape(wide, &status) : NULL;
  astring* const xml = PXTGetXMLUTF8StrFromAStr(argv[1], 1); /* NULL without a status */
  int result = 2;
  if (escaped != NULL && xml != NULL) {
    printf("units:");
    for (u32 at = 0; at < PXTUniStrlen(wide); ++at) {
      printf(" %04x", (unsigned)wide[at]);
    }
    printf("\nback: %s\nescaped: %s\nxml: %s\n", back, escaped, xml);
    result = strcmp(back, argv[1]) == 0 ? 0 : 1;
  } else {
    PrintFailure("text", "the text cannot be converted",
                 escaped != NULL ? SM_STATUS_NO_MEMORY : status);
  }
  PXTFreeMem(xml);
  PXTFreeMem(escaped);
  PXTFreeMem(back);
  PXTFreeMem(wide);
  return result;
}
