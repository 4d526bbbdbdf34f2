// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ip_support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <cstring>

#include "qvxcs/ip_address.h"
#include "qvxcs/status.h"

#include "support/processes.h"
#include "support/socket_fault.h"

namespace {

using qvx::test::InChild;
using qvx::test::RefuseFamily;

bool LoopBackIs(const astring* expected) {
  const astring* const text = qvx::GetLoopBack();
  if (expected == nullptr || text == nullptr) return text == expected;
  return strcmp(text, expected) == 0;
}

TEST(IPSupport, IsLoadedOnce) {
  EXPECT_FALSE(qvx::IPSuptLoaded());
  EXPECT_EQ(qvx::LoadIPSupt(), SM_STATUS_SUCCESS);
  EXPECT_TRUE(qvx::IPSuptLoaded());
  EXPECT_EQ(qvx::LoadIPSupt(), SM_STATUS_BAD_ARGUMENT);
  EXPECT_TRUE(qvx::IPSuptLoaded());
}

TEST(IPSupport, UnloadingWhatIsNotLoadedIsABadArgument) {
  EXPECT_EQ(qvx::UnLoadIPSupt(), SM_STATUS_BAD_ARGUMENT);
  EXPECT_FALSE(qvx::IPSuptLoaded());
}

TEST(IPSupport, UnloadingLeavesTheSupportLoaded) {
  ASSERT_EQ(qvx::LoadIPSupt(), SM_STATUS_SUCCESS);
  EXPECT_EQ(qvx::UnLoadIPSupt(), SM_STATUS_SUCCESS);
  EXPECT_TRUE(qvx::IPSuptLoaded());
  EXPECT_EQ(qvx::UnLoadIPSupt(), SM_STATUS_SUCCESS);
  EXPECT_EQ(qvx::LoadIPSupt(), SM_STATUS_BAD_ARGUMENT);
}

TEST(IPSupport, BothFamiliesAreSocketType3) {
  EXPECT_EQ(qvx::GetSockType(), 3U);
  EXPECT_STREQ(qvx::GetLoopBack(), "127.0.0.1");
  EXPECT_EQ(PXTGetSockType(), 3U);
  EXPECT_STREQ(PXTGetLoopBack(), "127.0.0.1");
}

TEST(IPSupport, IPv4AloneIsSocketType1) {
  EXPECT_EQ(InChild([] {
              RefuseFamily(AF_INET6);
              return LoopBackIs("127.0.0.1") ? static_cast<int>(qvx::GetSockType()) : 101;
            }),
            1);
}

TEST(IPSupport, IPv6AloneIsSocketType2WithItsOwnLoopback) {
  EXPECT_EQ(InChild([] {
              RefuseFamily(AF_INET);
              return LoopBackIs("::1") ? static_cast<int>(qvx::GetSockType()) : 101;
            }),
            2);
}

TEST(IPSupport, NeitherFamilyIsSocketType0WithoutLoopback) {
  EXPECT_EQ(InChild([] {
              RefuseFamily(AF_INET);
              RefuseFamily(AF_INET6);
              return LoopBackIs(nullptr) ? static_cast<int>(qvx::GetSockType()) : 101;
            }),
            0);
}

TEST(IPSupport, TheFamiliesAreProbedByStreamSocketsThatAreCloseOnExec) {
  EXPECT_EQ(qvx::GetSockType(), 3U);
  EXPECT_EQ(qvx::test::LastSocketType(), SOCK_STREAM | SOCK_CLOEXEC);
}

TEST(IPSupport, ProbingLeavesNoDescriptorOpen) {
  const int before = fcntl(0, F_DUPFD_CLOEXEC, 3);
  ASSERT_GE(before, 0);
  ASSERT_EQ(close(before), 0);
  EXPECT_EQ(qvx::GetSockType(), 3U);
  const int after = fcntl(0, F_DUPFD_CLOEXEC, 3);
  EXPECT_EQ(after, before);
  (void)close(after);
}

}  // namespace
