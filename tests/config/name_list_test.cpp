// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/name_list.h"

#include <gtest/gtest.h>

#include <string>

#include "qvxcs/status.h"

#include "support/long_text.h"

namespace qvx {
namespace {

TEST(NameList, NamesHaveANulEachAndOneMoreAtTheEnd) {
  astring buffer[] = "########";
  NameList list(buffer, 6);
  EXPECT_TRUE(list.IsEmpty());
  list.Add("ab");
  list.Add("c");
  EXPECT_FALSE(list.IsEmpty());
  u32 size = 77;
  EXPECT_EQ(list.End(&size), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 5u);
  EXPECT_EQ(std::string(buffer, sizeof(buffer) - 1), std::string("ab\0c\0\0##", 8));
}

TEST(NameList, NamesThatDoNotFitAreCountedOnly) {
  astring buffer[] = "########";
  NameList list(buffer, 3);
  list.Add("ab");
  list.Add("cd");
  u32 size = 77;
  EXPECT_EQ(list.End(&size), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 6u);
  EXPECT_EQ(std::string(buffer, sizeof(buffer) - 1), std::string("ab\0\0####", 8));
}

TEST(NameList, ASizeBeyond32BitsIsTheLargest) {
  if (!test::kHasLongTexts) GTEST_SKIP();
  const test::LongText<astring> name(u64{1} << 32, 'n');
  astring buffer[8];
  NameList list(buffer, sizeof(buffer));
  list.Add(std::string_view(name.text(), static_cast<size_t>(u64{1} << 32)));
  u32 size = 77;
  EXPECT_EQ(list.End(&size), SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 0xFFFFFFFFu);
}

}  // namespace
}  // namespace qvx
