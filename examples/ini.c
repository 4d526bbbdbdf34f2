/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * ini get FILE SECTION KEY         prints a value
 * ini set FILE SECTION KEY VALUE   changes or adds it, with the section and the file if need be
 * ini delete FILE SECTION KEY      removes the first line of the key
 *
 * The exit status is 0 when that was done, 1 when there is no such file, section or key, or when
 * another line of a deleted key is in force now, 2 when something failed.
 */
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

enum { kFirstRoom = 64 };

/* A value of any length, which the caller frees; NULL on failure, and the status says why. */
static astring* Get(const char* path, const char* section, const char* key, u32* status) {
  astring* value = NULL;
  u32 size = kFirstRoom;
  *status = SM_STATUS_BUFFER_TOO_SMALL;
  while (*status == SM_STATUS_BUFFER_TOO_SMALL) { /* the size is now the size needed */
    astring* const room = PXTReAllocMem(value, size);
    if (room == NULL) {
      *status = SM_STATUS_NO_MEMORY;
      break;
    }
    value = room;
    *status = PXTReadINIPathFileValue(section, key, QVX_INI_ASTRING, value, &size, NULL, 0, path,
                                      QVX_LOCK_WAIT);
  }
  if (*status != SM_STATUS_SUCCESS) {
    PXTFreeMem(value);
    value = NULL;
  }
  return value;
}

static u32 Set(const char* path, const char* section, const char* key, const char* value) {
  /* Text is written unchanged. A text that would be read back as something else is not written. */
  if (strpbrk(section, "]\n") != NULL || strpbrk(key, "=\n") != NULL || *key == '\0' ||
      strchr("[#; \t", *key) != NULL || strchr(value, '\n') != NULL || strlen(value) > 8192) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  return PXTWriteINIPathFileValue(section, key, QVX_INI_ASTRING, value, (s32)strlen(value) + 1,
                                  path, QVX_LOCK_WAIT);
}

static u32 Delete(const char* path, const char* section, const char* key) {
  u32 status = SM_STATUS_SUCCESS;
  PXTFreeMem(Get(path, section, key, &status)); /* deleting a missing key succeeds */
  if (status != SM_STATUS_SUCCESS) return status;
  return PXTWriteINIPathFileValue(section, key, QVX_INI_ASTRING, NULL, 0, path, QVX_LOCK_WAIT);
}

/* Whether a key is still found after it was deleted: a file can have several lines of one key. */
static int IsThere(const char* path, const char* section, const char* key) {
  u32 status = SM_STATUS_SUCCESS;
  astring* const value = Get(path, section, key, &status);
  PXTFreeMem(value);
  return status == SM_STATUS_SUCCESS;
}

static int Report(u32 status) {
  switch (status) {
    case SM_STATUS_SUCCESS:
      return 0;
    case SM_STATUS_FILE_OPEN_FAILED:
      PrintFailure("ini", "the file cannot be opened", status);
      return 1;
    case SM_STATUS_SECTION_NOT_FOUND:
      PrintFailure("ini", "no such section", status);
      return 1;
    case SM_STATUS_KEY_NOT_FOUND:
      PrintFailure("ini", "no such key", status);
      return 1;
    case SM_STATUS_INVALID_PARAMETER:
      PrintFailure("ini", "an INI file cannot hold this text", status);
      return 2;
    default:
      PrintFailure("ini", "failed", status);
      return 2;
  }
}

int main(int argc, char** argv) {
  u32 status = SM_STATUS_SUCCESS;
  errno = 0;
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
    if (status == SM_STATUS_SUCCESS && IsThere(argv[2], argv[3], argv[4])) {
      fprintf(stderr, "ini: another line of the key is in force now\n");
      return 1;
    }
  } else {
    fprintf(stderr, "usage: ini get|set|delete FILE SECTION KEY [VALUE]\n");
    return 2;
  }
  return Report(status);
}
