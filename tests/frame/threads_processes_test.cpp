// SPDX-FileCopyrightText: Copyright The libqvxcs authors
// SPDX-License-Identifier: MIT

// Several processes with threads that work on the same files at once: nothing is lost, no call
// fails, and a child of such a process does its work.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <set>
#include <string>
#include <vector>

#include "qvxcs/context_lock.h"
#include "qvxcs/keyvalue.h"
#include "qvxcs/status.h"

#include "frame/shared_files.h"
#include "support/alone.h"
#include "support/files.h"
#include "support/sanitizers.h"
#include "support/threads.h"

namespace qvx::test {
namespace {

// Four processes of eight threads, each of which does so many rounds.
constexpr u32 kWorkers = 32;
constexpr u32 kRounds = 200;

std::string KeyOf(u32 worker) { return "k" + std::to_string(worker); }
std::string SectionOf(u32 worker) { return "S" + std::to_string(worker % 4); }
// A log of all workers, and sixteen logs, each of two workers of different processes; without the
// end of the name.
std::string LogOfAll() { return InFolder("all"); }
std::string LogOf(u32 worker) { return InFolder("log" + std::to_string(worker % 16)); }

// A log and its backup together have room for the entries of so many workers, so that it is moved
// once.
u32 Maximum(u32 workers, u32 entrySize) { return workers * kRounds * entrySize * 2 / 3; }

// A number in the INI file, from 0 on: -1 when it cannot be read.
int NumberInIni(u32 worker) {
  u32 number = 0;
  const u32 status = ReadNumber(InFolder("all.ini"), SectionOf(worker), KeyOf(worker), &number);
  return status == SM_STATUS_SUCCESS ? static_cast<int>(number) : -1;
}

// The same in the key=value file, where the entries of all workers must be.
int NumberInPairs(u32 worker) {
  u32 count = 0;
  PXTKeyValue* const entries = PXTCFGGetKeyValueEntries(InFolder("all.properties").c_str(), &count);
  const astring* const found = PXTCFGGetKeyValue(entries, count, KeyOf(worker).c_str(), 0);
  const int number = count == kWorkers && found != nullptr ? atoi(found) : -1;
  PXTCFGFreeKeyValueEntries(entries, count);
  return number;
}

// Whether each status of a round is 0.
bool Writes(u32 worker, u32 round, u32 entrySize) {
  return Append(LogOfAll() + ".xml", worker, round, Maximum(kWorkers, entrySize)) ==
             SM_STATUS_SUCCESS &&
         Append(LogOf(worker) + ".xml", worker, round, Maximum(2, entrySize)) ==
             SM_STATUS_SUCCESS &&
         WriteNumber(InFolder("all.ini"), SectionOf(worker), KeyOf(worker), round) ==
             SM_STATUS_SUCCESS &&
         SetNumber(InFolder("all.properties"), KeyOf(worker), round) == SM_STATUS_SUCCESS;
}

// One thread's share: it writes, and reads what a thread of another process writes, which never
// goes back.
bool Works(u32 worker, u32 entrySize) {
  const u32 other = (worker + 8) % kWorkers;
  int inIni = 0;
  int inPairs = 0;
  for (u32 round = 0; round < kRounds; ++round) {
    if (!Writes(worker, round, entrySize)) return false;
    const int nextInIni = NumberInIni(other);
    const int nextInPairs = NumberInPairs(other);
    if (nextInIni < inIni || nextInPairs < inPairs) return false;
    inIni = nextInIni;
    inPairs = nextInPairs;
  }
  return true;
}

// Eight threads of one of the processes.
int WorkInThreads(u32 process, u32 entrySize) {
  std::atomic<u32> faults = 0;
  InThreads(8, [&](u32 thread) { faults += Works(process * 8 + thread, entrySize) ? 0 : 1; });
  return faults == 0 ? 0 : 1;
}

void WorkInProcesses(u32 entrySize) {
  std::vector<pid_t> children;
  for (u32 process = 0; process < 4; ++process) {
    children.push_back(fork());
    if (children.back() == 0) _exit(WorkInThreads(process, entrySize));
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << "a call failed, or a number went back";
  }
}

// Every file of the work with what it holds before.
void MakeFiles() {
  std::string properties;
  for (u32 worker = 0; worker < kWorkers; ++worker) {
    properties += KeyOf(worker) + "=0\n";
    ASSERT_EQ(WriteNumber(InFolder("all.ini"), SectionOf(worker), KeyOf(worker), 0),
              SM_STATUS_SUCCESS);
  }
  WriteFile(InFolder("all.properties"), properties);
}

u32 EntrySize() {
  const std::string probe = InFolder("probe.xml");
  EXPECT_EQ(Append(probe, 0, 0), SM_STATUS_SUCCESS);
  const size_t first = ReadFile(probe).size();
  EXPECT_EQ(Append(probe, kWorkers, 0), SM_STATUS_SUCCESS);
  const size_t entry = ReadFile(probe).size() - first;
  EXPECT_EQ(unlink(probe.c_str()), 0);
  return static_cast<u32>(entry);
}

u32 CountOf(const std::string& part, const std::string& text) {
  u32 count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

// The log and its backup hold each entry of these workers once, in its thread's order, and the one
// that began the log anew.
void ExpectLog(const std::string& log, const std::set<u32>& workers) {
  SCOPED_TRACE(log);
  const std::string text = ReadFile(log + ".xm_") + ReadFile(log + ".xml");
  const std::vector<u32> entries = EntriesInOrder(text, kWorkers);
  for (const u32 worker : workers) {
    EXPECT_EQ(entries[worker], kRounds) << worker;
  }
  EXPECT_EQ(CountOf("<LogEntry>", text), workers.size() * kRounds + 1);
  EXPECT_EQ(CountOf("Log backup created", text), 1U);
}

QVX_ALONE(Threads, FourProcessesOfEightThreadsLoseNothingAndNoCallFails) {
  Start();
  MakeFiles();
  WorkInProcesses(EntrySize());
  std::set<u32> all;
  for (u32 worker = 0; worker < kWorkers; ++worker) {
    all.insert(worker);
    if (worker < 16) ExpectLog(LogOf(worker), {worker, worker + 16});
    EXPECT_EQ(NumberInIni(worker), static_cast<int>(kRounds - 1));
    EXPECT_EQ(NumberInPairs(worker), static_cast<int>(kRounds - 1));
  }
  ExpectLog(LogOfAll(), all);
  EXPECT_EQ(NamesInFolder().size(), 2U + 2 * (1 + 16)) << "a temporary file stays";
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
