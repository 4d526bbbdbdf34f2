// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "cli/log_content.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "qvxcs/xml_log.h"

#include "base/heap.h"
#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/refuse_call.h"
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

// The answer's own tags take 42 bytes and its NUL one.
TEST(LogContent, AFileWhoseAnswerIsBeyond32BitsGivesNull) {
  WriteFile(kLog, "");
  constexpr off_t k4GiB = off_t{1} << 32;
  for (const off_t size : {k4GiB - 40, k4GiB - 1, k4GiB, k4GiB * 2, k4GiB + 1}) {
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

TEST(LogContent, WithoutMemoryTheAnswerIsNull) {
  for (const size_t length : {1u, 100u, 10000u, 1000000u}) {
    WriteFile(kLog, std::string(length, 'c'));
    const u32 met = test::FailEachAllocation(
        [] { return HeapArray<astring>(CmdGetXMLLogContent(kLog)); },
        [](const HeapArray<astring>& answer) { EXPECT_EQ(answer, nullptr); });
    EXPECT_GE(met, 2u) << "the buffer and its text";
  }
}

TEST(LogContent, AnOpenWithoutMemoryGivesNull) {
  WriteFile(kLog, "text");
  EXPECT_EQ(test::InChild([] {
              test::RefuseCall(SYS_openat, AT_FDCWD, ENOMEM);
              return CmdGetXMLLogContent(kLog) == nullptr ? 3 : 4;
            }),
            3);
  EXPECT_EQ(test::InChild([] {
              test::RefuseCall(SYS_openat, AT_FDCWD, EMFILE);
              return Taken(CmdGetXMLLogContent(kLog)) == "<SMStatus>-1</SMStatus>" ? 3 : 4;
            }),
            3);
}

TEST(LogContent, TheAnswerTakesLittleMoreThanTheFile) {
  WriteFile(kLog, std::string(1000000, 'c'));
  const HeapArray<astring> answer(CmdGetXMLLogContent(kLog));
  ASSERT_NE(answer, nullptr);
  EXPECT_LE(malloc_usable_size(answer.get()), 1050000u);
}

TEST(LogContent, EachLineIsShownUpToItsFirstNul) {
  EXPECT_EQ(ContentOf(std::string("\0a\nb\n\0\nc\0d\0e\nf\0", 15)),
            "<Content>b\ncf</Content><SMStatus>0</SMStatus>");
  // Lines that cross the blocks in which the file is read.
  std::string file;
  std::string shown;
  for (int i = 0; i < 2000; ++i) {
    const std::string line(static_cast<size_t>(i % 500), 'l');
    file += line + (i % 3 == 0 ? std::string("\0hidden\n", 8) : "\n");
    shown += line + (i % 3 == 0 ? "" : "\n");
  }
  EXPECT_EQ(ContentOf(file), "<Content>" + shown + "</Content><SMStatus>0</SMStatus>");
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
