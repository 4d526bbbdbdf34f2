/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_LIST_H
#define QVXCS_LIST_H

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/* The header of a doubly linked list. */
typedef struct PXTDLListEntry {
  struct PXTDLListEntry* next;
  struct PXTDLListEntry* previous;
  void* data;
} PXTDLListEntry;

typedef struct PXTDLList {
  u32 lock;
  PXTDLListEntry* head;
  PXTDLListEntry* tail;
  u32 count;
} PXTDLList;

typedef struct PXTSLListEntry {
  struct PXTSLListEntry* next;
  void* data;
} PXTSLListEntry;

typedef struct PXTSLList {
  u32 lock;
  PXTSLListEntry* head;
  PXTSLListEntry* tail;
  u32 count;
} PXTSLList;

typedef s32 (*PXTDLListCompare)(PXTDLListEntry* newEntry, PXTDLListEntry* listEntry);
typedef s32 (*PXTSLListCompare)(PXTSLListEntry* newEntry, PXTSLListEntry* listEntry);

QVX_EXPORT PXTDLList* PXTDLListAlloc(void);

QVX_EXPORT void PXTDLListFree(PXTDLList* list);

QVX_EXPORT PXTDLListEntry* PXTDLListEntryAlloc(u32 size);

QVX_EXPORT void PXTDLListEntryFree(PXTDLListEntry* entry);

QVX_EXPORT void PXTDLListInsertEntryAtHead(PXTDLList* list, PXTDLListEntry* entry);

QVX_EXPORT void PXTDLListInsertEntryAtTail(PXTDLList* list, PXTDLListEntry* entry);

QVX_EXPORT PXTDLListEntry* PXTDLListRemoveEntryAtHead(PXTDLList* list);

QVX_EXPORT PXTDLListEntry* PXTDLListRemoveEntryAtTail(PXTDLList* list);

QVX_EXPORT void PXTDLListDeleteEntry(PXTDLList* list, PXTDLListEntry* entry);

QVX_EXPORT u32 PXTDLListInsertKeyed(PXTDLList* list, PXTDLListEntry* entry,
                                    PXTDLListCompare compare);

QVX_EXPORT u32 PXTDLListInsertOrdered(PXTDLList* list, PXTDLListEntry* entry,
                                      PXTDLListCompare compare);

QVX_EXPORT PXTSLList* PXTSLListAlloc(void);

QVX_EXPORT void PXTSLListFree(PXTSLList* list);

QVX_EXPORT PXTSLListEntry* PXTSLListEntryAlloc(u32 size);

QVX_EXPORT void PXTSLListEntryFree(PXTSLListEntry* entry);

QVX_EXPORT void PXTSLListInsertEntryAtHead(PXTSLList* list, PXTSLListEntry* entry);

QVX_EXPORT void PXTSLListInsertEntryAtTail(PXTSLList* list, PXTSLListEntry* entry);

QVX_EXPORT PXTSLListEntry* PXTSLListRemoveEntryAtHead(PXTSLList* list);

QVX_EXPORT PXTSLListEntry* PXTSLListRemoveEntryAtTail(PXTSLList* list);

QVX_EXPORT void PXTSLListDeleteEntry(PXTSLList* list, PXTSLListEntry* entry);

QVX_EXPORT u32 PXTSLListInsertKeyed(PXTSLList* list, PXTSLListEntry* entry,
                                    PXTSLListCompare compare);

QVX_EXPORT u32 PXTSLListInsertOrdered(PXTSLList* list, PXTSLListEntry* entry,
                                      PXTSLListCompare compare);

QVX_END_DECLS

#endif
