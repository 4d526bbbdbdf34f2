/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <uchar.h>

/* Finds values by name. The result points into the entry. */
static int PrintMode(s32 count, astring** entries) {
  const astring* const mode = PXTGetAStrParamValueByAStrName(count, entries, "mode", QVX_FALSE);
  if (mode == NULL) return 1;
  printf("mode is %s, entry %d\n", mode,
         PXTGetParamIndexByAStrName(count, entries, "MODE", QVX_TRUE));
  return 0;
}

/* Cuts an entry in two: the value first, because the name's call ends the text at the "=". */
static int Cut(astring* entry) {
  if (PXTIsValidParam(entry) != 1) return 1;
  const astring* const value = PXTGetAStrParamValue(entry);
  const astring* const name = PXTGetAStrParamName(entry);
  printf("%s, %s\n", name, value);
  return 0;
}

/* The same for 16-bit text. */
static int CutUnits(ustring* entry) {
  if (PXTIsValidUParam(entry) != 1) return 1;
  const ustring* const value = PXTGetUStrParamValue(entry);
  const ustring* const name = PXTGetUStrParamName(entry);
  printf("%u and %u units\n", PXTUniStrlen(name), PXTUniStrlen(value));
  return 0;
}

/* A search of 16-bit entries by name never finds one: cut them yourself, as above. */
static int SearchUnits(ustring** entries) {
  return PXTGetParamIndexByUStrName(1, entries, u"mode", QVX_FALSE) == -1 &&
                 PXTGetUStrParamValueByUStrName(1, entries, u"mode", QVX_FALSE) == NULL
             ? 0
             : 1;
}

int main(void) {
  astring first[] = "level=3";
  astring second[] = "mode=on";
  astring* entries[] = {first, second};
  ustring units[] = u"mode=quiet";
  ustring* unitEntries[] = {units};
  return PrintMode(2, entries) != 0 || Cut(first) != 0 || SearchUnits(unitEntries) != 0 ||
         CutUnits(units) != 0;
}

/*
 * Prints:
 *   mode is on, entry 1
 *   level, 3
 *   4 and 5 units
 */
