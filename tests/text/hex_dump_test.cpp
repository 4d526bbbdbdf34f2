// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "text/hex_dump.h"

#include <gtest/gtest.h>

#include <string>

#include "support/alloc_fault.h"
#include "support/guard_buffer.h"
#include "text/grow_string.h"

namespace qvx {
namespace {

using test::FailNthAllocation;
using test::GuardBuffer;

// A record that is freed with the test; its text as 8-bit characters.
class Record {
 public:
  Record() { EXPECT_NE(SSUStrAlloc(&record_, 16), nullptr); }
  ~Record() { SSUStrFree(&record_); }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;

  SSUStr* get() { return &record_; }
  [[nodiscard]] std::string Text() const {
    std::string text;
    for (u32 i = 0; i < record_.length; ++i) {
      text.push_back(static_cast<char>(record_.text[i]));
    }
    return text;
  }

 private:
  SSUStr record_ = {};
};

std::string DumpOf(const std::string& bytes, u32 base) {
  GuardBuffer<u8> block(bytes.size());
  memcpy(block.data(), bytes.data(), bytes.size());
  Record record;
  EXPECT_EQ(BufToUStr(record.get(), block.data(), static_cast<u32>(bytes.size()), base), 0);
  return record.Text();
}

TEST(HexDump, TwentyBytesAreALineOfSixteenAndALineOfFour) {
  EXPECT_EQ(DumpOf("ABCDEFGHIJKLMNOPQRST", 0x1000),
            "0x00001000: 41 42 43 44:45 46 47 48:49 4A 4B 4C:4D 4E 4F 50    ABCDEFGHIJKLMNOP \r\n"
            "0x00001010: 51 52 53 54" +
                std::string(40, ' ') + "QRST" + std::string(13, ' ') + "\r\n");
}

TEST(HexDump, LinesAreEightyColumnsBeforeTheLineEnd) {
  EXPECT_EQ(DumpOf("A", 0),
            "0x00000000: 41" + std::string(49, ' ') + "A" + std::string(16, ' ') + "\r\n");
  EXPECT_EQ(DumpOf("A", 0).size(), 82u);
  EXPECT_EQ(DumpOf(std::string(16, 'A'), 0).size(), 82u);
  EXPECT_EQ(DumpOf(std::string(17, 'A'), 0).size(), 164u);
}

TEST(HexDump, ColonFollowsEveryFourthByteOnlyWhereAnotherFollows) {
  EXPECT_EQ(DumpOf("AAAA", 0).substr(12, 14), "41 41 41 41   ");
  EXPECT_EQ(DumpOf("AAAAA", 0).substr(12, 14), "41 41 41 41:41");
  EXPECT_EQ(DumpOf("AAAAAAAA", 0).substr(24, 14), "41 41 41 41   ");
  EXPECT_EQ(DumpOf("AAAAAAAAA", 0).substr(24, 14), "41 41 41 41:41");
  EXPECT_EQ(DumpOf(std::string(12, 'A'), 0).substr(36, 14), "41 41 41 41   ");
  EXPECT_EQ(DumpOf(std::string(13, 'A'), 0).substr(36, 14), "41 41 41 41:41");
  EXPECT_EQ(DumpOf(std::string(16, 'A'), 0).substr(48, 15), "41 41 41 41    ");
}

TEST(HexDump, BytesAboveLowerCaseZShowAsFullStops) {
  EXPECT_EQ(DumpOf("yz{|}~\x7F", 0).substr(63, 7), "yz.....");
}

TEST(HexDump, ControlBytesAndHighBytesShowAsFullStops) {
  EXPECT_EQ(DumpOf(std::string("\0\x1F !\x80\xFF", 6), 0), "0x00000000: 00 1F 20 21:80 FF" +
                                                               std::string(34, ' ') + ".. !.." +
                                                               std::string(11, ' ') + "\r\n");
}

TEST(HexDump, AddressesWrapAt32Bits) {
  const std::string dump = DumpOf(std::string(17, 'A'), 0xFFFFFFF0);
  EXPECT_EQ(dump.substr(0, 12), "0xFFFFFFF0: ");
  EXPECT_EQ(dump.substr(82, 12), "0x00000000: ");
}

TEST(HexDump, DumpIsAppendedBehindTheText) {
  Record record;
  ASSERT_NE(SSUStrCatAStr(record.get(), "before:"), nullptr);
  EXPECT_EQ(BufToUStr(record.get(), "A", 1, 0), 0);
  EXPECT_EQ(record.Text().substr(0, 21), "before:0x00000000: 41");
}

TEST(HexDump, NothingToDumpIsZero) {
  Record record;
  EXPECT_EQ(BufToUStr(record.get(), "A", 0, 0), 0);
  EXPECT_EQ(BufToUStr(record.get(), nullptr, 5, 0), 0);
  EXPECT_EQ(record.Text(), "");
  SSUStr freed = {};
  EXPECT_EQ(BufToUStr(&freed, "A", 0, 0), 0);
  EXPECT_EQ(BufToUStr(&freed, nullptr, 1, 0), 0);
}

TEST(HexDump, RecordWithoutTextIsMinusOne) {
  EXPECT_EQ(BufToUStr(nullptr, "A", 1, 0), -1);
  EXPECT_EQ(BufToUStr(nullptr, nullptr, 0, 0), -1);
  SSUStr freed = {};
  EXPECT_EQ(BufToUStr(&freed, "A", 1, 0), -1);
}

TEST(HexDump, LineThatCannotBeConvertedEndsTheDump) {
  Record record;
  const std::string bytes(32, 'A');
  s32 result = 0;
  {
    const FailNthAllocation fault(3);  // the first line takes two: its units and the growth
    result = BufToUStr(record.get(), bytes.data(), 32, 0);
  }
  EXPECT_EQ(result, -1);
  EXPECT_EQ(record.Text().size(), 82u);
}

TEST(HexDump, LineForWhichTheRecordCannotGrowIsMissing) {
  Record record;
  s32 result = -1;
  {
    const FailNthAllocation fault(2);
    result = BufToUStr(record.get(), "A", 1, 0);
  }
  EXPECT_EQ(result, 0);
  EXPECT_EQ(record.Text(), "");
}

TEST(HexDump, ExportedCallDumps) {
  Record record;
  EXPECT_EQ(PXTBufToUStr(record.get(), "A", 1, 1), 0);
  EXPECT_EQ(record.Text().substr(0, 14), "0x00000001: 41");
  EXPECT_EQ(PXTBufToUStr(nullptr, "A", 1, 1), -1);
}

}  // namespace
}  // namespace qvx
