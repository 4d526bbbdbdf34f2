// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace qvx {
namespace {

bool IsOpen(int number) { return fcntl(number, F_GETFD) >= 0; }

TEST(Descriptor, IsClosedWhenItGoes) {
  int number = -1;
  {
    const Descriptor opened = OpenDescriptor("/dev/null", O_RDONLY);
    number = opened.Number();
    ASSERT_TRUE(opened);
    ASSERT_TRUE(IsOpen(number));
  }
  EXPECT_FALSE(IsOpen(number));
}

TEST(Descriptor, StaysThreeOrAboveWithClosedStandardStreams) {
  (void)close(STDIN_FILENO);
  const Descriptor opened = OpenDescriptor("/dev/null", O_RDONLY);
  EXPECT_GE(opened.Number(), 3);
  EXPECT_FALSE(IsOpen(STDIN_FILENO));
  EXPECT_EQ(fcntl(opened.Number(), F_GETFD), FD_CLOEXEC);
}

TEST(Descriptor, TellsWhyItCouldNotBeOpened) {
  const Descriptor opened = OpenDescriptor("/etc/none/none", O_RDONLY);
  EXPECT_FALSE(opened);
  EXPECT_EQ(errno, ENOENT);
}

TEST(Descriptor, MovesWithItsNumber) {
  Descriptor first = OpenDescriptor("/dev/null", O_RDONLY);
  const int number = first.Number();
  Descriptor second = OpenDescriptor("/dev/zero", O_RDONLY);
  const int replaced = second.Number();
  second = std::move(first);
  EXPECT_EQ(second.Number(), number);
  EXPECT_TRUE(IsOpen(number));
  EXPECT_FALSE(IsOpen(replaced));
}

TEST(Descriptor, StaysOpenWhenMovedToItself) {
  Descriptor opened = OpenDescriptor("/dev/null", O_RDONLY);
  const int number = opened.Number();
  Descriptor& same = opened;
  opened = std::move(same);
  EXPECT_EQ(opened.Number(), number);
  EXPECT_TRUE(IsOpen(number));
}

TEST(Descriptor, AFailedCloseIsTold) {
  Descriptor opened = OpenDescriptor("/dev/null", O_RDONLY);
  (void)close(opened.Number());
  EXPECT_FALSE(opened.Close());
  EXPECT_TRUE(opened.Close());
}

}  // namespace
}  // namespace qvx
