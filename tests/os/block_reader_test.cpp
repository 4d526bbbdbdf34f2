// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/block_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

#include "os/descriptor.h"
#include "support/alloc_fault.h"
#include "support/files.h"

namespace qvx {
namespace {

constexpr char kPath[] = "/tmp/a";

TEST(BlockReader, GivesTheWholeFileOnce) {
  std::string text;
  for (int line = 0; line < 30000; ++line)
    text += std::to_string(line) + "\n";
  test::WriteFile(kPath, text);
  const Descriptor file = OpenDescriptor(kPath, O_RDONLY);
  BlockReader reader(file.Number());
  std::string found;
  while (reader.ReadOn()) {
    // An odd rest stays unread each time.
    const size_t taken = reader.Unread().size() - 3;
    found += reader.Unread().substr(0, taken);
    reader.Skip(taken);
  }
  found += reader.Unread();
  EXPECT_TRUE(found == text);
  EXPECT_FALSE(reader.Failed());
}

TEST(BlockReader, BeginsWhereTheDescriptorIs) {
  test::WriteFile(kPath, "0123456789");
  const Descriptor file = OpenDescriptor(kPath, O_RDONLY);
  ASSERT_EQ(lseek(file.Number(), 4, SEEK_SET), 4);
  BlockReader reader(file.Number());
  EXPECT_EQ(reader.Unread(), "");
  EXPECT_TRUE(reader.ReadOn());
  EXPECT_EQ(reader.Unread(), "456789");
}

TEST(BlockReader, TheEndIsTheEndForGood) {
  test::WriteFile(kPath, "a");
  const Descriptor file = OpenDescriptor(kPath, O_RDWR | O_APPEND);
  BlockReader reader(file.Number());
  EXPECT_TRUE(reader.ReadOn());
  EXPECT_FALSE(reader.ReadOn());
  ASSERT_EQ(write(file.Number(), "b", 1), 1);
  EXPECT_FALSE(reader.ReadOn());
  EXPECT_EQ(reader.Unread(), "a");
}

TEST(BlockReader, AFailedReadIsNoEnd) {
  // Address 0 of a process cannot be read.
  const Descriptor file = OpenDescriptor("/proc/self/mem", O_RDONLY);
  BlockReader reader(file.Number());
  EXPECT_FALSE(reader.ReadOn());
  EXPECT_TRUE(reader.Failed());
}

TEST(BlockReader, IsEmptyWithoutMemory) {
  const test::FailNthAllocation fault(1);
  const BlockReader reader(STDIN_FILENO);
  EXPECT_FALSE(reader);
}

}  // namespace
}  // namespace qvx
