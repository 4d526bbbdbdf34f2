/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/*
 * list NAME ...
 *
 * Assigns each name an identifier and prints them sorted by name; a name that is already in the
 * list is refused. The exit status is 0, or 1 when a name was refused, or 2 when something failed.
 */
#include <stdio.h>
#include <string.h>

#include "qvxcs/qvxcs.h"

#include "failure.h"

enum { kMostIds = 31, kTableWords = 1 }; /* 32 bits, one of them for identifier 0 */

/* What an entry of the list carries. */
typedef struct Item {
  u32 id;
  char name[60];
} Item;

/* Negative, 0 or positive: before, the same, after. */
static s32 ByName(PXTDLListEntry* newEntry, PXTDLListEntry* listEntry) {
  const Item* const first = newEntry->data;
  const Item* const second = listEntry->data;
  return strcmp(first->name, second->name);
}

static int Add(PXTDLList* list, u32* table, u32 size, const char* name) {
  Item item = {0, ""};
  if (strlen(name) >= sizeof(item.name)) {
    fprintf(stderr, "list: %s: the name is too long\n", name);
    return 2;
  }
  strcpy(item.name, name);
  item.id = PXTAcquireHashID(table, size);
  PXTDLListEntry* const entry = item.id != 0 ? PXTDLListEntryAlloc(sizeof(item)) : NULL;
  if (entry == NULL) {
    fprintf(stderr, "list: %s: no identifier is free, or no memory\n", name);
    (void)PXTReleaseHashID(table, size, item.id); /* identifier 0 is never in use */
    return 2;
  }
  memcpy(entry->data, &item, sizeof(item));
  const u32 status = PXTDLListInsertKeyed(list, entry, ByName);
  if (status != SM_STATUS_SUCCESS) {
    fprintf(stderr, "list: %s: is there already (%s)\n", name, StatusName(status));
    (void)PXTReleaseHashID(table, size, item.id);
    PXTDLListEntryFree(entry);
    return 1;
  }
  return 0;
}

int main(int argc, char** argv) {
  u32 table[kTableWords];
  if (argc < 2 || PXTHashTableBytesNeeded(kMostIds + 1) > sizeof(table)) {
    fprintf(stderr, "usage: list NAME ...\n");
    return 2;
  }
  (void)PXTClearHashTable(table, sizeof(table));
  PXTDLList* const list = PXTDLListAlloc();
  if (list == NULL) {
    fprintf(stderr, "list: no memory\n");
    return 2;
  }
  int result = 0;
  for (int at = 1; at < argc && result != 2; ++at) {
    const int added = Add(list, table, sizeof(table), argv[at]);
    result = added > result ? added : result;
  }
  printf("%u names, the highest identifier is %u\n", (unsigned)list->count,
         (unsigned)PXTGetMaxInUseID(table, sizeof(table)));
  /* The list does not free entries: empty it before freeing its header. */
  for (PXTDLListEntry* entry = PXTDLListRemoveEntryAtHead(list); entry != NULL;
       entry = PXTDLListRemoveEntryAtHead(list)) {
    const Item* const item = entry->data;
    printf("%u %s\n", (unsigned)item->id, item->name);
    (void)PXTReleaseHashID(table, sizeof(table), item->id);
    PXTDLListEntryFree(entry);
  }
  PXTDLListFree(list);
  return result;
}
