/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */

/* memory, context_lock, export_context, list, hash_id */
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "calls.h"

/* Large enough for the heap's counts to show it, whatever else happens meanwhile. */
enum { kLarge = 1 << 20 };

static void CallMemory(void) {
  void (*const frees[])(void*) = {CALL(PXTFreeMem), CALL(PXTGenericFree), CALL(SUPTFreeMem)};
  for (size_t at = 0; at < 3; ++at) {
    const size_t before = HeapInUse();
    char* block = CALL(PXTAllocMem)(16);
    EXPECT(block != NULL);
    strcpy(block, "fifteen letters");
    block = CALL(PXTReAllocMem)(block, kLarge);
    EXPECT_TEXT(block, "fifteen letters");
    EXPECT(HeapInUse() >= before + kLarge);
    frees[at](block);
    EXPECT(HeapInUse() < before + kLarge);
    frees[at](NULL);
  }
}

/* That a lock excludes is seen where there are two threads, in calls_os.c. */
static void CallContextLocks(void) {
  const u32 lock = CALL(PXTAllocContextLock)();
  const u32 other = CALL(PXTAllocContextLock)();
  EXPECT(lock != 0 && other != 0 && lock != other);
  for (int times = 0; times < 2; ++times) {
    CALL(PXTLockContext)(lock);
    CALL(PXTLockContext)(other);
    CALL(PXTUnLockContext)(lock);
    CALL(PXTUnLockContext)(other);
  }
  CALL(PXTFreeContextLock)(lock);
  CALL(PXTFreeContextLock)(other);
  CALL(PXTLockContext)(0);
  CALL(PXTUnLockContext)(0);
  CALL(PXTFreeContextLock)(0);
}

static void CallExportContext(void) {
  u32 context = 77;
  u32 saved = 78;
  CALL(PXTGetExportContext)(&context);
  EXPECT_EQ(context, 0);
  context = 77;
  CALL(PXTSetExportContext)(&saved, &context);
  CALL(PXTResetExportContext)(&saved);
  EXPECT_EQ(context, 77);
  EXPECT_EQ(saved, 78);
  char** const environment = environ;
  CALL(PXTSetProcessEnvironment)();
  EXPECT(environ == environment);
  const pid_t process = getpid();
  CALL(SUPTBeforeForkForDaemon)();
  EXPECT_EQ(getpid(), process);
  EXPECT_EQ(CALL(PXTEnableLongFileNames)(), 0);
  EXPECT_EQ(CALL(PXTDisableLongFileNames)(), 0);
}

/* Entries hold a key and a letter that distinguishes equal keys. */
typedef struct Payload {
  s32 key;
  char letter;
} Payload;

static PXTDLListEntry* DEntry(s32 key, char letter) {
  PXTDLListEntry* const entry = CALL(PXTDLListEntryAlloc)(sizeof(Payload));
  EXPECT(entry != NULL && entry->data == entry + 1);
  *(Payload*)entry->data = (Payload){key, letter};
  return entry;
}

static s32 DCompare(PXTDLListEntry* new, PXTDLListEntry* present) {
  return ((Payload*)new->data)->key - ((Payload*)present->data)->key;
}

/* The letters from the head and, after a slash, from the tail. */
static const char* DOrder(const PXTDLList* list) {
  static char order[32];
  char* to = order;
  for (const PXTDLListEntry* at = list->head; at != NULL; at = at->next) {
    *to++ = ((Payload*)at->data)->letter;
  }
  *to++ = '/';
  for (const PXTDLListEntry* at = list->tail; at != NULL; at = at->previous) {
    *to++ = ((Payload*)at->data)->letter;
  }
  *to = '\0';
  return order;
}

static void CallDoublyLinkedList(void) {
  PXTDLList* const list = CALL(PXTDLListAlloc)();
  EXPECT(list->lock != 0 && list->head == NULL && list->tail == NULL && list->count == 0);
  EXPECT(CALL(PXTDLListRemoveEntryAtHead)(list) == NULL);
  EXPECT(CALL(PXTDLListRemoveEntryAtTail)(list) == NULL);

  PXTDLListEntry* const a = DEntry(1, 'a');
  PXTDLListEntry* const b = DEntry(2, 'b');
  PXTDLListEntry* const c = DEntry(3, 'c');
  PXTDLListEntry* const again = DEntry(2, 'B');
  EXPECT_EQ(CALL(PXTDLListInsertKeyed)(list, c, DCompare), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTDLListInsertKeyed)(list, a, DCompare), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTDLListInsertKeyed)(list, b, DCompare), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTDLListInsertKeyed)(list, again, DCompare), SM_STATUS_BAD_ARGUMENT);
  EXPECT_TEXT(DOrder(list), "abc/cba");
  EXPECT_EQ(CALL(PXTDLListInsertOrdered)(list, again, DCompare), SM_STATUS_SUCCESS);
  EXPECT_TEXT(DOrder(list), "aBbc/cbBa");
  EXPECT_EQ(list->count, 4);

  EXPECT(CALL(PXTDLListRemoveEntryAtHead)(list) == a);
  EXPECT(CALL(PXTDLListRemoveEntryAtTail)(list) == c);
  CALL(PXTDLListInsertEntryAtHead)(list, c);
  CALL(PXTDLListInsertEntryAtTail)(list, a);
  EXPECT_TEXT(DOrder(list), "cBba/abBc");
  CALL(PXTDLListDeleteEntry)(list, again);
  EXPECT_TEXT(DOrder(list), "cba/abc");
  EXPECT_EQ(list->count, 3);

  CALL(PXTDLListEntryFree)(again);
  for (int entries = 0; entries < 3; ++entries) {
    CALL(PXTDLListEntryFree)(CALL(PXTDLListRemoveEntryAtHead)(list));
  }
  EXPECT(list->head == NULL && list->tail == NULL && list->count == 0);
  CALL(PXTDLListFree)(list);
}

static PXTSLListEntry* SEntry(s32 key, char letter) {
  PXTSLListEntry* const entry = CALL(PXTSLListEntryAlloc)(sizeof(Payload));
  EXPECT(entry != NULL && entry->data == entry + 1);
  *(Payload*)entry->data = (Payload){key, letter};
  return entry;
}

static s32 SCompare(PXTSLListEntry* new, PXTSLListEntry* present) {
  return ((Payload*)new->data)->key - ((Payload*)present->data)->key;
}

/* The letters from the head and, after a slash, the tail's. */
static const char* SOrder(const PXTSLList* list) {
  static char order[32];
  char* to = order;
  for (const PXTSLListEntry* at = list->head; at != NULL; at = at->next) {
    *to++ = ((Payload*)at->data)->letter;
  }
  *to++ = '/';
  if (list->tail != NULL) {
    *to++ = ((Payload*)list->tail->data)->letter;
  }
  *to = '\0';
  return order;
}

static void CallSinglyLinkedList(void) {
  PXTSLList* const list = CALL(PXTSLListAlloc)();
  EXPECT(list->lock != 0 && list->head == NULL && list->tail == NULL && list->count == 0);
  EXPECT(CALL(PXTSLListRemoveEntryAtHead)(list) == NULL);
  EXPECT(CALL(PXTSLListRemoveEntryAtTail)(list) == NULL);

  PXTSLListEntry* const a = SEntry(1, 'a');
  PXTSLListEntry* const b = SEntry(2, 'b');
  PXTSLListEntry* const c = SEntry(3, 'c');
  PXTSLListEntry* const again = SEntry(2, 'B');
  EXPECT_EQ(CALL(PXTSLListInsertKeyed)(list, c, SCompare), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTSLListInsertKeyed)(list, a, SCompare), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTSLListInsertKeyed)(list, b, SCompare), SM_STATUS_SUCCESS);
  EXPECT_EQ(CALL(PXTSLListInsertKeyed)(list, again, SCompare), SM_STATUS_BAD_ARGUMENT);
  EXPECT_TEXT(SOrder(list), "abc/c");
  EXPECT_EQ(CALL(PXTSLListInsertOrdered)(list, again, SCompare), SM_STATUS_SUCCESS);
  EXPECT_TEXT(SOrder(list), "aBbc/c");
  EXPECT_EQ(list->count, 4);

  EXPECT(CALL(PXTSLListRemoveEntryAtHead)(list) == a);
  EXPECT(CALL(PXTSLListRemoveEntryAtTail)(list) == c);
  CALL(PXTSLListInsertEntryAtHead)(list, c);
  CALL(PXTSLListInsertEntryAtTail)(list, a);
  EXPECT_TEXT(SOrder(list), "cBba/a");
  CALL(PXTSLListDeleteEntry)(list, again);
  EXPECT_TEXT(SOrder(list), "cba/a");
  CALL(PXTSLListDeleteEntry)(list, again);
  EXPECT_EQ(list->count, 3);

  CALL(PXTSLListEntryFree)(again);
  for (int entries = 0; entries < 3; ++entries) {
    CALL(PXTSLListEntryFree)(CALL(PXTSLListRemoveEntryAtHead)(list));
  }
  EXPECT(list->head == NULL && list->tail == NULL && list->count == 0);
  CALL(PXTSLListFree)(list);
}

static void CallHashIds(void) {
  u32 table[2];
  memset(table, 0xFF, sizeof(table));
  EXPECT_EQ(CALL(PXTHashTableBytesNeeded)(64), 8);
  EXPECT_EQ(CALL(PXTHashTableBytesNeeded)(9), 2);
  EXPECT_EQ(CALL(PXTClearHashTable)(table, 8), 0);
  EXPECT(table[0] == 0 && table[1] == 0);
  for (u32 id = 1; id <= 3; ++id) {
    EXPECT_EQ(CALL(PXTAcquireHashID)(table, 8), id);
  }
  EXPECT_EQ(table[0], 0xE);
  EXPECT_EQ(CALL(PXTVerifyHashID)(table, 8, 3), 0);
  EXPECT_EQ(CALL(PXTVerifyHashID)(table, 8, 4), -1);
  EXPECT_EQ(CALL(PXTVerifyHashID)(table, 8, 64), -1);
  EXPECT_EQ(CALL(PXTReleaseHashID)(table, 8, 2), 0);
  EXPECT_EQ(CALL(PXTReleaseHashID)(table, 8, 2), -1);
  EXPECT_EQ(CALL(PXTGetMaxInUseID)(table, 8), 3);
  EXPECT_EQ(CALL(PXTAcquireHashID)(table, 8), 2);

  u32 word = 7;
  u32 bit = 7;
  table[0] = 1U << 5;
  table[1] = 1U << 5 | 1U << 1;
  EXPECT_EQ(CALL(PXTFindFirstHashID)(table, 8, &word, &bit), 5);
  EXPECT(word == 0 && bit == 5);
  EXPECT_EQ(CALL(PXTFindNextHashID)(table, 8, &word, &bit), 37); /* 33 lies below the bit */
  EXPECT(word == 1 && bit == 5);
  EXPECT_EQ(CALL(PXTFindNextHashID)(table, 8, &word, &bit), 0);
}

void CallData(void) {
  CallMemory();
  CallContextLocks();
  CallExportContext();
  CallDoublyLinkedList();
  CallSinglyLinkedList();
  CallHashIds();
}
