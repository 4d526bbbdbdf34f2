/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * A host whose own types have the library's short names, in C and in C++: it leaves those out and
 * uses the prefixed ones. That it compiles is half of the test.
 */
#define QVXCS_NO_SHORT_TYPES

typedef struct {
  int own;
} astring, ustring, booln, u8, s8, u16, s16, u32, s32, u64, s64, d64;

#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

static int faults = 0;

#define EXPECT(condition) Expect(condition, #condition, __LINE__)

static void Expect(int holds, const char* claim, int line) {
  if (!holds) {
    ++faults;
    fprintf(stderr, "own_types_host.c:%d: not so: %s\n", line, claim);
  }
}

static void OwnTypesStayTheHosts(void) {
  const u64 large = {64};
  const astring text = {8};
  EXPECT(large.own + text.own == 72);
  EXPECT(sizeof(u64) == sizeof(int));
}

static void PrefixedTypesHaveTheirWidths(void) {
  EXPECT(sizeof(qvx_astring) == 1 && sizeof(qvx_u8) == 1 && sizeof(qvx_s8) == 1);
  EXPECT(sizeof(qvx_ustring) == 2 && sizeof(qvx_booln) == 2);
  EXPECT(sizeof(qvx_u16) == 2 && sizeof(qvx_s16) == 2);
  EXPECT(sizeof(qvx_u32) == 4 && sizeof(qvx_s32) == 4);
  EXPECT(sizeof(qvx_u64) == 8 && sizeof(qvx_s64) == 8 && sizeof(qvx_d64) == 8);
}

static void CallsTakeThePrefixedTypes(void) {
  const qvx_ustring wide[] = {'h', 0xE9, 0};
  qvx_astring narrow[4] = "";
  qvx_u32 size = sizeof(narrow);
  qvx_u32 status = 77;
  EXPECT(PXTUCS2StrToUTF8Str(narrow, &size, wide) == SM_STATUS_SUCCESS);
  EXPECT(strcmp(narrow, "h\xC3\xA9") == 0 && size == 4);
  EXPECT(PXTASCIIToSigned64VT("-5000000000", QVX_BASE_DECIMAL, &status) == (qvx_s64)-5000000000);
  EXPECT(status == SM_STATUS_SUCCESS);
}

int main(void) {
  OwnTypesStayTheHosts();
  PrefixedTypesHaveTheirWidths();
  CallsTakeThePrefixedTypes();
  return faults == 0 ? 0 : 1;
}
