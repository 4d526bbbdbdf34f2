// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Several processes with threads that work on the same files at once: nothing is lost, no call
// fails, and a child of such a process does its work.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "qvxcs/context_lock.h"
#include "qvxcs/status.h"

#include "frame/shared_files.h"
#include "support/alone.h"
#include "support/files.h"
#include "support/sanitizers.h"
#include "support/threads.h"

namespace qvx::test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// One thread's share of the work of four processes: a log, an INI file and a key=value file that
// all of them use. The number of rounds; -1 after a status other than 0.
int WorkUntil(steady_clock::time_point end, u32 worker) {
  const std::string name = std::to_string(worker);
  int round = 0;
  do {
    const u32 number = static_cast<u32>(round);
    if (Append(InFolder("all.xml"), worker, number) != SM_STATUS_SUCCESS) return -1;
    if (WriteNumber(InFolder("all.ini"), "S" + std::to_string(worker % 4), "k" + name, number)) {
      return -1;
    }
    if (SetNumber(InFolder("all.properties"), "k" + name, number) != SM_STATUS_SUCCESS) return -1;
    ++round;
  } while (steady_clock::now() < end);
  return round;
}

// Eight threads of one of the processes; what each of them did is written to its own file.
int WorkInThreads(u32 process, steady_clock::time_point end) {
  std::atomic<int> faults = 0;
  InThreads(8, [&faults, process, end](u32 thread) {
    const u32 worker = process * 8 + thread;
    const int rounds = WorkUntil(end, worker);
    faults += rounds > 0 ? 0 : 1;  // a slow machine does one round at least
    WriteFile("/run/rounds" + std::to_string(worker), std::to_string(rounds));
  });
  return faults == 0 ? 0 : 1;
}

QVX_ALONE(Threads, FourProcessesOfEightThreadsLoseNothingAndNoCallFails) {
  Start();
  std::string properties;
  for (u32 worker = 0; worker < 32; ++worker) {
    properties += "k" + std::to_string(worker) + "=none\n";
  }
  WriteFile(InFolder("all.properties"), properties);
  const auto end = steady_clock::now() + milliseconds(3000);
  std::vector<pid_t> children;
  for (u32 process = 0; process < 4; ++process) {
    children.push_back(fork());
    if (children.back() == 0) _exit(WorkInThreads(process, end));
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "a call failed, or a thread never had its turn";
  }
  const std::vector<u32> entries = EntriesInOrder(ReadFile(InFolder("all.xml")), 32);
  const std::string pairs = "\n" + ReadFile(InFolder("all.properties"));
  for (u32 worker = 0; worker < 32; ++worker) {
    const std::string name = std::to_string(worker);
    const u32 rounds =
        static_cast<u32>(strtoul(ReadFile("/run/rounds" + name).c_str(), nullptr, 10));
    EXPECT_EQ(entries[worker], rounds);
    u32 number = 0;
    EXPECT_EQ(
        ReadNumber(InFolder("all.ini"), "S" + std::to_string(worker % 4), "k" + name, &number),
        SM_STATUS_SUCCESS);
    EXPECT_EQ(number, rounds - 1);
    EXPECT_NE(pairs.find("\nk" + name + "=" + std::to_string(rounds - 1) + "\n"),
              std::string::npos);
  }
  EXPECT_EQ(NamesInFolder(), (std::set<std::string>{"all.ini", "all.properties", "all.xml"}));
}

// The file's long part, which makes each rewrite take its time.
std::string LinesToBeKept() {
  std::string text;
  for (int line = 0; line < 1000; ++line) {
    text += "key" + std::to_string(line) + "=to be kept as it is\n";
  }
  return text;
}

// The child's work in files of its own, with every lock that a child may use. It writes over what
// an earlier child wrote.
bool WorksAsAChild(u32 round) {
  const u32 lock = PXTAllocContextLock();
  PXTLockContext(lock);
  u32 number = 0;
  const bool good = WriteNumber(InFolder("child.ini"), "A", "b", round) == SM_STATUS_SUCCESS &&
                    ReadNumber(InFolder("child.ini"), "A", "b", &number) == SM_STATUS_SUCCESS &&
                    number == round &&
                    SetNumber(InFolder("child.properties"), "b", round) == SM_STATUS_SUCCESS &&
                    CountOfEntries(InFolder("child.properties")) == 1;
  PXTUnLockContext(lock);
  PXTFreeContextLock(lock);
  return good && lock != 0;
}

// Forks children one after the other, which exit as a host does, up to the first that fails.
bool ChildrenWork(u32 count) {
  for (u32 round = 0; round < count; ++round) {
    const pid_t child = fork();
    if (child == 0) {
      (void)alarm(20);  // a child that hangs fails
      exit(WorksAsAChild(round) ? 0 : 1);
    }
    int status = 0;
    if (waitpid(child, &status, 0) != child || status != 0) return false;
  }
  return true;
}

// The parent's threads write while it forks; each child writes, locks and exits as a host does.
QVX_ALONE(Threads, ChildrenOfAProcessWhoseThreadsWriteDoTheirWorkAndExit) {
  // A sanitizer keeps its own locks over a fork, which the child may find taken.
  if (QVX_SANITIZED != 0) GTEST_SKIP();
  Start();
  const std::string ini = InFolder("parent.ini");
  const std::string pairs = InFolder("parent.properties");
  const std::string kept = LinesToBeKept();
  WriteFile(ini, "[Long]\n" + kept + "[A]\nk0=0\nk1=0\nk2=0\nk3=0\n");
  WriteFile(pairs, kept + "k0=0\nk1=0\nk2=0\nk3=0\n");
  WriteFile(InFolder("child.properties"), "b=none\n");
  std::atomic<bool> running = true;
  std::atomic<u32> faults = 0;
  std::array<u32, 4> last = {};
  InThreads(5, [&](u32 thread) {
    const std::string key = "k" + std::to_string(thread);
    while (thread < 4 && running) {
      faults += WriteNumber(ini, "A", key, ++last[thread]) == SM_STATUS_SUCCESS ? 0 : 1;
      faults += SetNumber(pairs, key, last[thread]) == SM_STATUS_SUCCESS ? 0 : 1;
      PXTFreeContextLock(PXTAllocContextLock());
    }
    if (thread < 4) return;
    faults += ChildrenWork(60) ? 0 : 1;
    running = false;
  });
  EXPECT_EQ(faults, 0U);
  std::string numbers;
  for (u32 thread = 0; thread < 4; ++thread) {
    numbers += "k" + std::to_string(thread) + "=" + std::to_string(last[thread]) + "\n";
  }
  EXPECT_TRUE(ReadFile(ini) == "[Long]\n" + kept + "[A]\n" + numbers) << ReadFile(ini).size();
  EXPECT_TRUE(ReadFile(pairs) == kept + numbers) << ReadFile(pairs).size();
}

}  // namespace
}  // namespace qvx::test
