/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * xmllog add FILE MAXIMUM TEXT   adds an entry; a log that would reach MAXIMUM bytes is kept as its
 *                                backup and begun anew
 * xmllog show FILE               prints the log as XML
 * xmllog backup FILE             prints the name of its backup
 * xmllog clear FILE              begins it anew without a backup
 *
 * The exit status is 0 when that was done, 1 when there is no log to show, 2 when something failed.
 */
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

enum { kNoteAdded = 7001 };

static const char kSource[] = "XMLLOG";

static u32 Add(const char* path, const char* maximum, const char* text, const char* user) {
  if (PXTIsASCIIIntNum(maximum, 0) != SM_STATUS_SUCCESS || strlen(maximum) > 9) {
    return SM_STATUS_INVALID_PARAMETER;
  }
  astring* const markup = PXTGetXMLUTF8StrFromAStr(text, 1); /* a description is not escaped */
  if (markup == NULL) return SM_STATUS_NO_MEMORY;
  const u32 status = PXTAppendToXMLLog(path, QVX_LOG_INFORMATION, kNoteAdded, user, kSource, markup,
                                       NULL, 0, PXTASCIIToUnSigned32(maximum));
  PXTFreeMem(markup);
  return status;
}

static int Show(const char* path) {
  astring* const answer = PXTCmdGetXMLLogContent(path);
  if (answer == NULL) {
    fprintf(stderr, "xmllog: there is no log\n");
    return 1;
  }
  const int whole = strstr(answer, "<Content>") == answer;
  if (whole) {
    printf("<Log>%s</Log>\n", answer); /* one root element for the log and its status */
  } else {
    PrintFailure("xmllog", "the log cannot be read", QVX_FAILED); /* the answer's own status */
  }
  PXTXFreeBufContent(answer);
  return whole ? 0 : 2;
}

static u32 PrintBackupName(const char* path) {
  astring name[QVX_LOG_NAME_ROOM]; /* always this large, whatever the name's length */
  u32 size = 0;
  const u32 status = PXTGetBackupXMLLogPathFileName(path, name, &size);
  if (status == SM_STATUS_SUCCESS) {
    puts(name);
  }
  return status;
}

int main(int argc, char** argv) {
  astring* const user = PXTGetProcessUser(); /* if NULL, the entry's user is empty */
  u32 status = SM_STATUS_SUCCESS;
  int result = 0;
  errno = 0;
  if (argc == 5 && strcmp(argv[1], "add") == 0) {
    status = Add(argv[2], argv[3], argv[4], user);
  } else if (argc == 3 && strcmp(argv[1], "show") == 0) {
    result = Show(argv[2]);
  } else if (argc == 3 && strcmp(argv[1], "backup") == 0) {
    status = PrintBackupName(argv[2]);
  } else if (argc == 3 && strcmp(argv[1], "clear") == 0) {
    status = PXTClearXMLLog(argv[2], user, kSource);
  } else {
    fprintf(stderr, "usage: xmllog add FILE MAXIMUM TEXT | show FILE | backup FILE | clear FILE\n");
    result = 2;
  }
  PXTFreeMem(user);
  if (status != SM_STATUS_SUCCESS) {
    PrintFailure("xmllog", "failed", status);
    result = 2;
  }
  return result;
}
