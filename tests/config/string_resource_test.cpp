// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/string_resource.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/string_resource.h"

#include "os/block_reader.h"
#include "os/descriptor.h"
#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/guard_buffer.h"

namespace qvx {
namespace {

constexpr char kFile[] = "/tmp/resource.txt";

// ASCII text as UTF-16 in little-endian order.
std::string Utf16(const std::string& text) {
  std::string bytes;
  for (const char each : text) {
    bytes += each;
    bytes += '\0';
  }
  return bytes;
}

void WriteResource(const std::string& text) { test::WriteFile(kFile, "\xFF\xFE" + Utf16(text)); }

std::string Narrow(const ustring* units) {
  std::string text;
  for (; *units != 0; ++units) {
    text += static_cast<char>(*units);
  }
  return text;
}

// The text delivered, or "(none)".
std::string Find(u32 stringId, u32* languageId, const char* path = kFile) {
  test::GuardBuffer<ustring> buffer(1024);
  u32 size = 2048;
  const u32 delivered =
      PXTGetUnicodeStringFromIDPathFile(stringId, languageId, path, buffer.data(), &size);
  EXPECT_EQ(size, delivered);
  if (delivered == 0) {
    EXPECT_TRUE(buffer.UntouchedFrom(0));
    return "(none)";
  }
  EXPECT_TRUE(buffer.UntouchedFrom(delivered / 2));
  const std::string text = Narrow(buffer.data());
  EXPECT_EQ(delivered, text.size() * 2 + 2);
  return text;
}

TEST(StringResource, AmericanEnglishIsTheNeutralLanguage) {
  WriteResource("0:1F=Disk full\r\n");
  u32 language = 1033;
  test::GuardBuffer<ustring> buffer(10);
  u32 size = 20;
  EXPECT_EQ(PXTGetUnicodeStringFromIDPathFile(0x1F, &language, kFile, buffer.data(), &size), 20u);
  EXPECT_EQ(Narrow(buffer.data()), "Disk full");
  EXPECT_TRUE(buffer.FrontUntouched());
  EXPECT_EQ(size, 20u);
  EXPECT_EQ(language, 0u);
}

TEST(StringResource, Language437IsTheNeutralOneToo) {
  WriteResource("0:1F=Disk full\r\n409:1F=wrong\r\n1B5:1F=wrong\r\n");
  u32 language = 437;
  EXPECT_EQ(Find(0x1F, &language), "Disk full");
  EXPECT_EQ(language, 0u);
  language = 0x437;
  EXPECT_EQ(Find(0x1E, &language), "(none)");
}

TEST(StringResource, NullLanguageIsTheNeutralOne) {
  WriteResource("40C:1=un\r\n0:1=one\r\n");
  EXPECT_EQ(Find(1, nullptr), "one");
  EXPECT_EQ(Find(2, nullptr), "(none)");
}

TEST(StringResource, LanguageWithItsOwnLineKeepsIt) {
  WriteResource("0:1=one\r\n40C:1=un\r\n");
  u32 language = 0x40C;
  EXPECT_EQ(Find(1, &language), "un");
  EXPECT_EQ(language, 0x40Cu);
}

TEST(StringResource, LanguageWithoutTheLineFallsBackToTheNeutralOne) {
  WriteResource("0:1=one\r\n40C:2=deux\r\n");
  u32 language = 0x40C;
  EXPECT_EQ(Find(1, &language), "one");
  EXPECT_EQ(language, 0u);
}

TEST(StringResource, NothingIsDeliveredWithoutAnyLine) {
  WriteResource("0:1=one\r\n");
  u32 language = 0x40C;
  EXPECT_EQ(Find(2, &language), "(none)");
  EXPECT_EQ(language, 0u);
  WriteResource("");
  EXPECT_EQ(Find(1, nullptr), "(none)");
}

TEST(StringResource, KeyIsUpperCaseHexadecimal) {
  WriteResource("FFFFFFFF:ABCDEF01=far\r\nABC:de=lower\r\n");
  u32 language = 0xFFFFFFFF;
  EXPECT_EQ(Find(0xABCDEF01, &language), "far");
  language = 0xABC;
  EXPECT_EQ(Find(0xDE, &language), "(none)");
}

TEST(StringResource, TextBeginsBehindTheLastEquals) {
  WriteResource("0:5=a=b\r\n0:6=c=\r\n");
  EXPECT_EQ(Find(5, nullptr), "b");
  EXPECT_EQ(Find(6, nullptr), "");
}

TEST(StringResource, KeyMatchesInsideTheKeyOfAnotherLanguage) {
  WriteResource("10:1=other\r\n0:1=own\r\n");
  u32 language = 0;
  EXPECT_EQ(Find(1, &language), "other");
}

TEST(StringResource, LineFeedAloneEndsTheTextButNotTheLine) {
  WriteResource("0:1=one\nrest\r\n0:2=two\rrest\r\n");
  EXPECT_EQ(Find(1, nullptr), "one");
  EXPECT_EQ(Find(2, nullptr), "two");
  WriteResource("0:1=one\n0:2=two\r\n");
  EXPECT_EQ(Find(1, nullptr), "two");
}

TEST(StringResource, LastLineWithoutItsEndLosesItsLastUnit) {
  WriteResource("0:1=one\r\n0:2=two");
  EXPECT_EQ(Find(2, nullptr), "tw");
}

TEST(StringResource, LineIsReadInPiecesOf1024Units) {
  const std::string text(2000, 'x');
  WriteResource("0:1=" + text + "\r\n0:2=two\r\n");
  EXPECT_EQ(Find(1, nullptr), text.substr(0, 1019));
  EXPECT_EQ(Find(2, nullptr), "two");
}

TEST(StringResource, FirstPieceIsFullWithItsLineFeed) {
  // 1,024 units with the pair: the line feed is read again and begins the next piece.
  WriteResource("0:1=" + std::string(1018, 'x') + "\r\n0:2=two\r\n");
  EXPECT_EQ(Find(1, nullptr), std::string(1018, 'x'));
  EXPECT_EQ(Find(2, nullptr), "two");
}

TEST(StringResource, MissingByteOrderMarkIsAMessage) {
  for (const std::string& content :
       {Utf16("0:1=one\r\n"), std::string(), std::string("\xFF"), "\xFE\xFF" + Utf16("0:1=one\r\n"),
        std::string("\xFF\xFF"), std::string("\xFE\xFE")}) {
    test::WriteFile(kFile, content);
    u32 language = 1033;
    EXPECT_EQ(Find(1, &language), "Invalid string resource found");
    EXPECT_EQ(language, 1033u);
  }
}

TEST(StringResource, NullPathIsAMessage) {
  u32 language = 1033;
  EXPECT_EQ(Find(1, &language, nullptr), "Invalid Path File Name");
  EXPECT_EQ(language, 1033u);
}

TEST(StringResource, FileThatCannotBeOpenedIsAMessage) {
  EXPECT_EQ(Find(1, nullptr, "/tmp/missing.txt"), "String resource not found");
  EXPECT_EQ(Find(1, nullptr, "/tmp"), "String resource not found");
  ASSERT_EQ(mkfifo("/tmp/fifo", 0644), 0);
  EXPECT_EQ(Find(1, nullptr, "/tmp/fifo"), "String resource not found");
}

TEST(StringResource, MessagesNeedRoomAsTextsDo) {
  // "Invalid Path File Name" has 22 characters.
  test::GuardBuffer<ustring> buffer(23);
  u32 size = 45;
  EXPECT_EQ(PXTGetUnicodeStringFromIDPathFile(1, nullptr, nullptr, buffer.data(), &size), 0u);
  EXPECT_EQ(size, 0u);
  EXPECT_TRUE(buffer.UntouchedFrom(0));
  size = 46;
  EXPECT_EQ(PXTGetUnicodeStringFromIDPathFile(1, nullptr, nullptr, buffer.data(), &size), 46u);
  EXPECT_EQ(Narrow(buffer.data()), "Invalid Path File Name");
}

TEST(StringResource, SizeQueryAndSmallBufferBothGiveZero) {
  WriteResource("0:1F=Disk full\r\n");
  u32 size = 2048;
  EXPECT_EQ(PXTGetUnicodeStringFromIDPathFile(0x1F, nullptr, kFile, nullptr, &size), 0u);
  EXPECT_EQ(size, 0u);
  test::GuardBuffer<ustring> buffer(9);
  for (const u32 room : {0u, 1u, 18u, 19u}) {
    size = room;
    EXPECT_EQ(PXTGetUnicodeStringFromIDPathFile(0x1F, nullptr, kFile, buffer.data(), &size), 0u);
    EXPECT_EQ(size, 0u);
    EXPECT_TRUE(buffer.UntouchedFrom(0));
  }
}

TEST(StringResource, NullSizeDeliversNothing) {
  WriteResource("0:1F=Disk full\r\n");
  test::GuardBuffer<ustring> buffer(10);
  EXPECT_EQ(PXTGetUnicodeStringFromIDPathFile(0x1F, nullptr, kFile, buffer.data(), nullptr), 0u);
  EXPECT_TRUE(buffer.UntouchedFrom(0));
  EXPECT_EQ(PXTGetUnicodeStringFromIDPathFile(0x1F, nullptr, kFile, nullptr, nullptr), 20u);
  EXPECT_EQ(PXTGetUnicodeStringFromIDPathFile(0x20, nullptr, kFile, nullptr, nullptr), 0u);
}

TEST(StringResource, WithoutTheLineBufferTheResultIsZero) {
  WriteResource("0:1=one\r\n");
  ustring buffer[64];
  u32 size = sizeof(buffer);
  const test::FailNthAllocation fault(1);
  EXPECT_EQ(GetUnicodeStringFromIDPathFile(1, nullptr, kFile, buffer, &size), 0u);
  EXPECT_EQ(size, 0u);
}

TEST(StringResource, WithoutTheKeyBufferTheResultIsAMessage) {
  WriteResource("0:1=one\r\n");
  ustring buffer[64];
  u32 size = sizeof(buffer);
  {
    const test::FailNthAllocation fault(2);
    // 26 characters: "Failed to allocate memory" has 25, and the 0 unit.
    EXPECT_EQ(GetUnicodeStringFromIDPathFile(1, nullptr, kFile, buffer, &size), 52u);
  }
  EXPECT_EQ(Narrow(buffer), "Failed to allocate memory");
  EXPECT_EQ(size, 52u);
}

// The message for a path when the n-th allocation fails; "" when nothing is delivered.
std::string MessageWithoutAllocation(u32 nth, const char* path) {
  ustring buffer[64] = {};
  u32 size = sizeof(buffer);
  {
    const test::FailNthAllocation fault(nth);
    (void)GetUnicodeStringFromIDPathFile(1, nullptr, path, buffer, &size);
  }
  return Narrow(buffer);
}

TEST(StringResource, MemoryForTheLineThenThePathThenTheKeyThenTheFileAreAskedFor) {
  EXPECT_EQ(MessageWithoutAllocation(1, nullptr), "");
  EXPECT_EQ(MessageWithoutAllocation(2, nullptr), "Invalid Path File Name");
  EXPECT_EQ(MessageWithoutAllocation(2, "/tmp/missing.txt"), "Failed to allocate memory");
}

// The descriptor that the next opened file would get: higher by one for each file left open.
int NextDescriptor() {
  const int next = dup(STDIN_FILENO);
  close(next);
  return next;
}

TEST(StringResource, FileIsClosedWhateverItHolds) {
  const int before = NextDescriptor();
  u32 language = 0x40C;
  WriteResource("0:1=one\r\n40C:2=deux\r\n");
  EXPECT_EQ(Find(2, &language), "deux");
  EXPECT_EQ(Find(1, &language), "one");  // read twice
  EXPECT_EQ(Find(3, &language), "(none)");
  test::WriteFile(kFile, "");
  EXPECT_EQ(Find(1, &language), "Invalid string resource found");
  EXPECT_EQ(Find(1, &language, "/tmp"), "String resource not found");
  EXPECT_EQ(NextDescriptor(), before);
}

TEST(StringDestination, CopiesWhatFitsExactly) {
  const ustring text[] = {'a', 'b', 'c', 0};
  test::GuardBuffer<ustring> buffer(4);
  u32 size = 8;
  EXPECT_EQ(SetUnicodeStringToDestination(text, buffer.data(), &size), 8u);
  EXPECT_EQ(size, 8u);
  EXPECT_EQ(Narrow(buffer.data()), "abc");
  EXPECT_TRUE(buffer.FrontUntouched());
}

TEST(StringDestination, TooSmallBufferTellsTheSizeNeeded) {
  const ustring text[] = {'a', 'b', 'c', 0};
  test::GuardBuffer<ustring> buffer(3);
  for (const u32 room : {0u, 6u, 7u}) {
    u32 size = room;
    EXPECT_EQ(SetUnicodeStringToDestination(text, buffer.data(), &size), 0u);
    EXPECT_EQ(size, 8u);
    EXPECT_TRUE(buffer.UntouchedFrom(0));
  }
}

TEST(StringDestination, WithoutBufferTheSizeNeededIsTold) {
  const ustring text[] = {'a', 'b', 'c', 0};
  u32 size = 77;
  EXPECT_EQ(SetUnicodeStringToDestination(text, nullptr, &size), 0u);
  EXPECT_EQ(size, 8u);
  EXPECT_EQ(SetUnicodeStringToDestination(text, nullptr, nullptr), 8u);
}

TEST(StringDestination, BufferWithoutSizeGetsNothing) {
  const ustring text[] = {'a', 0};
  test::GuardBuffer<ustring> buffer(2);
  EXPECT_EQ(SetUnicodeStringToDestination(text, buffer.data(), nullptr), 0u);
  EXPECT_TRUE(buffer.UntouchedFrom(0));
}

TEST(StringDestination, NullTextNeedsNoRoom) {
  test::GuardBuffer<ustring> buffer(2);
  u32 size = 4;
  EXPECT_EQ(SetUnicodeStringToDestination(nullptr, buffer.data(), &size), 0u);
  EXPECT_EQ(size, 0u);
  EXPECT_TRUE(buffer.UntouchedFrom(0));
  EXPECT_EQ(SetUnicodeStringToDestination(nullptr, nullptr, nullptr), 0u);
}

// Reads pieces of `units` and returns each with the position after it.
std::string Pieces(const std::string& text, u32 units) {
  test::WriteFile("/tmp/pieces", text);
  const Descriptor opened = OpenDescriptor("/tmp/pieces", O_RDONLY);
  BlockReader file(opened.Number());
  test::GuardBuffer<ustring> buffer(units);
  std::string pieces;
  while (dc_fgetws(buffer.data(), units, &file) != nullptr) {
    // The whole text is in the block.
    const size_t at = text.size() - file.Unread().size();
    pieces += "[" + Narrow(buffer.data()) + "]" + std::to_string(at / 2);
    if (pieces.size() > 1000) break;
  }
  return pieces;
}

TEST(StringResourceLine, EndsBehindCarriageReturnAndLineFeed) {
  EXPECT_EQ(Pieces(Utf16("ab\r\ncd\r\n"), 8), "[ab\r\n]4[cd\r\n]8");
}

TEST(StringResourceLine, LineFeedThatFillsTheBufferIsReadAgain) {
  EXPECT_EQ(Pieces(Utf16("ab\r\ncd\r\n"), 4), "[ab\r]3[\ncd]6[\r\n]8");
}

TEST(StringResourceLine, PieceWithoutPairRepeatsItsLastUnit) {
  EXPECT_EQ(Pieces(Utf16("abcdef"), 4), "[abc]3[de]5");
  EXPECT_EQ(Pieces(Utf16("a\nb\rc"), 8), "[a\nb\r]4");
}

TEST(StringResourceLine, FewerThanTwoUnitsAreNothing) {
  EXPECT_EQ(Pieces("", 8), "");
  EXPECT_EQ(Pieces(Utf16("a"), 8), "");
  EXPECT_EQ(Pieces(Utf16("a") + "b", 8), "");
  EXPECT_EQ(Pieces(Utf16("abc"), 1), "");
}

TEST(StringResourceLine, ReadingNothingKeepsTheHalfUnitThatIsLeft) {
  test::WriteFile("/tmp/pieces", "c");
  const Descriptor opened = OpenDescriptor("/tmp/pieces", O_RDONLY);
  BlockReader file(opened.Number());
  ustring buffer[8];
  EXPECT_EQ(dc_fgetws(buffer, 8, &file), nullptr);
  EXPECT_EQ(file.Unread(), "c");
}

}  // namespace
}  // namespace qvx
