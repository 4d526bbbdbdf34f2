// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#ifndef QVX_TEXT_SLIST_H
#define QVX_TEXT_SLIST_H

#include "qvxcs/list.h"
#include "qvxcs/types.h"

namespace qvx {

PXTSLList* SLListAlloc();
void SLListFree(PXTSLList* list);
PXTSLListEntry* SLListEntryAlloc(u32 size);
void SLListEntryFree(PXTSLListEntry* entry);
void SLListInsertEntryAtHead(PXTSLList* list, PXTSLListEntry* entry);
void SLListInsertEntryAtTail(PXTSLList* list, PXTSLListEntry* entry);
PXTSLListEntry* SLListRemoveEntryAtHead(PXTSLList* list);
PXTSLListEntry* SLListRemoveEntryAtTail(PXTSLList* list);
void SLListDeleteEntry(PXTSLList* list, PXTSLListEntry* entry);
u32 SLListInsertKeyed(PXTSLList* list, PXTSLListEntry* entry, PXTSLListCompare compare);
u32 SLListInsertOrdered(PXTSLList* list, PXTSLListEntry* entry, PXTSLListCompare compare);

}  // namespace qvx

#endif
