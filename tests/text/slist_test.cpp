// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/slist.h"

#include <gtest/gtest.h>

#include "tests/text/list_kinds.h"

// What only singly linked lists do; the rest is with both kinds in list_test.cpp.
namespace {

using qvx::test::Keys;
using SinglyList = qvx::test::ListOf<qvx::test::Singly>;
using Entry = PXTSLListEntry;

TEST(SList, AnEntryOfAnotherListIsLeftAlone) {
  SinglyList list;
  SinglyList second;
  list.Append(1);
  Entry* stranger = second.Append(9);
  qvx::SLListDeleteEntry(list.get(), stranger);
  EXPECT_EQ(list.Walk(), Keys{1});
  EXPECT_EQ(second.Walk(), Keys{9});
}

TEST(SList, DeletingFromAnEmptyListDoesNothing) {
  SinglyList list;
  qvx::SLListDeleteEntry(list.get(), list.Make(1));
  EXPECT_EQ(list.Walk(), Keys{});
}

TEST(SList, TailRemovalReturnsTheTailItReadThoughTheListNoLongerHoldsIt) {
  SinglyList list;
  Entry* own = list.Append(1);
  Entry* gone = list.Make(2);
  list->tail = gone;  // as after another thread has taken it out between the two steps
  EXPECT_EQ(qvx::SLListRemoveEntryAtTail(list.get()), gone);
  EXPECT_EQ(list->head, own);
  EXPECT_EQ(list->count, 1u);
}

TEST(SList, OrderedInsertionPutsTheNewestOfEqualKeysFirst) {
  SinglyList list;
  for (s32 made = 0; made < 3; ++made)
    EXPECT_EQ(list.AddOrdered(2), 0u);
  EXPECT_EQ(list->head, list.made(2));
  EXPECT_EQ(list->head->next, list.made(1));
  EXPECT_EQ(list->tail, list.made(0));
}

}  // namespace
