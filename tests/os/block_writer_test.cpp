// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/block_writer.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "os/descriptor.h"
#include "support/alloc_fault.h"
#include "support/files.h"

namespace qvx {
namespace {

constexpr char kPath[] = "/tmp/a";
constexpr size_t kBlock = BlockWriter::kBlock;

Descriptor NewFile() { return OpenDescriptor(kPath, O_WRONLY | O_CREAT | O_TRUNC, 0600); }

TEST(BlockWriter, WritesAllOfEveryPiece) {
  const Descriptor file = NewFile();
  BlockWriter writer(file.Number());
  std::string text;
  for (const size_t size : {size_t{0}, size_t{1}, kBlock - 1, kBlock, kBlock + 1, size_t{3},
                            3 * kBlock, kBlock - 3, size_t{3}, size_t{7}}) {
    const std::string piece(size, static_cast<char>('a' + text.size() % 26));
    EXPECT_TRUE(writer.Write(piece));
    text += piece;
  }
  EXPECT_TRUE(writer.Flush());
  EXPECT_TRUE(test::ReadFile(kPath) == text);
}

TEST(BlockWriter, WritesABlockAtATime) {
  const Descriptor file = NewFile();
  BlockWriter writer(file.Number());
  EXPECT_TRUE(writer.Write(std::string(kBlock, 'a')));
  EXPECT_EQ(test::ReadFile(kPath), "");
  EXPECT_TRUE(writer.Write("b"));
  EXPECT_EQ(test::ReadFile(kPath).size(), kBlock);
}

TEST(BlockWriter, TellsOfAWriteThatFailed) {
  const Descriptor full = OpenDescriptor("/dev/full", O_WRONLY);
  BlockWriter writer(full.Number());
  EXPECT_TRUE(writer.Write("a"));
  EXPECT_FALSE(writer.Flush());
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_FALSE(writer.Write(std::string(kBlock + 1, 'a')));
}

TEST(BlockWriter, CopiesTheRestOfAFile) {
  const std::string text = "first\n" + std::string(3 * kBlock, 'x') + "\n";
  test::WriteFile("/tmp/in", text);
  const Descriptor source = OpenDescriptor("/tmp/in", O_RDONLY);
  BlockReader in(source.Number());
  ASSERT_TRUE(in.ReadOn());
  in.Skip(6);
  const Descriptor file = NewFile();
  BlockWriter out(file.Number());
  EXPECT_TRUE(CopyRest(&in, &out));
  EXPECT_TRUE(out.Flush());
  EXPECT_TRUE(test::ReadFile(kPath) == text.substr(6));
}

TEST(BlockWriter, IsEmptyWithoutMemory) {
  const test::FailNthAllocation fault(1);
  const BlockWriter writer(STDOUT_FILENO);
  EXPECT_FALSE(writer);
}

}  // namespace
}  // namespace qvx
