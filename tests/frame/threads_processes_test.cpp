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

// The parent's threads write while it forks; each child writes, locks and exits as a host does.
QVX_ALONE(Threads, ChildrenOfAProcessWhoseThreadsWriteDoTheirWorkAndExit) {
  // A sanitizer keeps its own locks over a fork, which the child may find taken.
  if (QVX_SANITIZED != 0) GTEST_SKIP();
  Start();
  const std::string path = InFolder("parent.ini");
  std::string expected = "[Long]\n";
  for (int line = 0; line < 2000; ++line) {
    expected += "key" + std::to_string(line) + "=to be kept as it is\n";
  }
  expected += "[A]\n";
  WriteFile(path, expected);
  for (u32 thread = 0; thread < 4; ++thread) {
    ASSERT_EQ(WriteNumber(path, "A", "key" + std::to_string(thread), 0), SM_STATUS_SUCCESS);
  }
  std::atomic<bool> running = true;
  std::atomic<u32> faults = 0;
  std::array<u32, 4> last = {};
  InThreads(5, [&](u32 thread) {
    if (thread < 4) {
      while (running) {
        faults +=
            WriteNumber(path, "A", "key" + std::to_string(thread), ++last[thread]) == 0 ? 0 : 1;
      }
      return;
    }
    for (int round = 0; round < 60; ++round) {
      const pid_t child = fork();
      if (child == 0) {
        (void)alarm(20);
        u32 number = 0;
        const bool good = WriteNumber(InFolder("child.ini"), "A", "b", 7) == SM_STATUS_SUCCESS &&
                          ReadNumber(InFolder("child.ini"), "A", "b", &number) == 0 && number == 7;
        exit(good ? 0 : 1);
      }
      int status = 0;
      faults += waitpid(child, &status, 0) == child && status == 0 ? 0 : 1;
    }
    running = false;
  });
  EXPECT_EQ(faults, 0U);
  for (u32 thread = 0; thread < 4; ++thread) {
    expected += "key" + std::to_string(thread) + "=" + std::to_string(last[thread]) + "\n";
  }
  EXPECT_TRUE(ReadFile(path) == expected) << ReadFile(path).size() << " " << expected.size();
}

}  // namespace
}  // namespace qvx::test
