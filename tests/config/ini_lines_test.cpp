// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/ini_lines.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "qvxcs/status.h"

#include "os/stdio_file.h"
#include "support/files.h"
#include "support/guard_buffer.h"

namespace qvx {
namespace {

using test::GuardBuffer;
using test::WriteFile;

FilePtr FileOf(const std::string& text) {
  WriteFile("/tmp/a.ini", text);
  return OpenFile("/tmp/a.ini", "r");
}

std::string NextLine(FILE* file) {
  IniLine line;
  const LineRead read = ReadLine(file, &line);
  if (read != LineRead::kLine) {
    return read == LineRead::kEnd ? "(end)" : "(error)";
  }
  EXPECT_EQ(line.text[line.length], '\0');
  return {line.text, line.length};
}

struct Header {
  u32 status;
  std::string name;
};

Header HeaderOf(const std::string& line) {
  GuardBuffer<astring> name(256);
  const u32 status = ParseForSection(line.c_str(), name.data());
  return {status, name.data()};
}

std::string KeyTextOf(const char* line) {
  const IniKey key = KeyOfLine(line);
  return {key.text, key.length};
}

TEST(IniLines, LinesKeepTheirEnds) {
  const FilePtr file = FileOf("a=1\r\n\nlast");
  EXPECT_EQ(NextLine(file.get()), "a=1\r\n");
  EXPECT_EQ(NextLine(file.get()), "\n");
  EXPECT_EQ(NextLine(file.get()), "last");
  EXPECT_EQ(NextLine(file.get()), "(end)");
  EXPECT_EQ(NextLine(file.get()), "(end)");
}

TEST(IniLines, ReadsTake8449Characters) {
  const std::string fits = std::string(8448, 'a') + "\n";
  const std::string longer = std::string(8449, 'b') + "\n";
  const FilePtr file = FileOf(fits + longer + std::string(20000, 'c'));
  EXPECT_EQ(NextLine(file.get()), fits);
  EXPECT_EQ(NextLine(file.get()), std::string(8449, 'b'));
  EXPECT_EQ(NextLine(file.get()), "\n");
  EXPECT_EQ(NextLine(file.get()), std::string(8449, 'c'));
  EXPECT_EQ(NextLine(file.get()), std::string(8449, 'c'));
  EXPECT_EQ(NextLine(file.get()), std::string(3102, 'c'));
  EXPECT_EQ(NextLine(file.get()), "(end)");
}

TEST(IniLines, NulBytesCount) {
  const std::string line("a\0b=\0\n", 6);
  const FilePtr file = FileOf(line + std::string("\0", 1));
  EXPECT_EQ(NextLine(file.get()), line);
  EXPECT_EQ(NextLine(file.get()), std::string("\0", 1));
}

TEST(IniLines, EmptyFileHasNoLine) { EXPECT_EQ(NextLine(FileOf("").get()), "(end)"); }

TEST(IniLines, ReadErrorIsNoEnd) {
  // Address 0 of a process cannot be read.
  const FilePtr file = OpenFile("/proc/self/mem", "r");
  ASSERT_TRUE(file);
  EXPECT_EQ(NextLine(file.get()), "(error)");
}

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
  EXPECT_EQ(ParseForSection(nullptr, name), SM_STATUS_BAD_ARGUMENT);
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
  EXPECT_STREQ(KeyOfLine("a=b=c\n").value, "b=c\n");
  EXPECT_STREQ(KeyOfLine("a=").value, "");
  EXPECT_EQ(KeyOfLine("bare\n").value, nullptr);
}

TEST(IniLines, KeysMatchWholeAndExactly) {
  const IniKey found = KeyOfLine("port=80\n");
  EXPECT_TRUE(IsKey(found, "port"));
  EXPECT_FALSE(IsKey(found, "Port"));
  EXPECT_FALSE(IsKey(found, "por"));
  EXPECT_FALSE(IsKey(found, "ports"));
  EXPECT_FALSE(IsKey(found, "port=80"));
  EXPECT_FALSE(IsKey(found, ""));
  EXPECT_TRUE(IsKey(KeyOfLine("=x"), ""));
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
