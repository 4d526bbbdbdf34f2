/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * ini get FILE SECTION KEY         prints a value
 * ini set FILE SECTION KEY VALUE   changes or adds it, with the section and the file if need be
 * ini delete FILE SECTION KEY      removes it
 *
 * The exit status is 0 when that was done, 1 when there is no such file, section or key, 2 when
 * something failed.
 */
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

enum { kText = 1, kWaitForTheLock = 1, kFirstRoom = 64 };

/* A value of any length, in memory of the caller; NULL, and the status tells why. */
static astring* Get(const char* path, const char* section, const char* key, u32* status) {
  astring* value = NULL;
  u32 size = kFirstRoom;
  *status = SM_STATUS_BUFFER_TOO_SMALL;
  while (*status == SM_STATUS_BUFFER_TOO_SMALL) { /* the size is then the size needed */
    astring* const room = PXTReAllocMem(value, size);
    if (room == NULL) {
      *status = SM_STATUS_NO_MEMORY;
      break;
    }
    value = room;
    *status =
        PXTReadINIPathFileValue(section, key, kText, value, &size, NULL, 0, path, kWaitForTheLock);
  }
  if (*status != SM_STATUS_SUCCESS) {
    PXTFreeMem(value);
    value = NULL;
  }
  return value;
}

static u32 Set(const char* path, const char* section, const char* key, const char* value) {
  /* Texts are written as they are: what would be read as something else is not written. */
  if (strpbrk(section, "]\n") != NULL || strpbrk(key, "=\n") != NULL || *key == '\0' ||
      strchr("[#; \t", *key) != NULL || strchr(value, '\n') != NULL || strlen(value) > 8192) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  return PXTWriteINIPathFileValue(section, key, kText, value, (s32)strlen(value) + 1, path,
                                  kWaitForTheLock);
}

static u32 Delete(const char* path, const char* section, const char* key) {
  u32 status = SM_STATUS_SUCCESS;
  PXTFreeMem(Get(path, section, key, &status)); /* deleting a key that is not there succeeds */
  if (status != SM_STATUS_SUCCESS) {
    return status;
  }
  return PXTWriteINIPathFileValue(section, key, kText, NULL, 0, path, kWaitForTheLock);
}

static int Report(u32 status) {
  switch (status) {
    case SM_STATUS_SUCCESS:
      return 0;
    case SM_STATUS_FILE_OPEN_FAILED:
      fprintf(stderr, "ini: the file is missing or cannot be opened\n");
      return 1;
    case SM_STATUS_SECTION_NOT_FOUND:
      fprintf(stderr, "ini: no such section\n");
      return 1;
    case SM_STATUS_KEY_NOT_FOUND:
      fprintf(stderr, "ini: no such key\n");
      return 1;
    case SM_STATUS_INVALID_PARAMETER:
      fprintf(stderr, "ini: this text cannot stand in an INI file\n");
      return 2;
    default:
      fprintf(stderr, "ini: failed (0x%x)\n", (unsigned)status);
      return 2;
  }
}

int main(int argc, char** argv) {
  u32 status = SM_STATUS_SUCCESS;
  if (argc == 5 && strcmp(argv[1], "get") == 0) {
    astring* const value = Get(argv[2], argv[3], argv[4], &status);
    if (value != NULL) {
      puts(value);
    }
    PXTFreeMem(value);
  } else if (argc == 6 && strcmp(argv[1], "set") == 0) {
    status = Set(argv[2], argv[3], argv[4], argv[5]);
  } else if (argc == 5 && strcmp(argv[1], "delete") == 0) {
    status = Delete(argv[2], argv[3], argv[4]);
  } else {
    fprintf(stderr, "usage: ini get|set|delete FILE SECTION KEY [VALUE]\n");
    return 2;
  }
  return Report(status);
}
