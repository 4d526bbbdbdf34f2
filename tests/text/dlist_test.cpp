// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/dlist.h"

#include <gtest/gtest.h>

#include "tests/support/heap_use.h"
#include "tests/text/list_kinds.h"

// What only doubly linked lists do; the rest is with both kinds in list_test.cpp.
namespace {

using qvx::test::Keys;
using DoublyList = qvx::test::ListOf<qvx::test::Doubly>;
using Entry = PXTDLListEntry;

TEST(DList, ARemovedEntryKeepsItsLinkToThePrevious) {
  DoublyList list;
  for (const s32 key : {1, 2, 3})
    list.Append(key);
  qvx::DLListDeleteEntry(list.get(), list.made(1));
  EXPECT_EQ(list.made(1)->previous, list.made(0));
  EXPECT_EQ(qvx::DLListRemoveEntryAtTail(list.get()), list.made(2));
  EXPECT_EQ(list.made(2)->previous, list.made(0));
}

TEST(DList, MembershipIsNotChecked) {
  DoublyList list;
  DoublyList second;
  Entry* own = list.Append(1);
  Entry* stranger = second.Append(9);
  qvx::DLListDeleteEntry(list.get(), stranger);
  EXPECT_EQ(list->count, 0u);
  EXPECT_EQ(list->head, own);
  EXPECT_EQ(second.Walk(), Keys{9});
}

TEST(DList, OrderedInsertionPutsTheNewestOfEqualKeysFirst) {
  DoublyList list;
  for (s32 made = 0; made < 3; ++made)
    EXPECT_EQ(list.AddOrdered(2), 0u);
  EXPECT_EQ(list->head, list.made(2));
  EXPECT_EQ(list->head->next, list.made(1));
  EXPECT_EQ(list->tail, list.made(0));
}

TEST(DList, EntriesOfBothKindsMayBeFreedByEitherRoutine) {
  constexpr u32 kSize = 4096;
  const size_t before = qvx::test::HeapInUse();
  void* const single = qvx::SLListEntryAlloc(kSize);
  void* const twofold = qvx::DLListEntryAlloc(kSize);
  EXPECT_GE(qvx::test::HeapInUse(), before + 2 * kSize);
  qvx::DLListEntryFree(static_cast<Entry*>(single));
  qvx::SLListEntryFree(static_cast<PXTSLListEntry*>(twofold));
  EXPECT_EQ(qvx::test::HeapInUse(), before);
}

}  // namespace
