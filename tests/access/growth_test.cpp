// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A process that runs for months: logins and log entries leak nothing.
#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "qvxcs/access.h"
#include "qvxcs/command_log.h"
#include "qvxcs/status.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "support/sanitizers.h"
#include "tests/access/accounts.h"

namespace qvx {
namespace {

constexpr char kTunables[] = "glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0";
constexpr u32 kWarmUp = 200;
constexpr u32 kWindow = 200;
constexpr u32 kCalls = 10000;

// The heap counts freed blocks in its caches as used, unless caches are off. The environment turns
// them off before the process starts.
bool HasExactHeap() {
  const char* const tunables = getenv("GLIBC_TUNABLES");
  return tunables != nullptr && std::string(tunables) == kTunables;
}

// The test that runs now, in a process with an exact heap.
int RunWithExactHeap() {
  const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
  const std::string filter =
      std::string("--gtest_filter=") + test->test_suite_name() + "." + test->name();
  const pid_t child = fork();
  if (child == 0) {
    (void)setenv("GLIBC_TUNABLES", kTunables, 1);
    (void)execl("/proc/self/exe", "growth", filter.c_str(), "--gtest_output=", nullptr);
    _exit(127);
  }
  int status = 0;
  return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status)
                                                                               : -1;
}

u32 OpenDescriptors() {
  u32 count = 0;
  DIR* const folder = opendir("/proc/self/fd");
  while (folder != nullptr && readdir(folder) != nullptr) {
    ++count;
  }
  (void)closedir(folder);
  return count;
}

// The least heap use seen after any of some calls. A block is up to 16 bytes larger than requested
// where the remainder would be too small for a separate block. What PAM keeps on purpose may
// therefore be a few such pieces larger after one call than after another; the minimum is without
// them.
template <typename Call>
size_t LeastHeap(u32 calls, Call call, u32* failures) {
  size_t least = SIZE_MAX;
  for (u32 at = 0; at < calls; ++at) {
    *failures += call(at) ? 0 : 1;
    least = std::min(least, mallinfo2().uordblks);
  }
  return least;
}

// Calls many times, after a warm-up for what is kept on purpose: heap and descriptors are exactly
// the same after the first of the calls and after the last.
template <typename Call>
void ExpectNoGrowth(Call call) {
  u32 failures = 0;
  (void)LeastHeap(kWarmUp, call, &failures);
  const size_t heap = LeastHeap(kWindow, call, &failures);
  const u32 descriptors = OpenDescriptors();
  (void)LeastHeap(kCalls - 2 * kWindow, call, &failures);
  EXPECT_EQ(LeastHeap(kWindow, call, &failures), heap);
  EXPECT_EQ(OpenDescriptors(), descriptors);
  EXPECT_EQ(failures, 0u);
}

bool LogsInAsExpected(u32 at) {
  const ustring user[] = {'a', 'l', 'i', 'c', 'e', 0};
  ustring password[] = {'r', 'i', 'g', 'h', 't', 0};
  const bool right = at % 2 == 0;
  password[0] = right ? 'r' : 'n';
  const u32 rights = PXTAuthenticateUser(nullptr, user, password);
  return rights == (right ? 1u : 0u) && password[0] == 0 && password[4] == 0;
}

TEST(Growth, TenThousandLoginsLeaveNothingBehind) {
  if (QVX_SANITIZED != 0) {
    GTEST_SKIP() << "a sanitizer's heap is not counted by mallinfo2, and finds leaks itself";
  }
  if (!HasExactHeap()) {
    ASSERT_EQ(RunWithExactHeap(), 0);
    return;
  }
  test::OnlyRoot();
  test::AddGroup("users", 7100);
  test::AddUser("alice", 7001, 7100, test::Hash("right"));
  test::UnixPamService("qvauth");
  test::WritePamService("other", "auth required pam_deny.so\naccount required pam_deny.so\n");
  ASSERT_EQ(ModuleAttach(), 1);
  // PAM loads its module at each login: loading is cheaper when it is already loaded.
  void* const module = dlopen("/lib/x86_64-linux-gnu/security/pam_unix.so", RTLD_NOW);
  ExpectNoGrowth(LogsInAsExpected);
  if (module != nullptr) {
    (void)dlclose(module);
  }
}

TEST(Growth, TenThousandLogEntriesLeaveNothingBehind) {
  if (QVX_SANITIZED != 0) {
    GTEST_SKIP() << "a sanitizer's heap is not counted by mallinfo2, and finds leaks itself";
  }
  if (!HasExactHeap()) {
    ASSERT_EQ(RunWithExactHeap(), 0);
    return;
  }
  ASSERT_EQ(ModuleAttach(), 1);
  // The log moves to its backup at its default maximum size, and that happens here.
  ExpectNoGrowth([](u32 at) {
    return PXTAppendToCmdLog(static_cast<s32>(5001 + at % 1999), "a user & friends", "SOURCE",
                             "<Parameter name=\"a\" value=\"b\"/>",
                             QVX_LOG_INFORMATION) == SM_STATUS_SUCCESS;
  });
  EXPECT_TRUE(test::Exists("/etc/cim/zarn/plinthos/var/log/vexilon/qvcmdlog.xm_"));
}

}  // namespace
}  // namespace qvx
