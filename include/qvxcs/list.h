/* SPDX-FileCopyrightText: Copyright The libqvxcs authors */
/* SPDX-License-Identifier: MIT */
#ifndef QVXCS_LIST_H
#define QVXCS_LIST_H

/**
 * @file
 * Linked lists, doubly (`DLList`) and singly (`SLList`) linked, each with its own lock.
 *
 * Entries are allocated by the family with room for the caller's payload right after the links;
 * `data` points to it. A list never copies, moves or frees an entry: take it out before freeing it,
 * and empty the list before freeing the header, or the entries are lost. A removed entry's own
 * links stay as they were.
 *
 * Every operation holds the list's lock for its whole length, so several threads may use one list.
 * The compare function runs under the lock and must not call back into the same list: the lock is
 * not recursive. Lists and entries given are not checked: a NULL list is the caller's error, and so
 * is an entry of another list, unless the function says otherwise. Payload sizes count
 * bytes.
 */

#include "qvxcs/types.h"

QVX_BEGIN_DECLS

/** An entry of a doubly linked list; the payload follows. */
typedef struct PXTDLListEntry {
  struct PXTDLListEntry* next;     /**< NULL in the last entry */
  struct PXTDLListEntry* previous; /**< NULL in the first entry */
  void* data;                      /**< the payload: the first byte after this record */
} PXTDLListEntry;

/** The header of a doubly linked list. */
typedef struct PXTDLList {
  qvx_u32 lock;         /**< a context lock, taken around every operation */
  PXTDLListEntry* head; /**< NULL when the list is empty */
  PXTDLListEntry* tail; /**< NULL when the list is empty */
  qvx_u32 count;        /**< the number of entries */
} PXTDLList;

/** An entry of a singly linked list; the payload follows. */
typedef struct PXTSLListEntry {
  struct PXTSLListEntry* next; /**< NULL in the last entry */
  void* data;                  /**< the payload: the first byte after this record */
} PXTSLListEntry;

/** The header of a singly linked list. */
typedef struct PXTSLList {
  qvx_u32 lock;         /**< a context lock, taken around every operation */
  PXTSLListEntry* head; /**< NULL when the list is empty */
  PXTSLListEntry* tail; /**< NULL when the list is empty */
  qvx_u32 count;        /**< the number of entries */
} PXTSLList;

/** Positions of a new entry to one in the list: what a compare function may return. */
enum QVXListPosition {
  QVX_LIST_BEFORE = -1, /**< the new entry belongs before it, as with any negative result */
  QVX_LIST_SAME = 0,    /**< both have the same key */
  QVX_LIST_AFTER = 1    /**< the new entry belongs after it, as with any positive result */
};

/**
 * Compares a new entry with one in the list and returns its position, one of `QVXListPosition` or
 * any other number of the same sign.
 */
typedef qvx_s32 (*PXTDLListCompare)(PXTDLListEntry* newEntry, PXTDLListEntry* listEntry);

/** The same for singly linked lists. */
typedef qvx_s32 (*PXTSLListCompare)(PXTSLListEntry* newEntry, PXTSLListEntry* listEntry);

/**
 * Makes an empty doubly linked list with a new lock.
 *
 * @return the header; NULL without memory or without a lock, and nothing is leaked
 * @par Memory
 * Give the header back with `PXTDLListFree`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT PXTDLList* PXTDLListAlloc(void);

/**
 * Frees a list's header and its lock.
 *
 * Takes and releases the lock once, so that an operation under way ends first.
 *
 * @param[in] list  the header, not used again
 * @par Memory
 * Entries still in the list are not freed.
 * @par Threads
 * No other thread may begin an operation on the list.
 */
QVX_EXPORT void PXTDLListFree(PXTDLList* list);

/**
 * Makes an entry.
 *
 * Its links are not initialised.
 *
 * @param[in] size  bytes of payload; 0 is allowed
 * @return the entry, its `data` set to the payload; NULL without memory
 * @par Memory
 * Give the entry back with `PXTDLListEntryFree`. The payload is not cleared.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT PXTDLListEntry* PXTDLListEntryAlloc(qvx_u32 size);

/**
 * Frees an entry and its payload.
 *
 * It must not be in a list.
 *
 * @param[in] entry  the entry; NULL does nothing
 * @par Memory
 * One routine serves both kinds of entries.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void PXTDLListEntryFree(PXTDLListEntry* entry);

/**
 * Puts an entry first.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the entry, in no list
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT void PXTDLListInsertEntryAtHead(PXTDLList* list, PXTDLListEntry* entry);

/**
 * Puts an entry last.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the entry, in no list
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT void PXTDLListInsertEntryAtTail(PXTDLList* list, PXTDLListEntry* entry);

/**
 * Takes the first entry out.
 *
 * @param[in,out] list  the list
 * @return the entry; NULL when the list is empty
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT PXTDLListEntry* PXTDLListRemoveEntryAtHead(PXTDLList* list);

/**
 * Takes the last entry out.
 *
 * @param[in,out] list  the list
 * @return the entry; NULL when the list is empty
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT PXTDLListEntry* PXTDLListRemoveEntryAtTail(PXTDLList* list);

/**
 * Takes an entry out of its place.
 *
 * The entry must be in this list; that is not checked.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the entry; with NULL the list stays as it is
 * @par Memory
 * The entry is not freed.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT void PXTDLListDeleteEntry(PXTDLList* list, PXTDLListEntry* entry);

/**
 * Puts an entry before the first one that is greater, unless its key is there already.
 *
 * Walks from the head while `compare` is positive. The list must have been filled in this order.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the new entry, in no list
 * @param[in] compare    compares the new entry with one of the list
 * @retval SM_STATUS_SUCCESS inserted
 * @retval SM_STATUS_BAD_ARGUMENT an entry met on the way compares as 0; nothing is changed
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock, under which `compare` runs.
 */
QVX_EXPORT qvx_u32 PXTDLListInsertKeyed(PXTDLList* list, PXTDLListEntry* entry,
                                        PXTDLListCompare compare);

/**
 * Puts an entry before the first one that is equal or greater.
 *
 * Of equal keys the newest comes first.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the new entry, in no list
 * @param[in] compare    compares the new entry with one of the list
 * @retval SM_STATUS_SUCCESS always
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock, under which `compare` runs.
 */
QVX_EXPORT qvx_u32 PXTDLListInsertOrdered(PXTDLList* list, PXTDLListEntry* entry,
                                          PXTDLListCompare compare);

/**
 * Makes an empty singly linked list with a new lock.
 *
 * @return the header; NULL without memory or without a lock, and nothing is leaked
 * @par Memory
 * Give the header back with `PXTSLListFree`.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT PXTSLList* PXTSLListAlloc(void);

/**
 * Frees a list's header and its lock.
 *
 * Takes and releases the lock once, so that an operation under way ends first.
 *
 * @param[in] list  the header, not used again
 * @par Memory
 * Entries still in the list are not freed.
 * @par Threads
 * No other thread may begin an operation on the list.
 */
QVX_EXPORT void PXTSLListFree(PXTSLList* list);

/**
 * Makes an entry.
 *
 * Its links are not initialised.
 *
 * @param[in] size  bytes of payload; 0 is allowed
 * @return the entry, its `data` set to the payload; NULL without memory
 * @par Memory
 * Give the entry back with `PXTSLListEntryFree`. The payload is not cleared.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT PXTSLListEntry* PXTSLListEntryAlloc(qvx_u32 size);

/**
 * Frees an entry and its payload.
 *
 * It must not be in a list.
 *
 * @param[in] entry  the entry; NULL does nothing
 * @par Memory
 * One routine serves both kinds of entries.
 * @par Threads
 * Any thread may call.
 */
QVX_EXPORT void PXTSLListEntryFree(PXTSLListEntry* entry);

/**
 * Puts an entry first.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the entry, in no list
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT void PXTSLListInsertEntryAtHead(PXTSLList* list, PXTSLListEntry* entry);

/**
 * Puts an entry last.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the entry, in no list
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT void PXTSLListInsertEntryAtTail(PXTSLList* list, PXTSLListEntry* entry);

/**
 * Takes the first entry out.
 *
 * @param[in,out] list  the list
 * @return the entry; NULL when the list is empty
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT PXTSLListEntry* PXTSLListRemoveEntryAtHead(PXTSLList* list);

/**
 * Takes the last entry out, by a walk from the head.
 *
 * The lock is released between reading the tail and taking it out. Another thread may change the
 * list in between; the entry that was last at the first moment is taken out, if it is still in
 * the list, and returned in any case: two threads may receive the same entry.
 *
 * @param[in,out] list  the list
 * @return the entry; NULL when the list is empty
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock twice; let one thread at a time take entries from the tail.
 */
QVX_EXPORT PXTSLListEntry* PXTSLListRemoveEntryAtTail(PXTSLList* list);

/**
 * Takes an entry out of its place, found by a walk from the head.
 *
 * An entry that is not in the list leaves everything as it is.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the entry; with NULL the list stays as it is
 * @par Memory
 * The entry is not freed.
 * @par Threads
 * Holds the list's lock; any thread may call.
 */
QVX_EXPORT void PXTSLListDeleteEntry(PXTSLList* list, PXTSLListEntry* entry);

/**
 * Puts an entry before the first one that is greater, unless its key is there already.
 *
 * Walks from the head while `compare` is positive. The list must have been filled in this order.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the new entry, in no list
 * @param[in] compare    compares the new entry with one of the list
 * @retval SM_STATUS_SUCCESS inserted
 * @retval SM_STATUS_BAD_ARGUMENT an entry met on the way compares as 0; nothing is changed
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock, under which `compare` runs.
 */
QVX_EXPORT qvx_u32 PXTSLListInsertKeyed(PXTSLList* list, PXTSLListEntry* entry,
                                        PXTSLListCompare compare);

/**
 * Puts an entry before the first one that is equal or greater.
 *
 * Of equal keys the newest comes first.
 *
 * @param[in,out] list   the list
 * @param[in,out] entry  the new entry, in no list
 * @param[in] compare    compares the new entry with one of the list
 * @retval SM_STATUS_SUCCESS always
 * @par Memory
 * The entry stays the caller's to free.
 * @par Threads
 * Holds the list's lock, under which `compare` runs.
 */
QVX_EXPORT qvx_u32 PXTSLListInsertOrdered(PXTSLList* list, PXTSLListEntry* entry,
                                          PXTSLListCompare compare);

QVX_END_DECLS

#endif
