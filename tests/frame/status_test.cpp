// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "qvxcs/status.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "qvxcs/ini_file.h"
#include "qvxcs/ip_address.h"
#include "qvxcs/transcode.h"

namespace {

TEST(Status, EveryCodeHasItsValue) {
  const struct {
    u32 code;
    u32 value;
  } cases[] = {{SM_STATUS_SUCCESS, 0},
               {SM_STATUS_BAD_ARGUMENT, 2},
               {SM_STATUS_TIMEOUT, 3},
               {SM_STATUS_FILE_OPEN_FAILED, 7},
               {SM_STATUS_LOCK_FAILED, 11},
               {SM_STATUS_SIZE_REQUIRED, 15},
               {SM_STATUS_BUFFER_TOO_SMALL, 16},
               {SM_STATUS_NOT_LOADED, 17},
               {SM_STATUS_WRITE_FAILED, 19},
               {SM_STATUS_FAILURE, 256},
               {SM_STATUS_BAD_DATA, 257},
               {SM_STATUS_FILE_CREATE_FAILED, 258},
               {SM_STATUS_FILE_OPEN_ERROR, 260},
               {SM_STATUS_BAD_SECTION_HEADER, 261},
               {SM_STATUS_SECTION_NOT_FOUND, 262},
               {SM_STATUS_KEY_NOT_FOUND, 263},
               {SM_STATUS_DATA_TOO_LARGE, 264},
               {SM_STATUS_FILE_DELETE_FAILED, 270},
               {SM_STATUS_INVALID_PARAMETER, 271},
               {SM_STATUS_NO_MEMORY, 272},
               {SM_STATUS_IP_INVALID_PARAMETER, 8216}};
  for (const auto& one : cases) {
    EXPECT_EQ(one.code, one.value);
  }
  EXPECT_TRUE((std::is_same_v<decltype(SM_STATUS_FAILURE), u32>));
}

TEST(Status, FamiliesNameANullArgumentDifferently) {
  char value[4] = "old";
  u32 size = sizeof(value);
  EXPECT_EQ(PXTReadINIPathFileValue(nullptr, "key", QVX_INI_ASTRING, value, &size, nullptr, 0,
                                    nullptr, QVX_LOCK_TRY),
            SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(PXTUnicodeToASCII(value, &size, nullptr), SM_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(PXTIsIPv6(nullptr), SM_STATUS_IP_INVALID_PARAMETER);
  EXPECT_STREQ(value, "old");
  EXPECT_EQ(size, 4U);
}

TEST(Status, ASizeQueryCountsTheTerminator) {
  const ustring text[] = {'a', 'b', 0};
  u32 size = 0;
  EXPECT_EQ(PXTUnicodeToASCII(nullptr, &size, text), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 3U);
  size = 0;
  EXPECT_EQ(PXTASCIIToUnicode(nullptr, &size, "ab"), SM_STATUS_SUCCESS);
  EXPECT_EQ(size, 6U);
}

}  // namespace
