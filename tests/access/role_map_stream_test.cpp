// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "access/role_map_stream.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/files.h"
#include "support/processes.h"

namespace qvx {
namespace {

constexpr char kPath[] = "/tmp/lines";

// The lines read, each followed by "|".
std::wstring LinesOf(const std::string& text) {
  test::WriteFile(kPath, text);
  RoleMapStream stream;
  stream.Open(kPath);
  EXPECT_TRUE(stream.IsOpen());
  std::wstring lines;
  for (std::wstring line; stream.GetLine(line);)
    lines += line + L"|";
  std::wstring rest;
  EXPECT_FALSE(stream.GetLine(rest)) << "a stream that has failed stays so";
  return lines;
}

TEST(RoleMapStream, GivesLinesWithoutTheirNewlines) {
  EXPECT_EQ(LinesOf("a b\n\n\tc\r\n"), L"a b||\tc\r|");
}

TEST(RoleMapStream, ALastLineWithoutNewlineIsNoLine) { EXPECT_EQ(LinesOf("a\nb"), L"a|"); }

TEST(RoleMapStream, AByteAboveSevenBitsEndsTheFile) {
  EXPECT_EQ(LinesOf("a\nb\xC3\xA9\nc\n"), L"a|");
  EXPECT_EQ(LinesOf("a\n\xFF"), L"a|");
}

TEST(RoleMapStream, NulCharactersArePartOfALine) {
  EXPECT_EQ(LinesOf(std::string("a\0b\n", 4)), std::wstring(L"a\0b|", 4));
}

TEST(RoleMapStream, ASecondOpenFailsAndKeepsTheFile) {
  test::WriteFile(kPath, "a\nb\n");
  RoleMapStream stream;
  stream.Open(kPath);
  stream.Open(kPath);
  EXPECT_TRUE(stream.IsOpen());
  std::wstring line;
  EXPECT_FALSE(stream.GetLine(line));
}

TEST(RoleMapStream, AFailedOpenLeavesItClosedAndTheNextWorks) {
  RoleMapStream stream;
  std::wstring line;
  EXPECT_FALSE(stream.GetLine(line)) << "nothing is open yet";
  stream.Open("/tmp/missing");
  EXPECT_FALSE(stream.IsOpen());
  EXPECT_FALSE(stream.GetLine(line));
  test::WriteFile(kPath, "a\n");
  stream.Open(kPath);
  ASSERT_TRUE(stream.GetLine(line));
  EXPECT_EQ(line, L"a");
}

TEST(RoleMapStream, AForkedChildAndItsParentEachReadTheWholeFile) {
  std::string text;
  for (int line = 0; line < 1000; ++line)
    text += "line " + std::to_string(line) + "\n";
  test::WriteFile(kPath, text);
  RoleMapStream stream;
  stream.Open(kPath);
  const auto count = [&stream] {
    int lines = 0;
    for (std::wstring line; stream.GetLine(line); ++lines)
      ASSERT_EQ(line, L"line " + std::to_wstring(lines));
    EXPECT_EQ(lines, 1000);
  };
  EXPECT_EQ(test::InChild([&count] {
              count();
              return testing::Test::HasFailure() ? 1 : 0;
            }),
            0);
  count();
}

TEST(RoleMapStream, ItsDescriptorIsAboveTheStandardOnesAndCloseOnExec) {
  test::WriteFile(kPath, "a\n");
  EXPECT_EQ(test::InChild([] {
              const int next = dup(STDIN_FILENO);
              (void)close(next);
              (void)close(STDIN_FILENO);
              RoleMapStream stream;
              stream.Open(kPath);
              const bool free = fcntl(STDIN_FILENO, F_GETFD) == -1;
              return free && fcntl(next, F_GETFD) == FD_CLOEXEC ? 0 : 1;
            }),
            0);
}

TEST(RoleMapStream, OnlyARegularFileOpens) {
  ASSERT_EQ(mkfifo("/tmp/fifo", 0640), 0);
  for (const char* path : {"/tmp", "/tmp/fifo", "/dev/zero"}) {
    RoleMapStream stream;
    stream.Open(path);
    EXPECT_FALSE(stream.IsOpen()) << path;
  }
}

}  // namespace
}  // namespace qvx
