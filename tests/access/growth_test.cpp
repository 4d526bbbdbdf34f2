// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A process that lives for months: logins and log entries leave nothing behind.
#include <dirent.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "qvxcs/access.h"
#include "qvxcs/command_log.h"
#include "qvxcs/status.h"

#include "frame/module.h"
#include "tests/access/accounts.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QVX_OTHER_HEAP 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QVX_OTHER_HEAP 1
#endif
#endif
#ifndef QVX_OTHER_HEAP
#define QVX_OTHER_HEAP 0
#endif

namespace qvx {
namespace {

constexpr char kTunables[] = "glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0";
constexpr u32 kWarmUp = 200;
constexpr u32 kCalls = 10000;

// The heap counts freed blocks that lie in its caches as used, unless it has none: that is said in
// the environment, before the process begins.
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

// A block is up to 16 bytes larger than asked where the rest would be too small to stand alone, so
// what is kept on purpose weighs a few such pieces more or less. A byte lost by each call would be
// 160,000.
constexpr size_t kRounding = 256;

struct Holdings {
  size_t heap;
  u32 descriptors;
};

Holdings Count() {
  Holdings held = {0, 0};
  DIR* const folder = opendir("/proc/self/fd");
  while (folder != nullptr && readdir(folder) != nullptr) {
    ++held.descriptors;
  }
  (void)closedir(folder);
  held.heap = mallinfo2().uordblks;
  return held;
}

// Calls many times, after a warm-up for what is kept on purpose; gives how often the call failed.
template <typename Call>
void ExpectNoGrowth(Call call) {
  u32 failures = 0;
  for (u32 at = 0; at < kWarmUp; ++at) {
    failures += call(at) ? 0 : 1;
  }
  const Holdings before = Count();
  for (u32 at = 0; at < kCalls; ++at) {
    failures += call(at) ? 0 : 1;
  }
  const Holdings after = Count();
  EXPECT_EQ(failures, 0u);
  EXPECT_LE(after.heap, before.heap + kRounding);
  EXPECT_EQ(after.descriptors, before.descriptors);
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
  if (QVX_OTHER_HEAP != 0) {
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
  // PAM loads its module at each login: what is loaded already costs less.
  void* const module = dlopen("/lib/x86_64-linux-gnu/security/pam_unix.so", RTLD_NOW);
  ExpectNoGrowth(LogsInAsExpected);
  if (module != nullptr) {
    (void)dlclose(module);
  }
}

TEST(Growth, TenThousandLogEntriesLeaveNothingBehind) {
  if (QVX_OTHER_HEAP != 0) {
    GTEST_SKIP() << "a sanitizer's heap is not counted by mallinfo2, and finds leaks itself";
  }
  if (!HasExactHeap()) {
    ASSERT_EQ(RunWithExactHeap(), 0);
    return;
  }
  ASSERT_EQ(ModuleAttach(), 1);
  // The log moves to its backup at its default maximum: this happens, too.
  ExpectNoGrowth([](u32 at) {
    return PXTAppendToCmdLog(static_cast<s32>(5001 + at % 1999), "a user & friends", "SOURCE",
                             "<Parameter name=\"a\" value=\"b\"/>", 4) == SM_STATUS_SUCCESS;
  });
  EXPECT_TRUE(test::Exists("/etc/cim/zarn/plinthos/var/log/vexilon/qvcmdlog.xm_"));
}

}  // namespace
}  // namespace qvx
