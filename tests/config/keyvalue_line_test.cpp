// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/keyvalue_line.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <string>
#include <string_view>

#include "support/alloc_fault.h"
#include "support/files.h"
#include "support/guard_buffer.h"

namespace qvx {
namespace {

std::string Cleaned(std::string line) {
  CFGEntryRemoveWhiteSpaceAndDQuotes(line.data());
  return line.c_str();
}

TEST(KeyValueLine, BlanksAroundKeyAndAtTheEndGo) {
  EXPECT_EQ(Cleaned("  log level = \"very high\"  "), "loglevel=very high");
  EXPECT_EQ(Cleaned("a=1"), "a=1");
  EXPECT_EQ(Cleaned("b = \"x y\"\r\n"), "b=x y");
  EXPECT_EQ(Cleaned(" \t\r\na \t\r\nb \t\r\n= \t\r\nc \t\r\nd \t\r\n"), "ab=c \t\r\nd");
}

TEST(KeyValueLine, LineWithoutEqualsIsLeftAsItIs) {
  EXPECT_EQ(Cleaned("  a \"b\" \n"), "  a \"b\" \n");
  EXPECT_EQ(Cleaned(""), "");
  EXPECT_EQ(Cleaned(" "), " ");
}

TEST(KeyValueLine, BlanksBetweenQuotesStay) {
  EXPECT_EQ(Cleaned("\" a b \" = c"), " a b =c");
  EXPECT_EQ(Cleaned("a=\" x \""), "a= x ");
  EXPECT_EQ(Cleaned("a = \" x \"  \" y \" "), "a= x    y ");
}

TEST(KeyValueLine, EqualsBetweenQuotesIsTheFirstAllTheSame) {
  EXPECT_EQ(Cleaned("\"a = b\""), "a = b");
}

TEST(KeyValueLine, OpenQuoteDoesNotKeepTrailingBlanks) { EXPECT_EQ(Cleaned("a=\"x  \n"), "a=x"); }

TEST(KeyValueLine, EveryQuoteGoes) {
  EXPECT_EQ(Cleaned("\"a\"=\"\"x\"y\"\""), "a=xy");
  EXPECT_EQ(Cleaned("=\"\""), "=");
}

TEST(KeyValueLine, OnlyTheFirstEqualsCounts) {
  EXPECT_EQ(Cleaned("a b = c = d"), "ab=c = d");
  EXPECT_EQ(Cleaned("a == b"), "a== b");
  EXPECT_EQ(Cleaned("a=   \n"), "a=");
  EXPECT_EQ(Cleaned(" = "), "=");
}

TEST(KeyValueLine, OtherWhiteSpaceIsNoBlank) {
  EXPECT_EQ(Cleaned("\va\f= \vb\f"), "\va\f=\vb\f");
  EXPECT_EQ(Cleaned("\xA0\xFF=\xA0"), "\xA0\xFF=\xA0");
}

TEST(KeyValueLine, CleaningStaysWithinTheLine) {
  for (const std::string line : {" a = b ", "\"\"\"=", "=", "   =   ", "x"}) {
    test::GuardBuffer<astring> buffer(line.size() + 1);
    memcpy(buffer.data(), line.c_str(), line.size() + 1);
    CFGEntryRemoveWhiteSpaceAndDQuotes(buffer.data());
    EXPECT_TRUE(buffer.FrontUntouched());
    EXPECT_LE(strlen(buffer.data()), line.size());
  }
}

struct Split {
  bool entry;
  std::string key;
  std::string value;
  bool operator==(const Split&) const = default;
};

Split SplitOf(std::string line) {
  const astring* const value = SplitKeyValueLine(line.data());
  return value == nullptr ? Split{false, "", ""} : Split{true, line.c_str(), value};
}

TEST(KeyValueLine, EntryIsSplitAtTheFirstEquals) {
  EXPECT_EQ(SplitOf("a = b = c\n"), (Split{true, "a", "b = c"}));
  EXPECT_EQ(SplitOf("a=\n"), (Split{true, "a", ""}));
  EXPECT_EQ(SplitOf("=b\n"), (Split{true, "", "b"}));
}

TEST(KeyValueLine, CommentsAndLinesWithoutEqualsAreNoEntries) {
  for (const char* line : {"# c=2", ";c=2", "  ; c = 2", "\"#\"c=2", "", "\n", "abc\n"}) {
    EXPECT_EQ(SplitOf(line), (Split{false, "", ""})) << line;
  }
}

TEST(KeyValueLine, CommentMarkBehindTheFirstCharacterIsPartOfTheEntry) {
  EXPECT_EQ(SplitOf("a#b=c;d"), (Split{true, "a#b", "c;d"}));
}

TEST(KeyValueLine, ALineOfAFileIsSplitUpToItsFirstNulByte) {
  test::GuardBuffer<astring> cleaned(8);
  EXPECT_STREQ(SplitKeyValueLine(" a = b\n", cleaned.data()), "b");
  EXPECT_STREQ(cleaned.data(), "a");
  EXPECT_STREQ(SplitKeyValueLine(std::string_view("a=b\0c\n", 6), cleaned.data()), "b");
  EXPECT_EQ(SplitKeyValueLine(std::string_view("a\0=b\n", 5), cleaned.data()), nullptr);
  EXPECT_EQ(SplitKeyValueLine(";a=b\n", cleaned.data()), nullptr);
  EXPECT_EQ(SplitKeyValueLine("a line without an equals sign", cleaned.data()), nullptr);
}

TEST(KeyValueLine, NameIsTakenAsItIsUpTo256Characters) {
  test::GuardBuffer<astring> room(kKeyValuePathRoom);
  auto& path = *reinterpret_cast<astring(*)[kKeyValuePathRoom]>(room.data());
  EXPECT_TRUE(KeyValuePath("a/b", 0, path));
  EXPECT_STREQ(path, "a/b");
  const std::string longest(256, 'n');
  EXPECT_TRUE(KeyValuePath(longest.c_str(), 0, path));
  EXPECT_EQ(path, longest);
  EXPECT_FALSE(KeyValuePath((longest + "n").c_str(), 0, path));
}

TEST(KeyValueLine, InstallRelativeNameIsCutAt255Characters) {
  astring path[kKeyValuePathRoom];
  EXPECT_TRUE(KeyValuePath("qvx/ini/qvx.properties", 1, path));
  EXPECT_STREQ(path, "/etc/cim/zarn/plinthos/vexilon//qvx/ini/qvx.properties");
  const std::string name(300, 'n');
  EXPECT_TRUE(KeyValuePath(name.c_str(), 1, path));
  EXPECT_EQ(path, ("/etc/cim/zarn/plinthos/vexilon//" + name).substr(0, 255));
}

TEST(KeyValueLine, OnlyAnInstallFlagOf1IsOne) {
  astring path[kKeyValuePathRoom];
  for (const u16 flag : {u16{2}, u16{0x101}}) {
    EXPECT_TRUE(KeyValuePath("name", flag, path));
    EXPECT_STREQ(path, "name");
  }
}

TEST(KeyValueLine, InstallRelativeNameNeedsTheIniPath) {
  astring path[kKeyValuePathRoom];
  const test::FailNthAllocation fault(1);
  EXPECT_FALSE(KeyValuePath("name", 1, path));
}

}  // namespace
}  // namespace qvx
