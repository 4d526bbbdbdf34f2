// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/kept_descriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <utility>

#include "support/files.h"

namespace qvx {
namespace {

constexpr char kOurs[] = "/tmp/ours";
constexpr char kHosts[] = "/tmp/hosts";

class KeptDescriptorTest : public testing::Test {
 protected:
  void SetUp() override {
    test::WriteFile(kOurs, "ours");
    test::WriteFile(kHosts, "the host's");
  }
};

KeptDescriptor Keep(const char* path) { return KeptDescriptor(OpenDescriptor(path, O_RDONLY)); }

bool IsOpen(int number) { return fcntl(number, F_GETFD) != -1; }

TEST_F(KeptDescriptorTest, IsKnownByItsNumberUntilItGoes) {
  int number = -1;
  {
    const KeptDescriptor kept = Keep(kOurs);
    ASSERT_TRUE(kept);
    number = kept.Number();
    EXPECT_TRUE(IsKeptDescriptor(number));
    EXPECT_FALSE(IsKeptDescriptor(number + 1));
    EXPECT_TRUE(kept.IsOurs());
  }
  EXPECT_FALSE(IsKeptDescriptor(number));
  EXPECT_FALSE(IsOpen(number));
}

TEST_F(KeptDescriptorTest, AnAssignedOneIsKeptAndTheOldOneGoes) {
  KeptDescriptor kept = Keep(kOurs);
  const int old = kept.Number();
  kept = Keep(kHosts);
  EXPECT_NE(kept.Number(), old);
  EXPECT_TRUE(IsKeptDescriptor(kept.Number()));
  EXPECT_FALSE(IsKeptDescriptor(old));
  EXPECT_FALSE(IsOpen(old));
}

TEST_F(KeptDescriptorTest, OnlyARegularFileIsKept) {
  const int before = dup(STDIN_FILENO);
  (void)close(before);
  EXPECT_FALSE(Keep("/tmp"));
  EXPECT_FALSE(Keep("/tmp/missing"));
  EXPECT_FALSE(IsKeptDescriptor(before));
  EXPECT_FALSE(IsOpen(before)) << "what is not kept is closed";
}

TEST_F(KeptDescriptorTest, AFileOfTheHostsUnderTheSameNumberIsNeitherOursNorClosed) {
  int number = -1;
  {
    const KeptDescriptor kept = Keep(kOurs);
    number = kept.Number();
    (void)close(number);
    EXPECT_FALSE(kept.IsOurs());
    ASSERT_EQ(open(kHosts, O_RDONLY | O_CLOEXEC), number);
    EXPECT_FALSE(kept.IsOurs());
  }
  EXPECT_TRUE(IsOpen(number));
}

TEST_F(KeptDescriptorTest, NumbersBeyondTheTableAreNeverAskedFor) {
  EXPECT_FALSE(IsKeptDescriptor(256));
  EXPECT_FALSE(IsKeptDescriptor(1 << 30));
}

}  // namespace
}  // namespace qvx
