// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT
#include "os/ip_support.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "qvxcs/ip_address.h"
#include "qvxcs/status.h"

#include "support/processes.h"

namespace {

using qvx::test::InChild;

// From now on this process gets no socket of the family.
bool RefuseFamily(int family) {
  sock_filter steps[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_socket, 0, 3),
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[0])),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<u32>(family), 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EAFNOSUPPORT),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {static_cast<unsigned short>(std::size(steps)), steps};
  return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
         prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

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
              if (!RefuseFamily(AF_INET6)) return 100;
              return LoopBackIs("127.0.0.1") ? static_cast<int>(qvx::GetSockType()) : 101;
            }),
            1);
}

TEST(IPSupport, IPv6AloneIsSocketType2WithItsOwnLoopback) {
  EXPECT_EQ(InChild([] {
              if (!RefuseFamily(AF_INET)) return 100;
              return LoopBackIs("::1") ? static_cast<int>(qvx::GetSockType()) : 101;
            }),
            2);
}

TEST(IPSupport, NeitherFamilyIsSocketType0WithoutLoopback) {
  EXPECT_EQ(InChild([] {
              if (!RefuseFamily(AF_INET) || !RefuseFamily(AF_INET6)) return 100;
              return LoopBackIs(nullptr) ? static_cast<int>(qvx::GetSockType()) : 101;
            }),
            0);
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
