/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

/* Every status has a name in QVXCS_EACH_STATUS; 0xFFFFFFFF is the failure without one. */
static const char* NameOf(u32 status) {
#define CASE(name) \
  case name:       \
    return #name;
  switch (status) {
    QVXCS_EACH_STATUS(CASE)
    CASE(QVX_FAILED)
    default:
      return "a status without a name";
  }
#undef CASE
}

int main(void) {
  u32 size = 0;
  const u32 status = PXTGetSizeOfFile("/tmp/no-such-file", &size);
  printf("0x%x is %s\n", status, NameOf(status));
  printf("0x%x is %s\n", SM_STATUS_LOCK_FAILED, NameOf(SM_STATUS_LOCK_FAILED));
  return 0;
}

/*
 * Prints:
 *   0xffffffff is QVX_FAILED
 *   0xb is SM_STATUS_LOCK_FAILED
 */
