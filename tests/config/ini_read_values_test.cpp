// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_read_values.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

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

using test::GuardBuffer;
using test::kFixed;
using test::LockHolder;
using test::LockIsFree;
using test::WriteFile;

constexpr char kPath[] = "/tmp/a.ini";

// Writes '[A]' with this text under "x".
void GivenText(const std::string& text) { WriteFile(kPath, "[A]\nx=" + text + "\n"); }

class IniReadValues : public testing::Test {
 protected:
  void SetUp() override { ASSERT_EQ(ModuleAttach(), 1); }

  // The number read from the text; fails unless the size stays as it was given.
  template <typename T>
  static T NumberOf(s32 type, const std::string& text) {
    GivenText(text);
    T value = 77;
    u32 size = 100;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", type, &value, &size, nullptr, 0, kPath, QVX_LOCK_TRY),
              SM_STATUS_SUCCESS)
        << text;
    EXPECT_EQ(size, 100u) << text;
    return value;
  }

  // Reads "x" of section A into exactly `room` bytes; returns the bytes delivered.
  struct Bytes {
    u32 status;
    u32 size;
    std::string bytes;
  };
  static Bytes BytesOf(s32 type, const std::string& text, u32 room) {
    GivenText(text);
    GuardBuffer<u8> value(room);
    u32 size = room;
    const u32 status =
        ReadINIPathFileValue("A", "x", type, value.data(), &size, nullptr, 0, kPath, QVX_LOCK_TRY);
    const u32 stored = size < room ? size : room;
    EXPECT_TRUE(value.UntouchedFrom(stored));
    return {status, size, std::string(reinterpret_cast<char*>(value.data()), stored)};
  }
};

bool Is(u32 status, u32 size, const std::string& bytes, u32 expectedStatus, u32 expectedSize,
        const std::string& expected) {
  return status == expectedStatus && size == expectedSize && bytes == expected;
}

#define EXPECT_BYTES(answer, ...)                                          \
  do {                                                                     \
    const auto given_ = (answer);                                          \
    EXPECT_TRUE(Is(given_.status, given_.size, given_.bytes, __VA_ARGS__)) \
        << given_.status << " " << given_.size;                            \
  } while (false)

TEST_F(IniReadValues, TextsAreDeliveredAsTheyAre) {
  GivenText("abc");
  astring value[4];
  u32 size = 4;
  EXPECT_EQ(ReadINIPathFileValue("A", "x", QVX_INI_ASTRING, value, &size, nullptr, 0, kPath,
                                 QVX_LOCK_TRY),
            SM_STATUS_SUCCESS);
  EXPECT_STREQ(value, "abc");
  EXPECT_EQ(size, 4u);
}

TEST_F(IniReadValues, PortOfTheNetSectionIs8080) {
  WriteFile(kPath, "[Net]\nport=8080\n");
  u32 value = 0;
  u32 size = 4;
  EXPECT_EQ(ReadINIPathFileValue("Net", "port", QVX_INI_U32, &value, &size, nullptr, 0, kPath,
                                 QVX_LOCK_TRY),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(value, 8080u);
  EXPECT_EQ(size, 4u);
  EXPECT_EQ(ReadINIPathFileValue("Net", "Port", QVX_INI_U32, &value, &size, nullptr, 0, kPath,
                                 QVX_LOCK_TRY),
            SM_STATUS_KEY_NOT_FOUND);
}

TEST_F(IniReadValues, NumbersOf32BitsKeepTheLowBits) {
  EXPECT_EQ(NumberOf<u32>(QVX_INI_U32, "0"), 0u);
  EXPECT_EQ(NumberOf<u32>(QVX_INI_U32, "4294967295"), 4294967295u);
  EXPECT_EQ(NumberOf<u32>(QVX_INI_U32, "4294967298"), 2u);
  EXPECT_EQ(NumberOf<u32>(QVX_INI_U32, "-1"), 4294967295u);
  EXPECT_EQ(NumberOf<u32>(QVX_INI_U32, " \t+12 rest"), 12u);
  EXPECT_EQ(NumberOf<s32>(QVX_INI_S32, "-2147483648"), -2147483647 - 1);
  EXPECT_EQ(NumberOf<s32>(QVX_INI_S32, "2147483647"), 2147483647);
  EXPECT_EQ(NumberOf<s32>(QVX_INI_S32, "4294967295"), -1);
  EXPECT_EQ(NumberOf<s32>(QVX_INI_S32, "-4294967298"), -2);
}

TEST_F(IniReadValues, NumbersBeyond64BitsAreRead) {
  const std::string digits(400, '9');
  for (const s32 type : {QVX_INI_U32, QVX_INI_S32, QVX_INI_U64, QVX_INI_S64}) {
    GivenText(digits);
    u64 value = 0;
    u32 size = 8;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", type, &value, &size, nullptr, 0, kPath, QVX_LOCK_TRY),
              SM_STATUS_SUCCESS);
  }
}

TEST_F(IniReadValues, NumbersOf64BitsAreWhole) {
  EXPECT_EQ(NumberOf<u64>(QVX_INI_U64, "18446744073709551615"), 18446744073709551615u);
  EXPECT_EQ(NumberOf<u64>(QVX_INI_U64, " 42x"), 42u);
  EXPECT_EQ(NumberOf<u64>(QVX_INI_U64, "-42"), 0u);
  EXPECT_EQ(NumberOf<s64>(QVX_INI_S64, "-9223372036854775808"), -9223372036854775807 - 1);
  EXPECT_EQ(NumberOf<s64>(QVX_INI_S64, "  -42"), -42);
}

TEST_F(IniReadValues, NumbersOf64BitsWrap) {
  EXPECT_EQ(NumberOf<u64>(QVX_INI_U64, "18446744073709551621"), 5u);
  EXPECT_EQ(NumberOf<s64>(QVX_INI_S64, "18446744073709551621"), 5);
  EXPECT_EQ(NumberOf<s64>(QVX_INI_S64, "9223372036854775808"), -9223372036854775807 - 1);
  EXPECT_EQ(NumberOf<s64>(QVX_INI_S64, "-9223372036854775809"), 9223372036854775807);
}

TEST_F(IniReadValues, IntegersAreDecimalAndEndAtAnotherCharacter) {
  for (const char* text : {"0x10", "0", "+0 1"}) {
    EXPECT_EQ(NumberOf<u32>(QVX_INI_U32, text), 0u) << text;
    EXPECT_EQ(NumberOf<s32>(QVX_INI_S32, text), 0) << text;
    EXPECT_EQ(NumberOf<u64>(QVX_INI_U64, text), 0u) << text;
    EXPECT_EQ(NumberOf<s64>(QVX_INI_S64, text), 0) << text;
  }
  EXPECT_EQ(NumberOf<u64>(QVX_INI_U64, "010"), 10u);
  EXPECT_EQ(NumberOf<s32>(QVX_INI_S32, "1e3"), 1);
  EXPECT_EQ(NumberOf<d64>(QVX_INI_D64, "0x10"), 16.0);
}

TEST_F(IniReadValues, DoublesAreReadAsTheCLibraryReadsThem) {
  EXPECT_EQ(NumberOf<d64>(QVX_INI_D64, "1.50000000"), 1.5);
  EXPECT_EQ(NumberOf<d64>(QVX_INI_D64, "-2.5e3 km"), -2500.0);
}

TEST_F(IniReadValues, TextsThatAreNoNumbersAreNotReported) {
  EXPECT_EQ(NumberOf<u32>(QVX_INI_U32, "eighty"), 0u);
  EXPECT_EQ(NumberOf<s32>(QVX_INI_S32, ""), 0);
  EXPECT_EQ(NumberOf<u64>(QVX_INI_U64, "x1"), 0u);
  EXPECT_EQ(NumberOf<s64>(QVX_INI_S64, "-"), 0);
  EXPECT_EQ(NumberOf<d64>(QVX_INI_D64, "pi"), 0.0);
}

TEST_F(IniReadValues, OnlyTheSpaceEndsTheWordOfABooln) {
  EXPECT_EQ(NumberOf<booln>(QVX_INI_BOOLN, "true yes"), 1);
  EXPECT_EQ(NumberOf<booln>(QVX_INI_BOOLN, "  False"), 0);
  EXPECT_EQ(NumberOf<booln>(QVX_INI_BOOLN, "TRUE"), 1);
  EXPECT_EQ(NumberOf<booln>(QVX_INI_BOOLN, "fAlSe "), 0);
  for (const char* text : {"on", "", "   ", "TRUE\r", "TRUE\t", "TRU", "TRUEST", "1", "\ttrue"}) {
    GivenText(text);
    booln value = 77;
    u32 size = 2;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", QVX_INI_BOOLN, &value, &size, nullptr, 0, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_DATA_TOO_LARGE)
        << text;
    EXPECT_EQ(size, 0u) << text;
    EXPECT_EQ(value, 77) << text;
  }
}

TEST_F(IniReadValues, AnotherWordGivesTheBoolnsDefault) {
  GivenText("on");
  booln value = 77;
  const booln given = 1;
  u32 size = 50;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "x", QVX_INI_BOOLN, &value, &size, &given, 2, kPath, QVX_LOCK_TRY),
      SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(value, 1);
  EXPECT_EQ(size, 2u);
}

TEST_F(IniReadValues, BytesAreHexadecimalNumbersBetweenCommas) {
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "0x01,0xAB", 2), SM_STATUS_SUCCESS, 2, "\x01\xAB");
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "1,aB, 0Xff,\t7", 9), SM_STATUS_SUCCESS, 4,
               "\x01\xAB\xFF\x07");
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "0x41 rest,0x42rest,43", 9), SM_STATUS_SUCCESS, 3, "ABC");
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "+41,-0,0000000042", 9), SM_STATUS_SUCCESS, 3,
               std::string("A\0B", 3));
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "0x41\r", 9), SM_STATUS_SUCCESS, 1, "A");
}

TEST_F(IniReadValues, BytesEndQuietlyAtAPieceThatIsNoNumber) {
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "0x01,zz,0x02", 9), SM_STATUS_SUCCESS, 1, "\x01");
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "0x01,,0x02", 9), SM_STATUS_SUCCESS, 1, "\x01");
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "0x01,", 9), SM_STATUS_SUCCESS, 1, "\x01");
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "", 9), SM_STATUS_SUCCESS, 0, "");
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, " ,0x01", 9), SM_STATUS_SUCCESS, 0, "");
}

TEST_F(IniReadValues, BytesAbove255AreTooLarge) {
  for (const char* text : {"0x01,0x1FF", "100", "-1", "0xFFFFFFFF01", "0x10000000000000001"}) {
    GivenText(text);
    GuardBuffer<u8> value(4);
    u32 size = 4;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", QVX_INI_BINARY, value.data(), &size, nullptr, 0, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_DATA_TOO_LARGE)
        << text;
    EXPECT_EQ(size, 0u) << text;
    size = 4;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", QVX_INI_BINARY, value.data(), &size, "dd", 2, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_DATA_TOO_LARGE)
        << text;
    EXPECT_EQ(size, 2u) << text;
    EXPECT_EQ(memcmp(value.data(), "dd", 2), 0) << text;
  }
}

TEST_F(IniReadValues, BytesBeforeOneTooLargeAreStored) {
  GivenText("41,42,43,100,44");
  const auto left = [](u32 room, const char* standIn) {
    GuardBuffer<u8> value(room);
    u32 size = room;
    const u32 standInSize = static_cast<u32>(strlen(standIn));
    EXPECT_EQ(ReadINIPathFileValue("A", "x", QVX_INI_BINARY, value.data(), &size, standIn,
                                   standInSize, kPath, QVX_LOCK_TRY),
              SM_STATUS_DATA_TOO_LARGE);
    EXPECT_EQ(size, standInSize);
    EXPECT_TRUE(value.UntouchedFrom(room < 3 ? room : 3));
    return std::string(value.data(), value.data() + (room < 3 ? room : 3));
  };
  EXPECT_EQ(left(5, ""), "ABC");
  EXPECT_EQ(left(2, ""), "AB");
  EXPECT_EQ(left(5, "d"), "dBC");
  EXPECT_EQ(left(3, "def"), "def");
}

TEST_F(IniReadValues, ADefaultInTheRoomOutlastsBytesBeforeOneTooLarge) {
  GivenText("41,42,43,100");
  astring value[] = "de..";
  u32 size = 4;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "x", QVX_INI_BINARY, value, &size, value, 2, kPath, QVX_LOCK_TRY),
      SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(size, 2u);
  EXPECT_STREQ(value, "deC.");
}

TEST_F(IniReadValues, BytesThatDoNotFitAreCounted) {
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, "41,42,43", 2), SM_STATUS_BUFFER_TOO_SMALL, 3, "AB");
  // A fault past the end of the room is also found.
  GivenText("41,42,43,100");
  u8 value[2];
  u32 size = 2;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "x", QVX_INI_BINARY, value, &size, nullptr, 0, kPath, QVX_LOCK_TRY),
      SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(size, 0u);
}

TEST_F(IniReadValues, BytesThatDoNotFitGetNoDefault) {
  GivenText("41,42,43");
  GuardBuffer<u8> value(2);
  u32 size = 2;
  EXPECT_EQ(ReadINIPathFileValue("A", "x", QVX_INI_BINARY, value.data(), &size, "dd", 2, kPath,
                                 QVX_LOCK_TRY),
            SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(memcmp(value.data(), "AB", 2), 0);
}

TEST_F(IniReadValues, DefaultBytesAreCutToTheRoom) {
  GivenText("41");
  GuardBuffer<u8> value(2);
  u32 size = 2;
  EXPECT_EQ(ReadINIPathFileValue("A", "y", QVX_INI_BINARY, value.data(), &size, "def", 3, kPath,
                                 QVX_LOCK_TRY),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_EQ(size, 2u);
  EXPECT_EQ(memcmp(value.data(), "de", 2), 0);
  size = 2;
  EXPECT_EQ(ReadINIPathFileValue("A", "y", QVX_INI_BINARY, value.data(), &size, "x", 1, kPath,
                                 QVX_LOCK_TRY),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_EQ(size, 1u);
  EXPECT_EQ(value[0], 'x');
  size = 2;
  EXPECT_EQ(ReadINIPathFileValue("A", "y", QVX_INI_BINARY, value.data(), &size, "x", 0, kPath,
                                 QVX_LOCK_TRY),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_EQ(size, 0u);
}

TEST_F(IniReadValues, LongestLineOfBytesIsRead) {
  // 8,446 characters of text in a line of 8,449: 2,815 pieces of "01," and a last "0".
  std::string text;
  for (int at = 0; at < 2815; ++at) {
    text += "01,";
  }
  text += "0";
  const std::string expected = std::string(2815, '\x01') + std::string(1, '\0');
  EXPECT_BYTES(BytesOf(QVX_INI_BINARY, text, 2816), SM_STATUS_SUCCESS, 2816, expected);
}

TEST_F(IniReadValues, UstringsAreTheirBytes) {
  const std::string bytes("A\0\0\0", 4);
  EXPECT_BYTES(BytesOf(QVX_INI_USTRING, "0x41,0x00,0x00,0x00", 4), SM_STATUS_SUCCESS, 4, bytes);
  EXPECT_BYTES(BytesOf(QVX_INI_USTRING, "0x41,0x00,0x00,0x00", 3), SM_STATUS_BUFFER_TOO_SMALL, 4,
               bytes.substr(0, 3));
}

TEST_F(IniReadValues, UstringDefaultMustBeATextOfItsSize) {
  GivenText("41,00");
  // "AB" and its 0 unit are six bytes, here at an odd address.
  const u8 given[8] = {0, 'A', 0, 'B', 0, 0, 0, 0};
  for (const u32 wrong : {0u, 1u, 2u, 4u, 5u, 7u}) {
    GuardBuffer<u8> value(10);
    u32 size = 10;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", QVX_INI_USTRING, value.data(), &size, given + 1, wrong,
                                   kPath, QVX_LOCK_TRY),
              SM_STATUS_BAD_ARGUMENT)
        << wrong;
    EXPECT_EQ(size, 10u);
    EXPECT_TRUE(value.UntouchedFrom(0));
  }
  u8 value[10];
  u32 size = 10;
  EXPECT_EQ(ReadINIPathFileValue("A", "y", QVX_INI_USTRING, value, &size, given + 1, 6, kPath,
                                 QVX_LOCK_TRY),
            SM_STATUS_KEY_NOT_FOUND);
  EXPECT_EQ(size, 6u);
  EXPECT_EQ(memcmp(value, "A\0B\0\0\0", 6), 0);
}

TEST_F(IniReadValues, FixedTypesRefuseLessThanTheirSize) {
  GivenText("1");
  for (const auto& each : kFixed) {
    GuardBuffer<u8> value(each.bytes - 1);
    const u64 given = 1;
    u32 size = each.bytes - 1;
    EXPECT_EQ(ReadINIPathFileValue("A", "y", each.type, value.data(), &size, &given, 8, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_BAD_ARGUMENT)
        << each.type;
    EXPECT_EQ(size, each.bytes - 1);
    EXPECT_TRUE(value.UntouchedFrom(0));
  }
}

TEST_F(IniReadValues, FixedTypesWriteJustTheirBytesWhereverTheyLie) {
  GivenText("0");
  for (const auto& each : kFixed) {
    if (each.type == QVX_INI_BOOLN) continue;
    // The room ends at an inaccessible page and begins at an odd address.
    GuardBuffer<u8> value(each.bytes + 1);
    u32 size = each.bytes;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", each.type, value.data() + 1, &size, nullptr, 0, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_SUCCESS);
    EXPECT_EQ(memcmp(value.data() + 1, "\0\0\0\0\0\0\0\0", each.bytes), 0) << each.type;
    EXPECT_EQ(value[0], GuardBuffer<u8>::kGuard);
    GuardBuffer<u8> end(each.bytes);
    EXPECT_EQ(ReadINIPathFileValue("A", "x", each.type, end.data(), &size, nullptr, 0, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_SUCCESS);
  }
}

TEST_F(IniReadValues, FixedDefaultsStandInForEveryFailure) {
  GivenText("1");
  const u8 given[9] = {0, 1, 2, 3, 4, 5, 6, 7, 8};
  for (const auto& each : kFixed) {
    GuardBuffer<u8> value(10);
    u32 size = 10;
    EXPECT_EQ(ReadINIPathFileValue("A", "y", each.type, value.data(), &size, given + 1, 8, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_KEY_NOT_FOUND);
    EXPECT_EQ(size, each.bytes);
    EXPECT_EQ(memcmp(value.data(), given + 1, each.bytes), 0);
    EXPECT_TRUE(value.UntouchedFrom(each.bytes));
    size = 10;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", each.type, value.data(), &size, given + 1, each.bytes,
                                   "/tmp/missing", QVX_LOCK_TRY),
              SM_STATUS_FILE_OPEN_FAILED);
    EXPECT_EQ(size, each.bytes);
  }
}

TEST_F(IniReadValues, FixedTypesWithoutAUsableDefaultSetTheSizeTo0) {
  GivenText("1");
  const u64 given = 1;
  for (const auto& each : kFixed) {
    GuardBuffer<u8> value(8);
    u32 size = 8;
    EXPECT_EQ(ReadINIPathFileValue("A", "y", each.type, value.data(), &size, &given, each.bytes - 1,
                                   kPath, QVX_LOCK_TRY),
              SM_STATUS_KEY_NOT_FOUND);
    EXPECT_EQ(size, 0u);
    size = 8;
    EXPECT_EQ(ReadINIPathFileValue("A", "y", each.type, value.data(), &size, nullptr, 8, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_KEY_NOT_FOUND);
    EXPECT_EQ(size, 0u);
    EXPECT_TRUE(value.UntouchedFrom(0));
  }
}

TEST_F(IniReadValues, DefaultMayOverlapTheValue) {
  WriteFile(kPath, "[A]\n");
  for (const s32 type : {3, 7}) {
    for (const u32 at : {0u, 1u, 2u}) {
      u8 bytes[10] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
      u32 size = 8;
      EXPECT_EQ(ReadINIPathFileValue("A", "k", type, bytes + at, &size, bytes + 1, 8, kPath,
                                     QVX_LOCK_TRY),
                SM_STATUS_KEY_NOT_FOUND);
      EXPECT_EQ(size, 8u);
      const u8 expected[] = {1, 2, 3, 4, 5, 6, 7, 8};
      EXPECT_EQ(memcmp(bytes + at, expected, 8), 0) << type << " at " << at;
    }
  }
}

TEST_F(IniReadValues, DefaultMayBeTheValueItself) {
  GivenText("100");
  u8 bytes[4] = {1, 2, 3, 4};
  u32 size = 4;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "x", QVX_INI_BINARY, bytes, &size, bytes, 3, kPath, QVX_LOCK_TRY),
      SM_STATUS_DATA_TOO_LARGE);
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(memcmp(bytes, "\1\2\3\4", 4), 0);
  u32 number = 0x01020304;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "y", QVX_INI_U32, &number, &size, &number, 4, kPath, QVX_LOCK_TRY),
      SM_STATUS_BAD_ARGUMENT);
  size = 4;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "y", QVX_INI_U32, &number, &size, &number, 4, kPath, QVX_LOCK_TRY),
      SM_STATUS_KEY_NOT_FOUND);
  EXPECT_EQ(number, 0x01020304u);
}

TEST_F(IniReadValues, LockedFilesGiveTheTypedDefaults) {
  GivenText("1");
  const LockHolder holder;
  u32 value = 0;
  u32 size = 4;
  const u32 given = 5;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "x", QVX_INI_U32, &value, &size, &given, 4, kPath, QVX_LOCK_TRY),
      SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(value, 5u);
  u8 byte = 0;
  size = 1;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "x", QVX_INI_BINARY, &byte, &size, "d", 1, kPath, QVX_LOCK_TRY),
      SM_STATUS_LOCK_FAILED);
  EXPECT_EQ(byte, 'd');
}

TEST_F(IniReadValues, BadArgumentsComeBeforeTheLock) {
  const LockHolder holder;
  u16 value = 0;
  u32 size = 2;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "x", QVX_INI_U32, &value, &size, nullptr, 0, kPath, QVX_LOCK_TRY),
      SM_STATUS_BAD_ARGUMENT);
}

TEST_F(IniReadValues, TypedReadsNeedEveryPointer) {
  GivenText("1");
  const u64 given = 1;
  for (s32 type = 2; type <= 9; ++type) {
    GuardBuffer<u8> value(8);
    u32 size = 8;
    const auto read = [&](const char* section, const char* key, void* to, u32* room,
                          const char* path) {
      return ReadINIPathFileValue(section, key, type, to, room,
                                  type == QVX_INI_USTRING ? nullptr : &given, 8, path,
                                  QVX_LOCK_TRY);
    };
    EXPECT_EQ(read(nullptr, "y", value.data(), &size, kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(read("A", nullptr, value.data(), &size, kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(read("A", "y", nullptr, &size, kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(read("A", "y", value.data(), nullptr, kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(read("A", "y", value.data(), &size, nullptr), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(size, 8u);
    size = 0;
    EXPECT_EQ(read("A", "y", value.data(), &size, kPath), SM_STATUS_BAD_ARGUMENT) << type;
    EXPECT_EQ(size, 0u);
    EXPECT_TRUE(value.UntouchedFrom(0));
  }
}

TEST_F(IniReadValues, UnknownTypesAreBadArguments) {
  GivenText("1");
  for (const s32 type : {0, 10, -1, 99, 2147483647, -2147483647 - 1}) {
    GuardBuffer<u8> value(8);
    u32 size = 8;
    EXPECT_EQ(ReadINIPathFileValue("A", "x", type, value.data(), &size, "default", 8, kPath,
                                   QVX_LOCK_TRY),
              SM_STATUS_BAD_ARGUMENT);
    EXPECT_EQ(size, 8u);
    EXPECT_TRUE(value.UntouchedFrom(0));
  }
}

TEST_F(IniReadValues, TextOf8192CharactersIsTheLongestForANumber) {
  EXPECT_EQ(NumberOf<u32>(QVX_INI_U32, std::string(8190, ' ') + "12"), 12u);
  GivenText(std::string(8191, ' ') + "12");
  u32 value = 77;
  u32 size = 4;
  const u32 given = 5;
  EXPECT_EQ(
      ReadINIPathFileValue("A", "x", QVX_INI_U32, &value, &size, &given, 4, kPath, QVX_LOCK_TRY),
      SM_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(value, 5u);
}

TEST_F(IniReadValues, WithoutMemoryTypedReadsGiveTheirDefaults) {
  GivenText("1");
  for (s32 type = 3; type <= 9; ++type) {
    u64 value = 0;
    u32 size = 0;
    const u64 given = 0x0808080808080808;
    const u32 met = test::FailEachAllocation(
        [&] {
          size = 8;
          return ReadINIPathFileValue("A", "x", type, &value, &size, &given, 8, kPath,
                                      QVX_LOCK_TRY);
        },
        [&](u32 status) {
          EXPECT_EQ(status, kMinusOne);
          EXPECT_NE(size, 0u);
          EXPECT_EQ(memcmp(&value, &given, size), 0);
          EXPECT_TRUE(LockIsFree());
        });
    EXPECT_EQ(met, 2u) << type;
  }
}

TEST_F(IniReadValues, BareFileNamesLieInTheProductsDirectory) {
  WriteFile("/etc/cim/zarn/plinthos/vexilon/qvx/ini/qvxtest.ini", "[A]\nx=12\n");
  u32 value = 0;
  u32 size = 4;
  EXPECT_EQ(PXTReadINIFileValue("A", "x", QVX_INI_U32, &value, &size, nullptr, 0, "qvxtest.ini",
                                QVX_LOCK_WAIT),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(value, 12u);
  value = 0;
  EXPECT_EQ(
      PXTReadINIPathFileValue("A", "x", QVX_INI_U32, &value, &size, nullptr, 0,
                              "/etc/cim/zarn/plinthos/vexilon/qvx/ini/qvxtest.ini", QVX_LOCK_WAIT),
      SM_STATUS_SUCCESS);
  EXPECT_EQ(value, 12u);
}

TEST_F(IniReadValues, FileNameIsCutWhereThePathHas255Characters) {
  // The directory has 40 characters, which leaves 215.
  const std::string directory = "/etc/cim/zarn/plinthos/vexilon//qvx/ini/";
  ASSERT_EQ(directory.size(), 40u);
  const std::string name(215, 'n');
  WriteFile(directory + name, "[A]\nx=12\n");
  astring path[256];
  EXPECT_EQ(ProductIniFilePath((name + "more").c_str(), path), SM_STATUS_SUCCESS);
  EXPECT_EQ(std::string(path), directory + name);
  u32 value = 0;
  u32 size = 4;
  EXPECT_EQ(SUPTIntfReadINIFileValue("A", "x", QVX_INI_U32, &value, &size, nullptr, 0,
                                     (name + "more").c_str(), QVX_LOCK_TRY),
            SM_STATUS_SUCCESS);
  EXPECT_EQ(value, 12u);
}

TEST_F(IniReadValues, FileNameIsRequired) {
  u32 value = 77;
  u32 size = 4;
  EXPECT_EQ(SUPTIntfReadINIFileValue("A", "x", QVX_INI_U32, &value, &size, &value, 4, nullptr,
                                     QVX_LOCK_TRY),
            SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(size, 4u);
}

TEST_F(IniReadValues, WithoutAnInstallPathTheStatusIsMinusOne) {
  u32 value = 77;
  u32 size = 4;
  const u32 given = 5;
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(SUPTIntfReadINIFileValue("A", "x", QVX_INI_U32, &value, &size, &given, 4, "qvxtest.ini",
                                     QVX_LOCK_TRY),
            kMinusOne);
  EXPECT_EQ(value, 77u);
  EXPECT_EQ(size, 4u);
}

}  // namespace
}  // namespace qvx
