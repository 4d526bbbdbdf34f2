/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>

/* The file must be there. Index 0 replaces the first line of the key, or appends one. */
static u32 Set(const char* path, astring* key, astring* value) {
  const PXTKeyValue pair = {key, value};
  return PXTCFGSetKeyValue(path, &pair, 0);
}

static int PrintAll(PXTKeyValue* entries, u32 count) {
  if (entries == NULL) return 1;
  for (u32 at = 0; at < count; ++at) {
    printf("%s is %s\n", entries[at].key, entries[at].value);
  }
  const astring* const port = PXTCFGGetKeyValue(entries, count, "port", 0); /* the first "port" */
  printf("the port is %s\n", port != NULL ? port : "not set");
  PXTCFGFreeKeyValueEntries(entries, count); /* ends the life of "port" too */
  return 0;
}

/* A file below the product's folder, named from there. */
static int Installed(void) {
  static astring key[] = "theme";
  static astring value[] = "dark";
  const PXTKeyValue pair = {key, value};
  u32 count = 0;
  FILE* const file = fopen("/etc/cim/zarn/plinthos/vexilon/qvx/ini/page.properties", "w");
  if (file == NULL || fclose(file) != 0) return 1;
  if (PXTCFGInstSetKeyValue("qvx/ini/page.properties", &pair, 0) != SM_STATUS_SUCCESS) return 1;
  PXTKeyValue* const entries = PXTCFGInstGetKeyValueEntries("qvx/ini/page.properties", &count);
  return PrintAll(entries, count);
}

int main(void) {
  static astring key[] = "port";
  static astring value[] = "8443";
  const char* const path = "/tmp/web.properties";
  FILE* const file = fopen(path, "w");
  if (file == NULL || fputs("# the web service\nport = 80\n", file) < 0 || fclose(file) != 0)
    return 1;
  if (Set(path, key, value) != SM_STATUS_SUCCESS) return 1;
  u32 count = 0;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(path, &count);
  if (PrintAll(entries, count) != 0) return 1;
  return remove(path) != 0 || Installed() != 0;
}

/*
 * Prints:
 *   port is 8443
 *   the port is 8443
 *   theme is dark
 *   the port is not set
 */
