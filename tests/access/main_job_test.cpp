// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// A request from its login to its record in the log, without memory at each of its steps, and by
// several threads at once.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "qvxcs/access.h"
#include "qvxcs/command_log.h"
#include "qvxcs/memory.h"
#include "qvxcs/status.h"
#include "qvxcs/transcode.h"
#include "qvxcs/xml_buffer.h"
#include "qvxcs/xml_log.h"

#include "frame/module.h"
#include "support/alloc_fault.h"
#include "support/kill_at_stop.h"
#include "support/processes.h"
#include "tests/access/accounts.h"

#if defined(__SANITIZE_ADDRESS__)
#define QVX_LEAK_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QVX_LEAK_SANITIZER 1
#endif
#endif
#ifdef QVX_LEAK_SANITIZER
#include <sanitizer/lsan_interface.h>
#endif

namespace qvx {
namespace {

[[maybe_unused]] constexpr char kTunables[] = "glibc.malloc.tcache_count=0:glibc.malloc.mxfast=0";
constexpr s32 kEscapedText = 26;
constexpr char kPassword[] = "Wonder-1and";
constexpr size_t kLength = sizeof kPassword - 1;

struct Outcome {
  bool wiped = false;     // the caller's password after the login
  u32 process = 0;        // rights of the process
  u32 rights = 0;         // rights of the login
  bool answered = false;  // an answer was built
  u32 recorded = 0;       // status of the log entry
};

bool BuildAnswer(const char* login) {
  void* const answer = PXTXAllocBuf(16, 1);
  if (answer == nullptr) {
    return false;
  }
  const bool built =
      PXTXBufCatBeginNode(answer, "Answer", "command=\"login\"") == SM_STATUS_SUCCESS &&
      PXTXBufCatNode(answer, "User", nullptr, kEscapedText, login) == SM_STATUS_SUCCESS &&
      PXTXBufCatEndNode(answer, "Answer") == SM_STATUS_SUCCESS;
  astring* const text = PXTXFreeBufGetContent(answer);
  const bool whole = text != nullptr;
  PXTXFreeBufContent(text);
  return built && whole;
}

Outcome Request() {
  Outcome outcome;
  (void)PXTOpenRolemapFile();
  outcome.process = PXTGetRightsUsingRolemap();
  const ustring user[] = {'a', 'l', 'i', 'c', 'e', 0};
  ustring password[kLength + 1] = {};
  std::copy_n(kPassword, kLength, password);
  outcome.rights = PXTAuthenticateUser(nullptr, user, password);
  outcome.wiped =
      std::all_of(std::begin(password), std::end(password), [](ustring unit) { return unit == 0; });
  outcome.answered = BuildAnswer("alice & friends");
  outcome.recorded = PXTAppendToCmdLog(5001, "alice", "REQUEST", "text", 4);
  astring* const path = PXTGetCmdLogPathFileName();
  PXTFreeMem(PXTCmdGetXMLLogContent(path));
  PXTFreeMem(path);
  return outcome;
}

bool IsGranted(const Outcome& outcome) {
  return outcome.process == 0x7 && outcome.rights == 0x3 && outcome.answered &&
         outcome.recorded == SM_STATUS_SUCCESS;
}

// Each new time makes the next request read the role map again.
void TouchRoleMap(time_t time) { test::SetTime(test::kRoleMap, time); }

class MainJob : public ::testing::Test {
 protected:
  void SetUp() override {
    test::OnlyRoot();
    test::AddGroup("users", 7100);
    test::AddUser("alice", 7001, 7100, test::Hash(kPassword));
    test::AddUser("bob", 7002, 7100, test::Hash("Builder-2"));
    test::UnixPamService("qvauth");
    test::WriteRoleMap("root * administrator\nalice * poweruser\nbob * user\n");
    ASSERT_EQ(ModuleAttach(), 1);
  }
};

bool FoundALeak() {
#ifdef QVX_LEAK_SANITIZER
  return __lsan_do_recoverable_leak_check() != 0;
#else
  return false;
#endif
}

// What the child found wrong, as bits of its exit status.
enum Finding { kNotWiped = 1, kRaised = 2, kLockHeld = 4, kLeaked = 8, kLost = 16, kFinished = 64 };

int Judge(const Outcome& outcome) {
  int findings = outcome.wiped ? 0 : kNotWiped;
  const bool withinRights =
      (outcome.process == 0x7 || outcome.process == 0x0) && outcome.rights <= 3;
  findings |= withinRights ? 0 : kRaised;
  return findings | (test::NobodyHoldsTheLock() ? 0 : kLockHeld);
}

// A block that comes back may be a few bytes larger than the one that was freed; a leak of the
// smallest block shows in this many faults.
constexpr u32 kFaults = 4;
constexpr size_t kSmallestLeak = kFaults * 32;

// A request with its n-th allocation failing.
int RequestWithFault(u32 nth, Outcome* outcome) {
  bool fired = false;
  {
    const test::FailNthAllocation fault(nth);
    *outcome = Request();
    fired = test::FailNthAllocation::Fired();
  }
  return Judge(*outcome) | (fired ? 0 : kFinished);
}

// In a process that has made no request, or none since the role map changed.
int FirstRequestWithFault(u32 nth) {
  Outcome outcome;
  const int findings = RequestWithFault(nth, &outcome);
  if ((findings & kFinished) != 0) {
    return findings | (IsGranted(outcome) ? 0 : kLost);
  }
  return findings | Judge(Request()) | (FoundALeak() ? kLeaked : 0);
}

// In a process that has served many; each request behind a fault has all its memory again.
int LaterRequestsWithFault(u32 nth) {
  for (u32 at = 0; at < 3; ++at) {
    (void)Request();
  }
  const size_t before = mallinfo2().uordblks;
  int findings = 0;
  for (u32 at = 0; at < kFaults && (findings & kFinished) == 0; ++at) {
    Outcome outcome;
    findings |= RequestWithFault(nth, &outcome);
    const Outcome next = Request();
    findings |= Judge(next) | (IsGranted(next) ? 0 : kLost);
  }
  const bool exact = getenv("GLIBC_TUNABLES") != nullptr;
  const bool grown = exact && mallinfo2().uordblks >= before + kSmallestLeak;
  return findings | (grown || FoundALeak() ? kLeaked : 0);
}

// Each fault meets a process of its own; gives the number of allocations.
template <typename Body>
u32 FailEach(Body body) {
  for (u32 nth = 1; nth < 5000; ++nth) {
    const int findings = test::InChild([&] { return body(nth); });
    EXPECT_EQ(findings & ~kFinished, 0) << "allocation " << nth;
    if (findings >= 256 || (findings & kFinished) != 0) {
      return nth - 1;
    }
  }
  return 0;
}

TEST_F(MainJob, WithoutMemoryAtItsFirstRunAnyStepFailsSafely) {
  EXPECT_GE(FailEach(FirstRequestWithFault), 100u);
}

// The heap's count is exact without caches, which is said before the process begins.
TEST_F(MainJob, WithoutMemoryALaterRunLosesNothing) {
#ifndef QVX_LEAK_SANITIZER
  if (getenv("GLIBC_TUNABLES") == nullptr) {
    const int status = test::InChild([] {
      (void)setenv("GLIBC_TUNABLES", kTunables, 1);
      (void)execl("/proc/self/exe", "main_job",
                  "--gtest_filter=MainJob.WithoutMemoryALaterRunLosesNothing",
                  "--gtest_output=", nullptr);
      return 127;
    });
    ASSERT_EQ(status, 0);
    return;
  }
#endif
  EXPECT_GE(FailEach(LaterRequestsWithFault), 50u);
}

// A new role map is read although an earlier one was loaded; what fails leaves no wider rights.
TEST_F(MainJob, WithoutMemoryARoleMapThatIsReadAgainGrantsNoMore) {
  const u32 met = FailEach([](u32 nth) {
    (void)Request();
    TouchRoleMap(2000000);
    return FirstRequestWithFault(nth);
  });
  EXPECT_GE(met, 100u);
}

// One thread's logins: right and wrong in turn, of two users.
u32 WrongAnswers(u32 thread) {
  constexpr u32 kLogins = 20;
  const std::u16string user = thread % 2 == 0 ? u"alice" : u"bob";
  const std::u16string good = thread % 2 == 0 ? u"Wonder-1and" : u"Builder-2";
  const u32 level = thread % 2 == 0 ? 3 : 1;
  u32 wrong = 0;
  for (u32 login = 0; login < kLogins; ++login) {
    const bool right = (login + thread) % 2 == 0;
    const std::u16string text = right ? good : u"neither";
    std::vector<ustring> name(user.begin(), user.end());
    std::vector<ustring> password(text.begin(), text.end());
    name.push_back(0);
    password.push_back(0);
    const u32 rights = PXTAuthenticateUser(nullptr, name.data(), password.data());
    const bool wiped = password == std::vector<ustring>(password.size(), 0);
    wrong += rights == (right ? level : 0) && wiped ? 0 : 1;
  }
  return wrong;
}

TEST_F(MainJob, EightThreadsLogInAtOnce) {
  ASSERT_EQ(PXTOpenRolemapFile(), 0u);
  ASSERT_EQ(PXTGetRightsUsingRolemap(), 0x7u);
  std::atomic<u32> wrong{0};
  std::vector<std::thread> threads;
  for (u32 at = 0; at < 8; ++at) {
    threads.emplace_back([at, &wrong] { wrong += WrongAnswers(at); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(wrong, 0u);
}

}  // namespace
}  // namespace qvx
