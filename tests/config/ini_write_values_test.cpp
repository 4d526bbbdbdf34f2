// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_write_values.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cstring>
#include <string>
#include <vector>

#include "qvxcs/ini_file.h"
#include "qvxcs/status.h"

#include "base/results.h"
#include "config/ini_lines.h"
#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/guard_buffer.h"
#include "support/processes.h"
#include "support/small_disk.h"
#include "tests/config/ini_fixed_types.h"

namespace qvx {
namespace {

using test::Exists;
using test::GuardBuffer;
using test::kFixed;
using test::ReadFile;
using test::WriteFile;

constexpr char kPath[] = "/tmp/a.ini";

class IniWriteValues : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(ModuleAttach(), 1); }

  // The text under "x" after the value was written into a new file.
  static std::string TextOf(s32 type, const void* value, s32 size) {
    (void)unlink(kPath);
    EXPECT_EQ(WriteINIPathFileValue("A", "x", type, value, size, kPath, QVX_LOCK_TRY),
              SM_STATUS_SUCCESS);
    const std::string file = ReadFile(kPath);
    const std::string front = "[A]\nx=";
    if (file.size() <= front.size() || file.substr(0, front.size()) != front) {
      return "(" + file + ")";
    }
    return file.substr(front.size(), file.size() - front.size() - 1);
  }

  // The same for a number at an odd address just before an inaccessible page.
  template <typename T>
  static std::string TextOfNumber(s32 type, T value) {
    GuardBuffer<u8> room(sizeof(T));
    memcpy(room.data(), &value, sizeof(T));
    return TextOf(type, room.data(), sizeof(T));
  }

  static u32 StatusOf(s32 type, const void* value, s32 size) {
    (void)unlink(kPath);
    const u32 status = WriteINIPathFileValue("A", "x", type, value, size, kPath, QVX_LOCK_TRY);
    EXPECT_EQ(Exists(kPath), status == SM_STATUS_SUCCESS);
    (void)unlink(kPath);
    return status;
  }
};

TEST_F(IniWriteValues, TextsAreWrittenAsTheyAre) {
  EXPECT_EQ(TextOf(QVX_INI_ASTRING, " a=b; ", 7), " a=b; ");
  EXPECT_EQ(StatusOf(QVX_INI_ASTRING, "abc", 3), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(StatusOf(QVX_INI_ASTRING, "abc", 5), SM_STATUS_DATA_TOO_LARGE);
}

TEST_F(IniWriteValues, OnlyExactly1IsTrue) {
  EXPECT_EQ(TextOfNumber<booln>(QVX_INI_BOOLN, 1), "TRUE");
  EXPECT_EQ(TextOfNumber<booln>(QVX_INI_BOOLN, 0), "FALSE");
  EXPECT_EQ(TextOfNumber<booln>(QVX_INI_BOOLN, 2), "FALSE");
  EXPECT_EQ(TextOfNumber<booln>(QVX_INI_BOOLN, 0x101), "FALSE");
}

TEST_F(IniWriteValues, WholeNumbersAreDecimal) {
  EXPECT_EQ(TextOfNumber<u32>(QVX_INI_U32, 4294967295u), "4294967295");
  EXPECT_EQ(TextOfNumber<u32>(QVX_INI_U32, 0), "0");
  EXPECT_EQ(TextOfNumber<s32>(QVX_INI_S32, -2147483647 - 1), "-2147483648");
  EXPECT_EQ(TextOfNumber<s32>(QVX_INI_S32, 2147483647), "2147483647");
  EXPECT_EQ(TextOfNumber<u64>(QVX_INI_U64, 18446744073709551615u), "18446744073709551615");
  EXPECT_EQ(TextOfNumber<u64>(QVX_INI_U64, 0), "0");
  EXPECT_EQ(TextOfNumber<s64>(QVX_INI_S64, -9223372036854775807 - 1), "-9223372036854775808");
  EXPECT_EQ(TextOfNumber<s64>(QVX_INI_S64, 42), "42");
}

TEST_F(IniWriteValues, DoublesHaveEightPlacesAndNoExponent) {
  EXPECT_EQ(TextOfNumber<d64>(QVX_INI_D64, 1.5), "1.50000000");
  EXPECT_EQ(TextOfNumber<d64>(QVX_INI_D64, -0.000000004), "-0.00000000");
  EXPECT_EQ(TextOfNumber<d64>(QVX_INI_D64, 1e22), "10000000000000000000000.00000000");
  const std::string longest = TextOfNumber<d64>(QVX_INI_D64, -DBL_MAX);
  EXPECT_EQ(longest.substr(0, 18), "-17976931348623157");
  // A sign, 309 digits, the point and eight places.
  EXPECT_EQ(longest.size(), 319u);
}

TEST_F(IniWriteValues, BytesAreTwoUpperCaseDigitsEach) {
  const u8 bytes[] = {0x0A, 0xFF};
  EXPECT_EQ(TextOf(QVX_INI_BINARY, bytes, 2), "0x0A,0xFF");
  EXPECT_EQ(TextOf(QVX_INI_BINARY, bytes, 1), "0x0A");
}

TEST_F(IniWriteValues, UstringsAreTheirBytesWithTheNulUnit) {
  const ustring text[] = {'A', 0};
  EXPECT_EQ(TextOf(QVX_INI_USTRING, text, 4), "0x41,0x00,0x00,0x00");
  const ustring wide[] = {0x20AC, 0};
  EXPECT_EQ(TextOf(QVX_INI_USTRING, wide, 4), "0xAC,0x20,0x00,0x00");
  EXPECT_EQ(TextOf(QVX_INI_USTRING, text + 1, 2), "0x00,0x00");
}

TEST_F(IniWriteValues, UstringSizeMustBeTwiceTheLengthPlus2) {
  GuardBuffer<ustring> text(3);
  text[0] = 'A';
  text[1] = 'B';
  text[2] = 0;
  for (const s32 size : {4, 5, 2, 1, 0, -1, -4, -2147483647 - 1, 2049, 2147483647}) {
    EXPECT_EQ(StatusOf(QVX_INI_USTRING, text.data(), size), SM_STATUS_DATA_TOO_LARGE) << size;
  }
  const ustring longer[] = {'A', 0, 0, 0};
  EXPECT_EQ(StatusOf(QVX_INI_USTRING, longer, 6), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(StatusOf(QVX_INI_USTRING, text.data(), 6), SM_STATUS_SUCCESS);
}

TEST_F(IniWriteValues, BlocksOutside1To2048BytesAreTooLarge) {
  const std::vector<u8> bytes(2049, 1);
  for (const s32 size : {2049, 2147483647, 0, -1, -2147483647 - 1}) {
    EXPECT_EQ(StatusOf(QVX_INI_BINARY, bytes.data(), size), SM_STATUS_DATA_TOO_LARGE) << size;
  }
}

TEST_F(IniWriteValues, ListsLongerThanAValueAreRefusedNeverCut) {
  const std::vector<u8> bytes(2048, 1);
  // 1,638 bytes are a list of 8,189 characters, 1,639 of 8,194.
  std::string expected;
  for (int at = 0; at < 1638; ++at) {
    expected += "0x01,";
  }
  expected.pop_back();
  EXPECT_EQ(TextOf(QVX_INI_BINARY, bytes.data(), 1638), expected);
  EXPECT_EQ(StatusOf(QVX_INI_BINARY, bytes.data(), 1639), SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(StatusOf(QVX_INI_BINARY, bytes.data(), 2048), SM_STATUS_DATA_TOO_LARGE);
  std::vector<ustring> text(1024, 'A');
  text[1023] = 0;
  EXPECT_EQ(StatusOf(QVX_INI_USTRING, text.data(), 2048), SM_STATUS_DATA_TOO_LARGE);
  text[818] = 0;
  EXPECT_EQ(StatusOf(QVX_INI_USTRING, text.data(), 1638), SM_STATUS_SUCCESS);
}

TEST_F(IniWriteValues, FixedTypesNeedTheirSizeAtLeast) {
  const u64 value = 0;
  for (const auto& each : kFixed) {
    const s32 bytes = static_cast<s32>(each.bytes);
    for (const s32 size : {bytes - 1, 0, -1, -2147483647 - 1}) {
      EXPECT_EQ(StatusOf(each.type, &value, size), SM_STATUS_DATA_TOO_LARGE) << each.type;
    }
    EXPECT_EQ(StatusOf(each.type, &value, bytes), SM_STATUS_SUCCESS) << each.type;
    EXPECT_EQ(StatusOf(each.type, &value, 100), SM_STATUS_SUCCESS) << each.type;
  }
}

TEST_F(IniWriteValues, FixedTypesCannotDelete) {
  for (const auto& each : kFixed) {
    EXPECT_EQ(StatusOf(each.type, nullptr, 0), SM_STATUS_BAD_ARGUMENT) << each.type;
    EXPECT_EQ(StatusOf(each.type, nullptr, 8), SM_STATUS_BAD_ARGUMENT) << each.type;
  }
}

TEST_F(IniWriteValues, TextsBytesAndUstringsDeleteWithANullValue) {
  for (const s32 type : {1, 2, 3}) {
    WriteFile(kPath, "[A]\nx=1\n");
    EXPECT_EQ(WriteINIPathFileValue("A", "x", type, nullptr, 1, kPath, QVX_LOCK_TRY),
              SM_STATUS_DATA_TOO_LARGE);
    EXPECT_EQ(WriteINIPathFileValue("A", "x", type, nullptr, -1, kPath, QVX_LOCK_TRY),
              SM_STATUS_DATA_TOO_LARGE);
    EXPECT_EQ(ReadFile(kPath), "[A]\nx=1\n");
    EXPECT_EQ(WriteINIPathFileValue("A", "x", type, nullptr, 0, kPath, QVX_LOCK_TRY),
              SM_STATUS_SUCCESS);
    EXPECT_EQ(ReadFile(kPath), "[A]\n");
  }
}

TEST_F(IniWriteValues, DeletingBytesOrUstringsLooksAtTheSizeBeforeTheNames) {
  for (const s32 type : {2, 3}) {
    EXPECT_EQ(WriteINIPathFileValue(nullptr, "x", type, nullptr, 1, kPath, QVX_LOCK_TRY),
              SM_STATUS_DATA_TOO_LARGE);
    EXPECT_EQ(WriteINIPathFileValue(nullptr, "x", type, nullptr, 0, kPath, QVX_LOCK_TRY),
              SM_STATUS_BAD_ARGUMENT);
  }
}

TEST_F(IniWriteValues, NamesAreRequiredOfEveryType) {
  const u64 value = 0;
  const std::string longName(256, 'n');
  for (s32 type = 1; type <= 9; ++type) {
    // An empty text, an empty 16-bit text, one byte, or a number.
    const s32 size = type == QVX_INI_ASTRING || type == QVX_INI_BINARY ? 1
                     : type == QVX_INI_USTRING                         ? 2
                                                                       : 8;
    const auto write = [&](const char* section, const char* key, const char* path) {
      return WriteINIPathFileValue(section, key, type, &value, size, path, QVX_LOCK_TRY);
    };
    EXPECT_EQ(write(nullptr, "x", kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(write("A", nullptr, kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(write("A", "x", nullptr), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(write(longName.c_str(), "x", kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(write("A", longName.c_str(), kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(write("A", "x", kPath), SM_STATUS_SUCCESS) << type;
  }
}

TEST_F(IniWriteValues, UnknownTypesAreBadArguments) {
  const u64 value = 0;
  for (const s32 type : {0, 10, -1, 99, 2147483647, -2147483647 - 1}) {
    EXPECT_EQ(StatusOf(type, &value, 8), SM_STATUS_BAD_ARGUMENT) << type;
  }
}

TEST_F(IniWriteValues, LockIsTakenByEveryType) {
  const test::LockHolder holder;
  const u64 value = 0;
  EXPECT_EQ(StatusOf(QVX_INI_ASTRING, "", 1), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(StatusOf(QVX_INI_USTRING, &value, 2), SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(StatusOf(QVX_INI_BINARY, &value, 1), SM_STATUS_LOCK_FAILED);
  for (const auto& each : kFixed) {
    EXPECT_EQ(StatusOf(each.type, &value, 8), SM_STATUS_LOCK_FAILED);
  }
}

TEST_F(IniWriteValues, WithoutMemoryTheStatusIsMinusOne) {
  const u64 value = 0;
  for (s32 type = 2; type <= 9; ++type) {
    const s32 size = type == QVX_INI_USTRING ? 2 : 8;
    const u32 met = test::FailEachAllocation(
        [&] { return WriteINIPathFileValue("A", "x", type, &value, size, kPath, QVX_LOCK_TRY); },
        [](u32 status) {
          EXPECT_EQ(status, kMinusOne);
          EXPECT_FALSE(Exists(kPath));
        });
    EXPECT_GE(met, 3u);
    EXPECT_TRUE(Exists(kPath));
    (void)unlink(kPath);
  }
}

TEST_F(IniWriteValues, BareFileNamesLieInTheProductsDirectory) {
  const u32 value = 12;
  EXPECT_EQ(PXTWriteINIFileValue("A", "x", QVX_INI_U32, &value, 4, "qvxtest.ini", QVX_LOCK_WAIT),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile("/etc/cim/zarn/plinthos/vexilon/qvx/ini/qvxtest.ini"), "[A]\nx=12\n");
  EXPECT_EQ(PXTWriteINIPathFileValue("A", "x", QVX_INI_U32, &value, 4, kPath, QVX_LOCK_WAIT),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(ReadFile(kPath), "[A]\nx=12\n");
}

TEST_F(IniWriteValues, FileNameIsRequired) {
  const u32 value = 12;
  EXPECT_EQ(SUPTIntfWriteINIFileValue("A", "x", QVX_INI_U32, &value, 4, nullptr, QVX_LOCK_TRY),
            SM_STATUS_BAD_ARGUMENT);
}

TEST_F(IniWriteValues, WithoutAnInstallPathTheStatusIsMinusOne) {
  const u32 value = 12;
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(
      SUPTIntfWriteINIFileValue("A", "x", QVX_INI_U32, &value, 4, "qvxtest.ini", QVX_LOCK_TRY),
      kMinusOne);
  EXPECT_FALSE(Exists("/etc/cim/zarn/plinthos/vexilon/qvx/ini/qvxtest.ini"));
}

}  // namespace
}  // namespace qvx
