/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

/* One identifier for each kind of command, from QVX_CMDLOG_FIRST_ID to QVX_CMDLOG_LAST_ID. */
enum { kDiskErased = 5200 };

static u32 Record(const char* user, const char* what) {
  return PXTAppendToCmdLog(kDiskErased, user, "raidctl", what, QVX_LOG_INFORMATION);
}

/* The path; where the log does not exist yet, this makes it. */
static int PrintPath(void) {
  astring* const path = PXTGetCmdLogPathFileName();
  if (path == NULL) return 1;
  puts(path);
  PXTFreeMem(path);
  return 0;
}

static int PrintMaximum(void) {
  u32 maximum = 0;
  if (PXTSetCmdLogMaxSize(QVX_CMDLOG_MAX_SIZE) != SM_STATUS_SUCCESS) return 1;
  if (PXTGetCmdLogMaxSize(&maximum) != SM_STATUS_SUCCESS) return 1;
  printf("at most %u bytes\n", maximum);
  return 0;
}

int main(void) {
  u32 before = 0;
  u32 after = 0;
  if (PrintPath() != 0 || PrintMaximum() != 0) return 1;
  if (PXTGetCmdLogSize(&before) != SM_STATUS_SUCCESS) return 1;
  if (Record("ada", "Disk 0:3 was erased") != SM_STATUS_SUCCESS) return 1;
  if (PXTGetCmdLogSize(&after) != SM_STATUS_SUCCESS) return 1;
  puts(after > before ? "one entry more" : "nothing was added");
  return PXTClearCmdLog("ada", "raidctl") == SM_STATUS_SUCCESS ? 0 : 1;
}

/*
 * Prints:
 *   /etc/cim/zarn/plinthos/var/log/vexilon//qvcmdlog.xml
 *   at most 131072 bytes
 *   one entry more
 */
