/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * rolemap
 *
 * Checks the role map for its administrator: opens it, queries it, and shows the line and the
 * reason of its fault. The exit status is 0 without a fault, 1 with one, 2 when the file could not
 * be checked.
 *
 * This shows how a program learns of a fault. An administrator runs "qvxctl rolemap check", which
 * also finds what the library accepts silently: a byte above 0x7F, after which no line counts; a
 * last line without a newline; a user or a group that does not exist.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

enum { kCheckBegins = 5101 };

#define SOURCE "ROLEMAP"

/* The command log's identifiers for faults of the role map. */
static const struct {
  u32 id;
  const char* reason;
} kFaults[] = {
    {QVX_ROLEMAP_MISSING_FIELD, "a field is missing: users, hosts and a role are needed"},
    {QVX_ROLEMAP_OPEN_FAILED, "the file is missing or cannot be opened"},
    {QVX_ROLEMAP_BAD_PERMISSIONS, "the file's mode is neither 0640 nor 01640"},
    {QVX_ROLEMAP_NO_RECORDS, "the file has no line that counts"},
    {QVX_ROLEMAP_INVALID_ROLE, "the role is none of administrator, poweruser and user"},
    {QVX_ROLEMAP_CONFLICT, "a user is given the same host a second time"},
};

/* The part of the log after this program's last entry; the whole log if it was restarted. */
static const char* AfterOurEntry(const char* log) {
  static const char kOurs[] = "<Source>" SOURCE "</Source>";
  for (const char* at = strstr(log, kOurs); at != NULL; at = strstr(log, kOurs)) {
    log = at + strlen(kOurs);
  }
  return log;
}

/* The first fault is the reason; the query after a failed open may add one without a line. */
static int ShowFirstFault(const char* entries) {
  const char* first = NULL;
  const char* reason = NULL;
  for (size_t at = 0; at < sizeof(kFaults) / sizeof(*kFaults); ++at) {
    char id[24];
    snprintf(id, sizeof(id), "<ID>%u</ID>", (unsigned)kFaults[at].id);
    const char* const found = strstr(entries, id);
    if (found != NULL && (first == NULL || found < first)) {
      first = found;
      reason = kFaults[at].reason;
    }
  }
  if (first == NULL) return 0;
  static const char kLine[] = "name=\"line\" value=\"";
  const char* const line = strstr(first, kLine);
  const unsigned long number = line == NULL ? 0 : strtoul(line + strlen(kLine), NULL, 10);
  if (number != 0) {
    printf("line %lu: ", number);
  }
  printf("%s; the library uses its built-in lines\n", reason);
  return 1;
}

int main(void) {
  /* Marks where the check begins, and shows that a fault can be recorded. */
  errno = 0;
  const u32 status =
      PXTAppendToCmdLog(kCheckBegins, "root", SOURCE, "Role map check", QVX_LOG_INFORMATION);
  if (status != SM_STATUS_SUCCESS) {
    PrintFailure("rolemap", "the command log cannot be written", status);
    return 2;
  }
  (void)PXTOpenRolemapFile();                    /* finds a missing file and a wrong mode */
  const u32 rights = PXTGetRightsUsingRolemap(); /* reads the lines */
  astring* const path = PXTGetCmdLogPathFileName();
  errno = 0;
  astring* const log = PXTCmdGetXMLLogContent(path);
  if (log == NULL) {
    PrintFailure("rolemap", "the command log cannot be read", QVX_FAILED);
    PXTFreeMem(path);
    return 2;
  }
  PXTFreeMem(path);
  const int fault = ShowFirstFault(AfterOurEntry(log));
  PXTXFreeBufContent(log);
  if (fault) return 1;
  if (rights == 0) {
    fprintf(stderr, "rolemap: nothing is granted to this user, or memory ran out\n");
    return 2;
  }
  printf("no fault; what the library skips in silence, \"qvxctl rolemap check\" shows\n");
  return 0;
}
