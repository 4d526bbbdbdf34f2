/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <string.h>

static const char kPath[] = "/tmp/monitor.ini";

/* A file of any place, named by its path. The section and the file are made if need be. */
static u32 Remember(u32 seconds) {
  return PXTWriteINIPathFileValue("poll", "seconds", QVX_INI_U32, &seconds, sizeof(seconds), kPath,
                                  QVX_LOCK_WAIT);
}

/* Without the file, the section or the key the value is the default, and the status says which. */
static u32 Seconds(u32* status) {
  const u32 usual = 60;
  u32 seconds = 0;
  u32 size = sizeof(seconds);
  *status = PXTReadINIPathFileValue("poll", "seconds", QVX_INI_U32, &seconds, &size, &usual,
                                    sizeof(usual), kPath, QVX_LOCK_WAIT);
  return seconds;
}

/* A file of the product, named without its folder; text counts its NUL. */
static u32 Greet(void) {
  const char* const text = "Good morning";
  astring value[64] = "";
  u32 size = sizeof(value);
  u32 status = PXTWriteINIFileValue("page", "greeting", QVX_INI_ASTRING, text,
                                    (s32)strlen(text) + 1, "monitor.ini", QVX_LOCK_WAIT);
  if (status == SM_STATUS_SUCCESS) {
    status = PXTReadINIFileValue("page", "greeting", QVX_INI_ASTRING, value, &size, NULL, 0,
                                 "monitor.ini", QVX_LOCK_WAIT);
  }
  puts(value);
  return status;
}

int main(void) {
  u32 status = SM_STATUS_SUCCESS;
  u32 seconds = Seconds(&status);
  printf("%u: 0x%x\n", seconds, status); /* 0x7 is SM_STATUS_FILE_OPEN_FAILED */
  if (Remember(15) != SM_STATUS_SUCCESS) return 1;
  seconds = Seconds(&status);
  printf("%u: 0x%x\n", seconds, status);
  if (Greet() != SM_STATUS_SUCCESS) return 1;
  return remove(kPath);
}

/*
 * Prints:
 *   60: 0x7
 *   15: 0x0
 *   Good morning
 */
