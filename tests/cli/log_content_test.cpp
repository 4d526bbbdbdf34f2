// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/log_content.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvxcs/xml_log.h"

#include "base/heap.h"
#include "frame/module.h"
#include "support/alloc_fault.h"
#include "xml/log_files.h"

namespace qvx {
namespace {

using test::WriteFile;

constexpr astring kLog[] = "/tmp/log.xml";

std::string Taken(astring* answer) {
  const std::string text = answer == nullptr ? "(null)" : answer;
  FreeMem(answer);
  return text;
}

std::string ContentOf(const std::string& file) {
  WriteFile(kLog, file);
  return Taken(CmdGetXMLLogContent(kLog));
}

TEST(LogContent, FileStandsUnescapedBeforeTheStatus) {
  const std::string log = test::LogOf("<LogEntry>a<b &</LogEntry>");
  EXPECT_EQ(ContentOf(log), "<Content>" + log + "</Content><SMStatus>0</SMStatus>");
}

TEST(LogContent, LinesKeepTheirEnds) {
  for (const char* file : {"x", "\n", "one\r\ntwo\n\nfour", "one\ntwo\n"}) {
    EXPECT_EQ(ContentOf(file),
              std::string("<Content>") + file + "</Content><SMStatus>0</SMStatus>");
  }
}

TEST(LogContent, LargeFileIsShownWhole) {
  std::string file;
  for (int i = 0; i < 20000; ++i) {
    file += std::string(static_cast<size_t>(i % 97), 'l') + "\n";
  }
  EXPECT_EQ(ContentOf(file), "<Content>" + file + "</Content><SMStatus>0</SMStatus>");
}

TEST(LogContent, LineIsShownUpToItsFirstNul) {
  EXPECT_EQ(ContentOf(std::string("ab\0cd\nef", 8)),
            "<Content>abef</Content><SMStatus>0</SMStatus>");
}

TEST(LogContent, NullMissingAndEmptyFilesGiveNull) {
  EXPECT_EQ(CmdGetXMLLogContent(nullptr), nullptr);
  EXPECT_EQ(CmdGetXMLLogContent(""), nullptr);
  EXPECT_EQ(CmdGetXMLLogContent("/tmp/missing.xml"), nullptr);
  EXPECT_EQ(ContentOf(""), "(null)");
}

TEST(LogContent, WhatIsNoRegularFileGivesNull) {
  test::RequireSandbox();
  ASSERT_EQ(mkfifo("/tmp/fifo", 0600), 0);
  EXPECT_EQ(CmdGetXMLLogContent("/tmp"), nullptr);
  EXPECT_EQ(CmdGetXMLLogContent("/tmp/fifo"), nullptr);
  EXPECT_EQ(CmdGetXMLLogContent("/dev/zero"), nullptr);
}

TEST(LogContent, FileOf4GiBGivesNull) {
  WriteFile(kLog, "");
  for (const off_t size : {(off_t{1} << 32) - 1, off_t{1} << 32, off_t{1} << 33}) {
    ASSERT_EQ(truncate(kLog, size), 0);
    EXPECT_EQ(CmdGetXMLLogContent(kLog), nullptr);
  }
}

TEST(LogContent, UnopenableFileGivesTheStatusAlone) {
  WriteFile(kLog, "secret");
  ASSERT_EQ(chmod(kLog, 0600), 0);
  EXPECT_TRUE(test::HoldsForNobody(
      [] { return Taken(CmdGetXMLLogContent(kLog)) == "<SMStatus>-1</SMStatus>"; }));
}

TEST(LogContent, UnopenableEmptyFileGivesNull) {
  WriteFile(kLog, "");
  ASSERT_EQ(chmod(kLog, 0600), 0);
  EXPECT_TRUE(test::HoldsForNobody([] { return CmdGetXMLLogContent(kLog) == nullptr; }));
}

TEST(LogContent, NeedsNeitherAttachNorLock) {
  const test::LockHolder other(kIPCFilePath);
  EXPECT_EQ(ContentOf("text"), "<Content>text</Content><SMStatus>0</SMStatus>");
}

TEST(LogContent, WithoutMemoryTheContentIsWholeOrAbsent) {
  const std::string file(10000, 'c');
  WriteFile(kLog, file);
  const std::string content = "<Content>" + file + "</Content>";
  const u32 met = test::FailEachAllocation(
      [] { return HeapArray<astring>(CmdGetXMLLogContent(kLog)); },
      [&content](const HeapArray<astring>& answer) {
        std::string text = answer ? answer.get() : "(null)";
        if (text.starts_with(content)) {
          text.erase(0, content.size());
        }
        EXPECT_TRUE(text == "(null)" || text.empty() || text == "<SMStatus>0</SMStatus>") << text;
      });
  EXPECT_GE(met, 5u);
}

TEST(LogContent, WithoutMemoryForLineOrTextTheAnswerIsNull) {
  WriteFile(kLog, "text");
  // The buffer's record and text come first, then line and text of the file.
  for (const u32 nth : {1u, 2u, 3u, 4u}) {
    const test::FailNthAllocation fault(nth);
    EXPECT_EQ(CmdGetXMLLogContent(kLog), nullptr) << nth;
  }
}

TEST(LogContent, NothingStaysOpen) {
  WriteFile(kLog, "text");
  const int before = test::OpenDescriptors();
  FreeMem(CmdGetXMLLogContent(kLog));
  EXPECT_EQ(test::OpenDescriptors(), before);
}

TEST(LogContent, ExportedNameGivesTheSame) {
  WriteFile(kLog, "text");
  EXPECT_EQ(Taken(PXTCmdGetXMLLogContent(kLog)), "<Content>text</Content><SMStatus>0</SMStatus>");
}

}  // namespace
}  // namespace qvx
