// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "config/file_lines.h"

#include <fcntl.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "os/descriptor.h"
#include "support/files.h"

namespace qvx {
namespace {

using test::WriteFile;

// A file of this text, read line by line.
class Lines {
 public:
  explicit Lines(const std::string& text) : Lines(Written(text)) {}
  explicit Lines(Descriptor file) : file_(std::move(file)), reader_(file_.Number()) {}

  std::string Next() {
    std::string_view line;
    const LineRead read = NextLine(&reader_, &line);
    if (read == LineRead::kLine) return std::string(line);
    return read == LineRead::kEnd ? "(end)" : "(error)";
  }

 private:
  static Descriptor Written(const std::string& text) {
    WriteFile("/tmp/a.ini", text);
    return OpenDescriptor("/tmp/a.ini", O_RDONLY);
  }

  Descriptor file_;
  BlockReader reader_;
};

TEST(FileLines, LinesKeepTheirEnds) {
  Lines file("a=1\r\n\nlast");
  EXPECT_EQ(file.Next(), "a=1\r\n");
  EXPECT_EQ(file.Next(), "\n");
  EXPECT_EQ(file.Next(), "last");
  EXPECT_EQ(file.Next(), "(end)");
  EXPECT_EQ(file.Next(), "(end)");
}

TEST(FileLines, ReadsTake8449Characters) {
  const std::string fits = std::string(8448, 'a') + "\n";
  const std::string longer = std::string(8449, 'b') + "\n";
  Lines file(fits + longer + std::string(20000, 'c'));
  EXPECT_EQ(file.Next(), fits);
  EXPECT_EQ(file.Next(), std::string(8449, 'b'));
  EXPECT_EQ(file.Next(), "\n");
  EXPECT_EQ(file.Next(), std::string(8449, 'c'));
  EXPECT_EQ(file.Next(), std::string(8449, 'c'));
  EXPECT_EQ(file.Next(), std::string(3102, 'c'));
  EXPECT_EQ(file.Next(), "(end)");
}

TEST(FileLines, NulBytesCount) {
  const std::string line("a\0b=\0\n", 6);
  Lines file(line + std::string("\0", 1));
  EXPECT_EQ(file.Next(), line);
  EXPECT_EQ(file.Next(), std::string("\0", 1));
}

TEST(FileLines, EmptyFileHasNoLine) { EXPECT_EQ(Lines("").Next(), "(end)"); }

TEST(FileLines, ReadErrorIsNoEnd) {
  // Address 0 of a process cannot be read.
  Lines file(OpenDescriptor("/proc/self/mem", O_RDONLY));
  EXPECT_EQ(file.Next(), "(error)");
}

// Lines that end before, on and after the ends of blocks, and a long one over such an end.
TEST(FileLines, LinesCrossTheEndsOfBlocks) {
  constexpr size_t kBlock = BlockReader::kBlock;
  for (const size_t before : {kBlock - 2, kBlock - 1, kBlock, kBlock + 1}) {
    std::string text;
    while (text.size() + 100 < before)
      text += std::string(62, 'f') + "\n";
    text += std::string(before - text.size() - 1, 'g') + "\n";
    Lines file(text + "key=value\n" + std::string(8000, 'h') + "\n");
    std::string found = file.Next();
    while (found[0] == 'f')
      found = file.Next();
    EXPECT_EQ(found[0], 'g') << before;
    EXPECT_EQ(file.Next(), "key=value\n") << before;
    EXPECT_EQ(file.Next(), std::string(8000, 'h') + "\n") << before;
    EXPECT_EQ(file.Next(), "(end)") << before;
  }
}

}  // namespace
}  // namespace qvx
