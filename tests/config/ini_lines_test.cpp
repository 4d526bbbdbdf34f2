// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_lines.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <string_view>

#include "qvxcs/status.h"

#include "support/guard_buffer.h"

namespace qvx {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using test::GuardBuffer;

struct Header {
  u32 status;
  std::string name;
};

Header HeaderOf(const std::string& line) {
  GuardBuffer<astring> name(256);
  const u32 status = ParseForSection(line, name.data());
  return {status, name.data()};
}

std::string KeyTextOf(const char* line) { return std::string(KeyOfLine(line).text); }

TEST(IniLines, SectionNameStandsBetweenTheBrackets) {
  const struct {
    const char* line;
    u32 status;
    const char* name;
  } cases[] = {
      {"[Net]\n", SM_STATUS_SUCCESS, "Net"},
      {"[Net]", SM_STATUS_SUCCESS, "Net"},
      {" \t [Net]\n", SM_STATUS_SUCCESS, "Net"},
      {"[ Net\t]\n", SM_STATUS_SUCCESS, " Net\t"},
      {"[Net] [Log]; more\n", SM_STATUS_SUCCESS, "Net"},
      {"[[a]\n", SM_STATUS_SUCCESS, "[a"},
      {"[]\n", SM_STATUS_SUCCESS, ""},
      {"[Bad\n", SM_STATUS_BAD_SECTION_HEADER, "Bad"},
      {"[Bad", SM_STATUS_BAD_SECTION_HEADER, "Bad"},
      {"[", SM_STATUS_BAD_SECTION_HEADER, ""},
      {"key=[x]\n", 0xFFFFFFFF, ""},
      {"\r[Net]\n", 0xFFFFFFFF, ""},
      {"", 0xFFFFFFFF, ""},
      {"\n", 0xFFFFFFFF, ""},
  };
  for (const auto& each : cases) {
    const Header header = HeaderOf(each.line);
    EXPECT_EQ(header.status, each.status) << each.line;
    EXPECT_EQ(header.name, each.name) << each.line;
  }
}

TEST(IniLines, SectionNamesAreCutAt255Characters) {
  const std::string longest(255, 'n');
  EXPECT_EQ(HeaderOf("[" + longest + "]\n").name, longest);
  const Header longer = HeaderOf("[" + longest + "more]\n");
  EXPECT_EQ(longer.status, SM_STATUS_SUCCESS);
  EXPECT_EQ(longer.name, longest);
  const Header open = HeaderOf("[" + std::string(8000, 'n') + "\n");
  EXPECT_EQ(open.status, SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_EQ(open.name, longest);
}

TEST(IniLines, ParsingNeedsBothPointers) {
  astring name[256];
  EXPECT_EQ(ParseForSection({}, name), SM_STATUS_BAD_ARGUMENT);
  EXPECT_EQ(ParseForSection("[a]", nullptr), SM_STATUS_BAD_ARGUMENT);
}

TEST(IniLines, CommentsBeginInColumnOne) {
  EXPECT_TRUE(IsComment("# text\n"));
  EXPECT_TRUE(IsComment("; text\n"));
  EXPECT_FALSE(IsComment(" # text\n"));
  EXPECT_FALSE(IsComment("\t;text\n"));
  EXPECT_FALSE(IsComment(""));
}

TEST(IniLines, AnyBracketEndsASection) {
  EXPECT_TRUE(EndsSection("[a]\n"));
  EXPECT_TRUE(EndsSection("\t [open\n"));
  EXPECT_FALSE(EndsSection("a[b]\n"));
  EXPECT_FALSE(EndsSection("\n"));
}

// A line of this many characters and its line end.
std::string LineOf(size_t length) { return std::string(length, 'x') + "\n"; }

TEST(IniLines, TheLinesBeforeAHeaderEndWhereOneMayBegin) {
  const struct {
    std::string text;
    size_t length;
  } rows[] = {
      {"", 0},
      {"k=1\n", 4},
      {"k=1\nl", 4},           // the second line may go on
      {"k=1\n[s]\n", 4},       // before a header
      {"k=1\n \t[s\nl\n", 4},  // closed or not, after blanks
      {"k=[1]\nl=2\n[s]\n", 10},
      {"k=[[1\nl=[", 6},  // the second line may go on
      {"\n\n[", 2},
      {"[", 0},
      {"#[s]\n;[\n\0[s]\n"s, 13},  // comments are no headers
  };
  for (const auto& row : rows) {
    EXPECT_EQ(LinesBeforeHeader(row.text).size(), row.length) << row.text;
  }
}

// A piece has 8,449 characters, the line end counted.
TEST(IniLines, APieceOfALongLineMayBeAHeader) {
  const std::string piece(8449, 'x');
  EXPECT_EQ(LinesBeforeHeader(piece + "[s]\n").size(), 8449u);
  EXPECT_EQ(LinesBeforeHeader("k\n" + piece + piece + "  [s]\n").size(), 2u + 2 * 8449);
  EXPECT_EQ(LinesBeforeHeader(piece + "x[s]\n[t]\n").size(), 8449u + 5);
  EXPECT_EQ(LinesBeforeHeader(LineOf(8448) + "[s]\n").size(), 8449u);
  EXPECT_EQ(LinesBeforeHeader(LineOf(8449) + "[s]\n").size(), 8450u);
  EXPECT_EQ(LinesBeforeHeader(std::string(8448, ' ') + "[s]\n").size(), 0u);
  EXPECT_EQ(LinesBeforeHeader(std::string(8449, ' ') + "[s]\n").size(), 8449u);
  EXPECT_EQ(LinesBeforeHeader("x[" + std::string(8446, ' ')).size(), 0u);
  EXPECT_EQ(LinesBeforeHeader("x[" + std::string(8447, ' ')).size(), 8449u);
  EXPECT_EQ(LinesBeforeHeader(piece + "xx").size(), 8449u);
}

TEST(IniLines, TheSearchForAHeaderEndsAfterItOrBeforeAMalformedOne) {
  constexpr u32 kNotFound = 0xFFFFFFFF;
  const struct {
    std::string text;
    u32 status;
    size_t length;
  } rows[] = {
      {"a=1\n[t]\nb=2\n[s]x\nc=3\n", SM_STATUS_SUCCESS, 17},
      {"[ss]\n[S]\n [s]\n", SM_STATUS_SUCCESS, 14},
      {"[t]\nk\n[s\n[s]\n", SM_STATUS_BAD_SECTION_HEADER, 6},
      {"k\n[t]\nrest", kNotFound, 6},
      {"k\n[s]", kNotFound, 2},  // the line may go on
      {"", kNotFound, 0},
  };
  for (const auto& row : rows) {
    size_t length = 77;
    EXPECT_EQ(SearchForHeader("s", row.text, &length), row.status) << row.text;
    EXPECT_EQ(length, row.length) << row.text;
  }
}

TEST(IniLines, KeyRunsFromTheFirstCharacterToTheFirstEqualsSign) {
  EXPECT_EQ(KeyTextOf("port=80\n"), "port");
  EXPECT_EQ(KeyTextOf(" \tport = 80\n"), "port ");
  EXPECT_EQ(KeyTextOf("a=b=c\n"), "a");
  EXPECT_EQ(KeyTextOf("=x\n"), "");
  EXPECT_EQ(KeyTextOf("bare\n"), "bare");
  EXPECT_EQ(KeyTextOf("bare\r\n"), "bare\r");
  EXPECT_EQ(KeyTextOf("bare"), "bare");
  EXPECT_EQ(KeyTextOf("\n"), "");
}

TEST(IniLines, ValueFollowsTheFirstEqualsSign) {
  EXPECT_EQ(KeyOfLine("a=b=c\n").value, "b=c");
  EXPECT_EQ(KeyOfLine("a=b\r\n").value, "b\r");
  EXPECT_EQ(KeyOfLine("a=b").value, "b");
  EXPECT_EQ(KeyOfLine("a=").value, "");
  EXPECT_TRUE(KeyOfLine("a=").hasValue);
  EXPECT_FALSE(KeyOfLine("bare\n").hasValue);
}

TEST(IniLines, NothingAfterANulByteIsSeen) {
  EXPECT_EQ(KeyOfLine("a=b\0c\n"sv).value, "b");
  EXPECT_EQ(KeyOfLine("a\0=b\n"sv).text, "a");
  EXPECT_FALSE(KeyOfLine("a\0=b\n"sv).hasValue);
  EXPECT_EQ(HeaderOf("[a]\0"s).status, SM_STATUS_SUCCESS);
  EXPECT_EQ(HeaderOf("[a\0]\n"s).status, SM_STATUS_BAD_SECTION_HEADER);
  EXPECT_FALSE(EndsSection("\0[a]\n"sv));
  EXPECT_FALSE(EndsSection(" \0[a]\n"sv));
}

TEST(IniLines, KeysMatchWholeAndExactly) {
  IniKey found;
  EXPECT_TRUE(HasKey("port=80\n", "port", &found));
  EXPECT_EQ(found.value, "80");
  EXPECT_FALSE(HasKey("port=80\n", "Port", &found));
  EXPECT_FALSE(HasKey("port=80\n", "por", &found));
  EXPECT_FALSE(HasKey("port=80\n", "ports", &found));
  EXPECT_FALSE(HasKey("port=80\n", "port=80", &found));
  EXPECT_FALSE(HasKey("port=80=90\n", "port=80", &found));
  EXPECT_FALSE(HasKey("port\n", "port\n", &found));
  EXPECT_FALSE(HasKey(" port=80\n", " port", &found));
  EXPECT_FALSE(HasKey("port=80\n", "", &found));
  EXPECT_TRUE(HasKey("=x", "", &found));
  EXPECT_TRUE(HasKey("bare", "bare", &found));
  EXPECT_FALSE(found.hasValue);
}

TEST(IniLines, UstringsAreMeasuredWithinTheirSize) {
  GuardBuffer<u8> text(6);
  memcpy(text.data(), "A\0B\0\0\0", 6);
  EXPECT_TRUE(IsUstringOfSize(text.data(), 6));
  EXPECT_FALSE(IsUstringOfSize(text.data(), 4));
  EXPECT_FALSE(IsUstringOfSize(text.data(), 5));
  EXPECT_FALSE(IsUstringOfSize(text.data(), 1));
  EXPECT_FALSE(IsUstringOfSize(text.data(), 0));
  EXPECT_TRUE(IsUstringOfSize(text.data() + 4, 2));
  memcpy(text.data(), "A\0\0\0\0\0", 6);
  EXPECT_TRUE(IsUstringOfSize(text.data(), 4));
  EXPECT_FALSE(IsUstringOfSize(text.data(), 6));
}

}  // namespace
}  // namespace qvx
