/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#include <qvxcs/qvxcs.h>
#include <stdio.h>
#include <string.h>

typedef struct Disk {
  s32 slot;
  char name[12];
} Disk;

/* --- Doubly linked --- */

static PXTDLListEntry* NewEntry(s32 slot, const char* name) {
  PXTDLListEntry* const entry = PXTDLListEntryAlloc(sizeof(Disk));
  if (entry == NULL) return NULL;
  Disk* const disk = entry->data;
  disk->slot = slot;
  snprintf(disk->name, sizeof(disk->name), "%s", name);
  return entry;
}

static s32 BySlot(PXTDLListEntry* newEntry, PXTDLListEntry* listEntry) {
  return ((Disk*)newEntry->data)->slot - ((Disk*)listEntry->data)->slot;
}

/* One disk for each slot: a second one is refused, and stays ours. */
static void Insert(PXTDLList* list, s32 slot, const char* name) {
  PXTDLListEntry* const entry = NewEntry(slot, name);
  if (entry != NULL && PXTDLListInsertKeyed(list, entry, BySlot) != SM_STATUS_SUCCESS) {
    printf("slot %d is taken\n", slot);
    PXTDLListEntryFree(entry);
  }
}

/* Equal slots are allowed: the newest comes first. Then one goes, from any place. */
static void InsertAndDelete(PXTDLList* list) {
  PXTDLListEntry* const spare = NewEntry(2, "spare");
  if (spare == NULL) return;
  (void)PXTDLListInsertOrdered(list, spare, BySlot);
  printf("%u disks, ", list->count);
  PXTDLListDeleteEntry(list, spare);
  PXTDLListEntryFree(spare);
  printf("%u disks\n", list->count);
}

/* At both ends; the last becomes the first and the other way round. */
static void SwapEnds(PXTDLList* list) {
  PXTDLListEntry* const first = PXTDLListRemoveEntryAtHead(list);
  PXTDLListEntry* const last = PXTDLListRemoveEntryAtTail(list);
  if (first != NULL) PXTDLListInsertEntryAtTail(list, first);
  if (last != NULL) PXTDLListInsertEntryAtHead(list, last);
}

/* Entries are freed one by one, then the header. */
static void PrintAndFree(PXTDLList* list) {
  for (PXTDLListEntry* entry = PXTDLListRemoveEntryAtHead(list); entry != NULL;
       entry = PXTDLListRemoveEntryAtHead(list)) {
    printf("%d %s\n", ((Disk*)entry->data)->slot, ((Disk*)entry->data)->name);
    PXTDLListEntryFree(entry);
  }
  PXTDLListFree(list);
}

static int UseDoublyLinked(void) {
  PXTDLList* const list = PXTDLListAlloc();
  if (list == NULL) return 1;
  Insert(list, 2, "pear");
  Insert(list, 1, "apple");
  Insert(list, 2, "plum");
  InsertAndDelete(list);
  SwapEnds(list);
  PrintAndFree(list);
  return 0;
}

/* --- Singly linked --- */

static s32 ByNumber(PXTSLListEntry* newEntry, PXTSLListEntry* listEntry) {
  return *(s32*)newEntry->data - *(s32*)listEntry->data;
}

static PXTSLListEntry* NewNumber(s32 number) {
  PXTSLListEntry* const entry = PXTSLListEntryAlloc(sizeof(number));
  if (entry != NULL) memcpy(entry->data, &number, sizeof(number));
  return entry;
}

/* 1, 2 and 3 in order, in each of the four ways to put an entry in. */
static int Fill(PXTSLList* list) {
  PXTSLListEntry* entries[4];
  for (s32 at = 0; at < 4; ++at) {
    entries[at] = NewNumber(at);
    if (entries[at] == NULL) return 1;
  }
  PXTSLListInsertEntryAtHead(list, entries[1]);
  PXTSLListInsertEntryAtTail(list, entries[3]);
  if (PXTSLListInsertKeyed(list, entries[2], ByNumber) != SM_STATUS_SUCCESS) return 1;
  if (PXTSLListInsertOrdered(list, entries[0], ByNumber) != SM_STATUS_SUCCESS) return 1;
  PXTSLListDeleteEntry(list, entries[0]);
  PXTSLListEntryFree(entries[0]);
  return 0;
}

static int UseSinglyLinked(void) {
  PXTSLList* const list = PXTSLListAlloc();
  if (list == NULL || Fill(list) != 0) return 1;
  PXTSLListEntryFree(PXTSLListRemoveEntryAtTail(list)); /* walks the list: slow when it is long */
  for (PXTSLListEntry* entry = PXTSLListRemoveEntryAtHead(list); entry != NULL;
       entry = PXTSLListRemoveEntryAtHead(list)) {
    printf("%d\n", *(s32*)entry->data);
    PXTSLListEntryFree(entry);
  }
  PXTSLListFree(list);
  return 0;
}

int main(void) { return UseDoublyLinked() != 0 || UseSinglyLinked() != 0; }

/*
 * Prints:
 *   slot 2 is taken
 *   3 disks, 2 disks
 *   2 pear
 *   1 apple
 *   1
 *   2
 */
