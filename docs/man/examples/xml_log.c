/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <string.h>

static const char kLog[] = "/tmp/events.xml";

/* An entry with two bytes of data. A log above 131,072 bytes moves to its backup before. */
static u32 Append(const char* description) {
  const u8 data[] = {0x0A, 0xFF};
  return PXTAppendToXMLLog(kLog, QVX_LOG_WARNING, 7, "ada", "raidwatch", description, data,
                           sizeof(data), 131072);
}

static int PrintBackupName(void) {
  astring name[QVX_LOG_NAME_ROOM];
  u32 size = sizeof(name);
  if (PXTGetBackupXMLLogPathFileName(kLog, name, &size) != SM_STATUS_SUCCESS) return 1;
  printf("the backup is %s\n", name);
  return 0;
}

/* The log as a part of an XML answer: <Content>...</Content><SMStatus>0</SMStatus>. */
static int Find(const char* text) {
  astring* const content = PXTCmdGetXMLLogContent(kLog);
  if (content == NULL) return 1;
  printf("%s: %s\n", text, strstr(content, text) != NULL ? "found" : "not found");
  PXTFreeMem(content);
  return 0;
}

int main(void) {
  const char* const fan = "<Description>Fan 2 is slow</Description>";
  if (PXTForceXMLLogExists(kLog, "ada", "raidwatch") != SM_STATUS_SUCCESS) return 1;
  if (Append("Fan 2 is slow") != SM_STATUS_SUCCESS) return 1;
  if (PrintBackupName() != 0 || Find(fan) != 0) return 1;
  if (PXTClearXMLLog(kLog, "ada", "raidwatch") != SM_STATUS_SUCCESS) return 1;
  if (Find(fan) != 0) return 1; /* "Log was cleared" is the one entry now */
  return remove(kLog);
}

/*
 * Prints:
 *   the backup is /tmp/events.xm_
 *   <Description>Fan 2 is slow</Description>: found
 *   <Description>Fan 2 is slow</Description>: not found
 */
