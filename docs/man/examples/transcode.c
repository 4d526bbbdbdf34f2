/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

/* Asks for the size, allocates, converts. The caller frees the text; NULL on any failure. */
static astring* Narrow(const ustring* units) {
  u32 size = 0;
  if (PXTUCS2StrToUTF8Str(NULL, &size, units) != SM_STATUS_SUCCESS) return NULL;
  astring* const text = PXTAllocMem(size);
  u32 room = size - 1; /* the room does not count the NUL */
  if (text == NULL || PXTUCS2StrToUTF8Str(text, &room, units) == SM_STATUS_SUCCESS) return text;
  PXTFreeMem(text);
  return NULL;
}

/* The other way the query returns bytes, and the call expects units. */
static ustring* Widen(const astring* text) {
  u32 size = 0;
  if (PXTUTF8StrToUCS2Str(NULL, &size, text) != SM_STATUS_SUCCESS) return NULL;
  ustring* const units = PXTAllocMem(size);
  u32 room = size / (u32)sizeof(ustring) - 1;
  if (units == NULL || PXTUTF8StrToUCS2Str(units, &room, text) == SM_STATUS_SUCCESS) return units;
  PXTFreeMem(units);
  return NULL;
}

/* The same conversions have two more names each, whatever the locale. */
static int UseOtherNames(void) {
  astring text[16];
  ustring units[16];
  u32 size = 15;
  if (PXTASCIIToUnicode(units, &size, "a") != SM_STATUS_SUCCESS) return 1;
  size = 15;
  if (PXTLocalToUnicode(units, &size, "ab") != SM_STATUS_SUCCESS) return 1;
  size = 15;
  if (PXTUnicodeToASCII(text, &size, units) != SM_STATUS_SUCCESS) return 1;
  size = 15;
  if (PXTUnicodeToLocal(text, &size, units) != SM_STATUS_SUCCESS) return 1;
  printf("%s, language %u\n", text, PXTGetLocalLanguageID());
  return 0;
}

/* Code points, which may be above 0xFFFF. */
static int NarrowCodePoints(void) {
  const u32 points[] = {'<', 0x1F600, '>', 0};
  astring text[16];
  u32 size = 15;
  if (PXTUCS4StrToUTF8Str(text, &size, points) != SM_STATUS_SUCCESS) return 1;
  printf("%u bytes\n", size);
  return 0;
}

/* Text for XML: into a buffer, or as a new block from 8-bit and from 16-bit text. */
static int EscapeForXml(void) {
  astring text[32];
  u32 size = sizeof(text);
  booln escaped = QVX_FALSE;
  if (PXTUTF8StrToXMLUTF8Str(text, &size, &escaped, "R&D") != SM_STATUS_SUCCESS) return 1;
  astring* const once = PXTGetXMLUTF8StrFromUStr(u"<a>", 1);
  astring* const twice = PXTGetXMLUTF8StrFromAStr("&", 2);
  if (once != NULL && twice != NULL) printf("%s, %u, %s, %s\n", text, escaped, once, twice);
  PXTFreeMem(once);
  PXTFreeMem(twice);
  return 0;
}

/* Printable characters with backslash escapes. */
static int Escape(const ustring* units) {
  astring text[64];
  u32 size = sizeof(text);
  if (PXTUnicodeToEscape(text, &size, units) != SM_STATUS_SUCCESS) return 1;
  puts(text);
  return 0;
}

int main(void) {
  ustring* const units = Widen("caf\xC3\xA9\t");
  astring* const text = units != NULL ? Narrow(units) : NULL;
  const int result = text == NULL || Escape(units) != 0;
  PXTFreeMem(text);
  PXTFreeMem(units);
  return result != 0 || UseOtherNames() != 0 || NarrowCodePoints() != 0 || EscapeForXml() != 0;
}

/*
 * Prints:
 *   caf\u00e9\t
 *   ab, language 1033
 *   7 bytes
 *   R&amp;D, 1, &lt;a&gt;, &amp;amp;
 */
